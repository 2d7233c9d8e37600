#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fieldsim/ModbusSlave.h"
#include "protocols/FieldTalk.h"
#include "protocols/modbus/ModbusTransact.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using support::Hex;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = ModbusReply::Kind;

namespace {

const std::string request = Bytes("01 03 00 64 00 02 85 D4");  // two registers from 100
const std::string hundred = fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes("01 03 04 42 C8 00 00"));
const std::string badCheck = Bytes("01 03 04 42 C8 00 00 00 00");
const std::string exception = Bytes("01 83 02 C0 F1");

struct ModbusTransactTest : testing::Test, support::ScriptedTalk {
    void SetUp() override {
        line.PortOpen(true);
        talk.modbus.floatread = true;
    }
};

}  // namespace

TEST_F(ModbusTransactTest, AScheduledReadTakesFiveWaits) {
    std::uint64_t sentAt = 0;
    line.answer = [&](const std::string&) {
        sentAt = desk.clock.Elapsed();
        return hundred;
    };
    const ModbusReply reply = ModbusTransact(talk, 100, 2, 3);
    EXPECT_EQ(reply.kind, Kind::Values);
    EXPECT_EQ(talk.modbus.mbvalues[1], 100);
    EXPECT_EQ(Hex(line.sent.at(0)), Hex(request));
    EXPECT_EQ(sentAt, 2000U);
    EXPECT_EQ(desk.clock.Elapsed(), 10000U);
    EXPECT_THAT(desk.feedback.status, ElementsAre("Scheduler :: Sending Request", "Scheduler :: Wating for response",
                                                  "Scheduler :: Converting Response...."));
    EXPECT_EQ(desk.RtuErr(), "");
}

TEST_F(ModbusTransactTest, AScheduledFailureIsALineOfTheErrorLog) {
    const std::string silent = "There was No Response from the controller[7]! Check Settings and try again!";
    const struct {
        std::string reply;
        Kind kind;
        std::vector<std::string> errors;
    } cases[] = {
        {"", Kind::NoResponse, {silent}},
        {badCheck, Kind::CrcError, {"A CRC Error occurred in the last packet locationID --[7]!"}},
        {Bytes("01 05 00 04 FF 00 CD FB"), Kind::Empty, {silent}},
        {exception, Kind::Exception, {}},
    };
    for (const auto& [answer, kind, errors] : cases) {
        std::filesystem::remove(desk.shared.rtuErrPath);
        line.replies = {answer, hundred};
        const ModbusReply reply = ModbusTransact(talk, 100, 2, 3);
        EXPECT_EQ(reply.kind, kind);
        EXPECT_EQ(Errors(), errors);
        EXPECT_EQ(line.replies.size(), 1U) << "one try";
    }
    EXPECT_THAT(desk.feedback.boxes, IsEmpty());
}

TEST_F(ModbusTransactTest, ARequestThatCannotBeBuiltIsNotSent) {
    for (const auto& [reg, slave] : {std::pair(-1, 1), {100, 248}}) {
        talk.station.slaveaddress = slave;
        EXPECT_FALSE(ModbusTransact(talk, reg, 2, 3).Answered());
    }
    EXPECT_THAT(line.sent, IsEmpty());
    EXPECT_EQ(desk.feedback.boxes,
              std::vector<std::string>(2, "Valid parameters not available to assemble Modbus packet"));
}

TEST_F(ModbusTransactTest, WhatWasLeftOnTheLineIsNoAnswerAndIsShownAsLate) {
    desk.clock.After(1000, [&] { line.Output("noise"); });
    line.replies = {hundred, ""};  // the first is there before the request
    EXPECT_EQ(ModbusTransact(talk, 100, 2, 3).kind, Kind::NoResponse);
    EXPECT_THAT(desk.feedback.late, ElementsAre(hundred));
}

TEST(ModbusTransact, AConversationToldToEndStopsAtOnceWithoutALine) {
    for (const std::uint32_t endMs : {1000U, 3000U, 7000U}) {
        support::ScriptedTalk other;
        other.line.PortOpen(true);
        other.desk.clock.After(endMs, [&] { other.field.EndConversation("Program ends"); });
        EXPECT_FALSE(ModbusTransact(other.talk, 100, 2, 3).Answered());
        EXPECT_EQ(other.desk.clock.Elapsed(), endMs);
        EXPECT_EQ(other.desk.RtuErr(), "");
        EXPECT_EQ(other.line.sent.size(), endMs > 2000 ? 1U : 0U);
    }
}

