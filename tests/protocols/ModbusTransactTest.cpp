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
const std::string badCheck = Bytes("01 03 04 42 C8 00 00 00 00");
const std::string exception = Bytes("01 83 02 C0 F1");
constexpr const char* silent = "There was No Response from the controller[7]! Check Settings and try again!";

std::string Rtu(const char* message) {
    return fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes(message));
}

const std::string hundred = Rtu("01 03 04 42 C8 00 00");

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
        EXPECT_EQ(ModbusTransact(talk, 100, 2, 3).kind, kind);
        EXPECT_EQ(Errors(), errors);
        EXPECT_EQ(line.replies.size(), 1U) << "one try";
    }
    EXPECT_THAT(desk.feedback.boxes, IsEmpty());
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
    } cases[] = {
        {{badCheck, "", hundred}, Kind::Values, {}},
        {{hundred.substr(0, 4), "", ""},
         Kind::NoResponse,
         {"There was No Response from the controller!\rCheck Settings and try again!"}},
        {{"", "", badCheck}, Kind::CrcError, {"A CRC Error occurred in the last packet!"}},
        {{exception, exception, exception}, Kind::Exception, {"Invalid Modbus Address Specified"}},
    };
    for (const auto& [replies, kind, boxes] : cases) {
        std::filesystem::remove(desk.shared.rtuErrPath);
        desk.feedback = {};
        line.sent.clear();
        line.replies = {replies.begin(), replies.end()};
        EXPECT_EQ(ModbusTransact(talk, 100, 2, 3, onlineTransact).kind, kind);
        EXPECT_EQ(desk.feedback.boxes, boxes);
        EXPECT_THAT(Errors(), ElementsAre("Try1", "Try2"));
        EXPECT_EQ(line.sent.size(), 3U);
    }
}

// 100.0 to register 198 of slave 1.
TEST_F(ModbusTransactTest, AWriteIsDoneWhenTheStationAcknowledgesThisVeryOne) {
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100), WriteOutcome::Failed) << "silence";
    EXPECT_EQ(Hex(line.sent.at(0)), "01 10 00 C6 00 02 04 42 C8 00 00 EA 53");
    const struct {
        const char* reply;  // without its check
        bool written;
        std::vector<std::string> errors;
    } cases[] = {
        {"01 10 00 C6 00 02", true, {}},
        {"01 10 00 C4 00 02", false, {silent}},  // the answer to the one before, late
        {"02 10 00 C6 00 02", false, {silent}},
        {"01 10 00 C6 00 01", false, {silent}},
        {"01 06 00 C6 00 02", false, {silent}},
        {"01 03 04 42 C8 00 00", false, {silent}},
        {"01 10 00 C6 00", false, {silent}},
        {"01 90 02", false, {}},
    };
    for (const auto& [reply, written, errors] : cases) {
        std::filesystem::remove(desk.shared.rtuErrPath);
        line.replies = {Rtu(reply), Rtu("01 10 00 C6 00 02")};
        EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100) == WriteOutcome::Done, written) << reply;
        EXPECT_EQ(Errors(), errors) << reply;
        EXPECT_EQ(line.replies.size(), 1U) << "one try";
    }
    talk.modbus.rtu32bit = true;
    line.replies = {Rtu("01 10 00 C6 00 01")};
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100), WriteOutcome::Done);
    EXPECT_EQ(Hex(line.sent.back()), "01 10 00 C6 00 01 04 42 C8 00 00 EA 60");
}

TEST_F(ModbusTransactTest, WhatHasNoFrameIsNotSent) {
    EXPECT_FALSE(ModbusTransact(talk, -1, 2, 3).Answered());
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 70000, 100), WriteOutcome::NotBuilt);
    talk.station.framing = core::Framing::Ascii;
    EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 198, 100), WriteOutcome::NotBuilt);
    EXPECT_THAT(line.sent, IsEmpty());
    EXPECT_EQ(desk.feedback.boxes,
              std::vector<std::string>(3, "Valid parameters not available to assemble Modbus packet"));
}

// The writes of a screen: up to three tries, one wait each, and the caller says what became of them.
TEST_F(ModbusTransactTest, AWriteOfAScreenIsTriedThreeTimesUnlessTheStationRefuses) {
    const auto ascii = [](const char* hex) { return fieldsim::ModbusFrame(fieldsim::Framing::Ascii, Bytes(hex)); };
    const std::string on = Rtu("01 05 00 0A FF 00");
    const std::string onAscii = ascii("01 05 00 0A FF 00");
    constexpr auto coil = core::ValueKind::Logical;
    constexpr auto integer = core::ValueKind::Integer;
    const struct {
        core::Framing framing;
        core::ValueKind datum;
        double value;
        std::vector<std::string> replies;
        WriteOutcome outcome;
        std::string sent;
    } cases[] = {
        {core::Framing::Rtu, coil, 1, {on}, WriteOutcome::Done, Bytes("01 05 00 0A FF 00 AC 38")},
        {core::Framing::Rtu, coil, 0, {Rtu("01 05 00 0A 00 00")}, WriteOutcome::Done, Bytes("01 05 00 0A 00 00 ED C8")},
        {core::Framing::Rtu,
         integer,
         -2,
         {Rtu("01 06 00 0A FF FE")},
         WriteOutcome::Done,
         Bytes("01 06 00 0A FF FE 69 B8")},
        {core::Framing::Rtu, coil, 1, {"", Bytes("01 05 00 0A FF 00 00 00"), on}, WriteOutcome::Done, on},
        {core::Framing::Rtu, coil, 1, {Rtu("01 05 00 0B FF 00"), "", ""}, WriteOutcome::Failed, on},
        {core::Framing::Rtu, integer, 5, {Rtu("01 86 02")}, WriteOutcome::Refused, Rtu("01 06 00 0A 00 05")},
        {core::Framing::Ascii, coil, 1, {onAscii}, WriteOutcome::Done, ":0105000AFF00F1\r\n"},
        {core::Framing::Ascii, integer, 5, {ascii("01 06 00 0A 00 05")}, WriteOutcome::Done, ":0106000A0005EA\r\n"},
        {core::Framing::Ascii, integer, 5, {ascii("01 86 02")}, WriteOutcome::Refused, ":0106000A0005EA\r\n"},
    };
    for (const auto& test : cases) {
        line.sent.clear();
        line.replies = {test.replies.begin(), test.replies.end()};
        talk.station.framing = test.framing;
        const std::uint64_t start = desk.clock.Elapsed();
        EXPECT_EQ(ModbusWrite(talk, test.datum, 10, test.value, onlineWrite), test.outcome);
        EXPECT_EQ(line.sent, std::vector<std::string>(test.replies.size(), test.sent));
        EXPECT_EQ(desk.clock.Elapsed() - start, line.sent.size() * static_cast<std::uint64_t>(talk.CommTimeout()));
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