TEST_F(ModbusTransactTest, OnlineTriesThreeTimesAndThenTells) {
    const struct {
        std::vector<std::string> replies;
        Kind kind;
        std::vector<std::string> boxes;
        std::vector<std::string> tries;
    } cases[] = {
        {{badCheck, "", hundred}, Kind::Values, {}, {"Try1", "Try2"}},
        {{hundred}, Kind::Values, {}, {}},
        {{hundred.substr(0, 4), "", ""},
         Kind::NoResponse,
         {"There was No Response from the controller!\rCheck Settings and try again!"},
         {"Try1", "Try2"}},
        {{"", "", badCheck}, Kind::CrcError, {"A CRC Error occurred in the last packet!"}, {"Try1", "Try2"}},
        {{exception, exception, exception}, Kind::Exception, {"Invalid Modbus Address Specified"}, {"Try1", "Try2"}},
    };
    for (const auto& [replies, kind, boxes, tries] : cases) {
        std::filesystem::remove(desk.shared.rtuErrPath);
        desk.feedback = {};
        line.sent.clear();
        line.replies = {replies.begin(), replies.end()};
        const ModbusReply reply = ModbusTransact(talk, 100, 2, 3, onlineTransact);
        EXPECT_EQ(reply.kind, kind);
        EXPECT_EQ(desk.feedback.boxes, boxes);
        EXPECT_EQ(Errors(), tries);
        EXPECT_EQ(line.sent.size(), replies.size());
    }
}

// A slave of another make of code, in both framings, whose answer comes just before the second wait is over.
TEST(ModbusTransact, ReadsAStationInItsFraming) {
    for (const bool ascii : {false, true}) {
        for (const std::uint32_t answerMs : {50U, 3999U, 4001U}) {
            support::SimulatedTalk field;
            fieldsim::ModbusSlave slave(1, ascii ? fieldsim::Framing::Ascii : fieldsim::Framing::Rtu,
                                        fieldsim::MakeModbusMap({{1, "Pressure", "bar", fieldsim::Kind::Float, 12.5},
                                                                 {3, "Flow", "SCM", fieldsim::Kind::Float, -250}},
                                                                {{1, "Valve", "", fieldsim::Kind::Logical, 1}}),
                                        answerMs);
            field.line.Attach(1, slave);
            field.line.CommPort(1);
            ASSERT_TRUE(field.line.PortOpen(true));
            field.talk.station.framing = ascii ? core::Framing::Ascii : core::Framing::Rtu;
            field.talk.modbus.floatread = true;

            const ModbusReply floats = ModbusTransact(field.talk, 0, 4, 3);
            EXPECT_EQ(floats.kind, answerMs < 4000 ? Kind::Values : Kind::NoResponse);
            if (answerMs < 4000) {
                EXPECT_EQ(field.talk.modbus.mbvalues[1], 12.5);
                EXPECT_EQ(field.talk.modbus.mbvalues[2], -250);
                EXPECT_TRUE(ModbusTransact(field.talk, 0, 1, 1).Answered());
                EXPECT_EQ(field.talk.modbus.mbvalues[1], 1);
            }
        }
    }
}

// 100.0 to register 198 of slave 1.
TEST_F(ModbusTransactTest, AWriteIsDoneWhenTheStationAcknowledgesThisVeryOne) {
    const std::string silent = "There was No Response from the controller[7]! Check Settings and try again!";
    const struct {
        const char* reply;  // without its check
        bool written;
        std::vector<std::string> errors;
        bool rtu32bit = false;
    } cases[] = {
        {"01 10 00 C6 00 02", true, {}},        {"01 10 00 C6 00 01", true, {}, true},
        {"01 10 00 C4 00 02", false, {silent}},  // the answer to the one before, late
        {"02 10 00 C6 00 02", false, {silent}}, {"01 10 00 C6 00 01", false, {silent}},
        {"01 06 00 C6 00 02", false, {silent}}, {"01 03 04 42 C8 00 00", false, {silent}},
        {"01 10 00 C6 00", false, {silent}},    {"01 90 02", false, {}},
    };
    for (const auto& test : cases) {
        std::filesystem::remove(desk.shared.rtuErrPath);
        line.sent.clear();
        talk.modbus.rtu32bit = test.rtu32bit;
        line.replies = {fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes(test.reply))};
        EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100) == WriteOutcome::Done, test.written)
            << test.reply;
        EXPECT_EQ(Errors(), test.errors) << test.reply;
        ASSERT_EQ(line.sent.size(), 1U);
        EXPECT_EQ(Hex(line.sent[0]),
                  test.rtu32bit ? "01 10 00 C6 00 01 04 42 C8 00 00 EA 60" : "01 10 00 C6 00 02 04 42 C8 00 00 EA 53");
    }
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100), WriteOutcome::Failed) << "silence";
    EXPECT_EQ(Errors().back(), silent);
}

TEST_F(ModbusTransactTest, AWriteThatHasNoFrameIsNotSent) {
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 70000, 100), WriteOutcome::NotBuilt);
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 1e300), WriteOutcome::NotBuilt);
    talk.station.framing = core::Framing::Ascii;
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100), WriteOutcome::NotBuilt);
    EXPECT_THAT(line.sent, IsEmpty());
    EXPECT_EQ(desk.feedback.boxes.size(), 3U);
}

// The writes of a screen: up to three tries, one wait each, and the caller says what became of them.
TEST_F(ModbusTransactTest, AWriteOfAScreenIsTriedThreeTimesUnlessTheStationRefuses) {
    const auto rtu = [](const char* hex) { return fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes(hex)); };
    const auto ascii = [](const char* hex) { return fieldsim::ModbusFrame(fieldsim::Framing::Ascii, Bytes(hex)); };
    const std::string badCheck = Bytes("01 05 00 0A FF 00 00 00");
    const struct {
        core::Framing framing;
        core::ValueKind datum;
        double value;
        std::vector<std::string> replies;
        WriteOutcome outcome;
        std::size_t sends;
        std::string sent;  // hex in RTU framing, else the text
    } cases[] = {
        {core::Framing::Rtu,
         core::ValueKind::Logical,
         1,
         {rtu("01 05 00 0A FF 00")},
         WriteOutcome::Done,
         1,
         "01 05 00 0A FF 00 AC 38"},
        {core::Framing::Rtu,
         core::ValueKind::Logical,
         0,
         {rtu("01 05 00 0A 00 00")},
         WriteOutcome::Done,
         1,
         "01 05 00 0A 00 00 ED C8"},
        {core::Framing::Rtu,
         core::ValueKind::Integer,
         -2,
         {rtu("01 06 00 0A FF FE")},
         WriteOutcome::Done,
         1,
         "01 06 00 0A FF FE 69 B8"},
        {core::Framing::Rtu,
         core::ValueKind::Logical,
         1,
         {"", badCheck, rtu("01 05 00 0A FF 00")},
         WriteOutcome::Done,
         3,
         ""},
        {core::Framing::Rtu,
         core::ValueKind::Logical,
         1,
         {rtu("01 05 00 0B FF 00"), "", ""},
         WriteOutcome::Failed,
         3,
         ""},
        {core::Framing::Rtu, core::ValueKind::Integer, 5, {rtu("01 86 02")}, WriteOutcome::Refused, 1, ""},
        {core::Framing::Ascii,
         core::ValueKind::Logical,
         1,
         {ascii("01 05 00 0A FF 00")},
         WriteOutcome::Done,
         1,
         ":0105000AFF00F1\r\n"},
        {core::Framing::Ascii,
         core::ValueKind::Integer,
         5,
         {ascii("01 06 00 0A 00 05")},
         WriteOutcome::Done,
         1,
         ":0106000A0005EA\r\n"},
        {core::Framing::Ascii, core::ValueKind::Integer, 5, {ascii("01 86 02")}, WriteOutcome::Refused, 1, ""},
    };
    for (const auto& test : cases) {
        line.sent.clear();
        line.replies = {test.replies.begin(), test.replies.end()};
        talk.station.framing = test.framing;
        const std::uint64_t start = desk.clock.Elapsed();
        EXPECT_EQ(ModbusWrite(talk, test.datum, 10, test.value, onlineWrite), test.outcome);
        ASSERT_EQ(line.sent.size(), test.sends);
        EXPECT_EQ(desk.clock.Elapsed() - start, test.sends * static_cast<std::uint64_t>(talk.CommTimeout()));
        if (!test.sent.empty()) {
            EXPECT_EQ(talk.station.framing == core::Framing::Rtu ? Hex(line.sent[0]) : line.sent[0], test.sent);
        }
    }
    EXPECT_THAT(desk.feedback.boxes, IsEmpty());
}

// What is more urgent goes out as soon as no answer is on its way.
TEST_F(ModbusTransactTest, NothingIsSentOnceTheLineIsWanted) {
    bool wanted = true;
    talk.wanted = [&] { return wanted; };
    EXPECT_FALSE(ModbusTransact(talk, 0, 2, 3, onlineTransact).Answered());
    EXPECT_THAT(line.sent, IsEmpty());
    wanted = false;
    desk.clock.After(static_cast<std::uint32_t>(talk.CommTimeout()) + 1, [&] { wanted = true; });
    EXPECT_FALSE(ModbusTransact(talk, 0, 2, 3, onlineTransact).Answered());
    EXPECT_EQ(line.sent.size(), 1U) << "and not tried again";
    EXPECT_THAT(desk.feedback.boxes, IsEmpty());
}
