#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "fieldsim/ModbusSlave.h"
#include "protocols/FieldTalk.h"
#include "protocols/modbus/ModbusFraming.h"
#include "protocols/modbus/ModbusReadBack.h"
#include "protocols/modbus/ModbusTransact.h"
#include "support/Hex.h"
#include "support/LibmodbusTcpSlave.h"
#include "support/SocketLine.h"

using namespace protocols;
using support::Bytes;
using support::Hex;
using testing::ElementsAre;

// The example of the messaging guide: register 5 of unit FF.
TEST(ModbusTcp, ARequestIsTheMessageBehindItsHead) {
    EXPECT_EQ(Hex(TcpFrame(0x1501, Bytes("FF 03 00 04 00 01 00 00"))), "15 01 00 00 00 06 FF 03 00 04 00 01");
    const auto reply =
        OwnTcpReply(Bytes("15 01 00 00 00 05 FF 03 02 00 05"), Bytes("15 01 00 00 00 06 FF 03 00 04 00 01"));
    ASSERT_TRUE(reply);
    EXPECT_EQ(Hex(reply->substr(0, 5)), "FF 03 02 00 05");
}

// Two registers from 100 of slave 1 are asked, and hold 100.0. NN is the number of the request's transaction.
TEST(ModbusTcp, TheReplyIsTheOneWithTheRequestsNumber) {
    const std::string own = "NN NN 00 00 00 07 01 03 04 42 C8 00 00";
    const std::string late = "12 34 00 00 00 07 01 03 04 BF C0 00 00";
    const std::string exception = "NN NN 00 00 00 03 01 83 02";
    const struct {
        const char* name;
        std::vector<std::string> parts;  // as they come, 300 ms between them
        std::optional<double> value;
        int waits;  // the stated ones that the exchange takes in prompt pacing
    } cases[] = {
        {"alone", {own}, 100, 0},
        {"behind a late one", {late + " " + own}, 100, 0},
        {"in front of a late one", {own + " " + late}, 100, 0},
        {"behind a late one, later", {late, own}, 100, 0},
        {"in two parts", {own.substr(0, 14), own.substr(15)}, 100, 0},
        {"in two parts behind the head", {own.substr(0, 26), own.substr(27)}, 100, 0},
        {"behind the rest of another", {"00 00 07 " + own}, 100, 0},
        {"only a late one", {late}, {}, 1},
        {"of another slave", {"NN NN 00 00 00 07 02 03 04 42 C8 00 00"}, {}, 1},
        {"to another function", {"NN NN 00 00 00 07 01 04 04 42 C8 00 00"}, {}, 1},
        {"of another protocol", {"NN NN 00 01 00 07 01 03 04 42 C8 00 00"}, {}, 1},
        {"cut", {own.substr(0, 35)}, {}, 1},
        {"shorter than it counts", {"NN NN 00 00 00 06 01 03 04 42 C8 00"}, {}, 1},
        {"with fewer registers", {"NN NN 00 00 00 05 01 03 02 42 C8"}, {}, 1},
        {"in RTU framing", {"01 03 04 42 C8 00 00 6F B5"}, {}, 1},
        {"none", {}, {}, 1},
        {"a refusal", {exception}, {}, 0},
    };
    for (const auto pacing : {core::Pacing::Stated, core::Pacing::Prompt}) {
        for (const auto& test : cases) {
            support::SimulatedTalk sim;
            struct Station final : fieldsim::Device {
                const std::vector<std::string>* parts = nullptr;
                std::string request;
                std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment&) override {
                    request = bytes;
                    std::vector<fieldsim::Answer> answers;
                    for (std::string part : *parts) {
                        for (std::size_t at = part.find("NN NN"); at != std::string::npos; at = part.find("NN NN")) {
                            part.replace(at, 5, Hex(request.substr(0, 2)));
                        }
                        part = part.substr(0, part.find(" NN"));
                        answers.push_back({Bytes(part), 300 * static_cast<std::uint32_t>(answers.size() + 1)});
                    }
                    return answers;
                }
            } station;
            station.parts = &test.parts;
            sim.ports.Attach(1, station);
            sim.line.PortOpen(true);
            sim.talk.station.framing = core::Framing::Tcp;
            sim.talk.station.pacing = pacing;
            sim.talk.modbus.floatread = true;
            constexpr TransactOptions once = {FailureReport::Box, 1, "", "", "", 0, 1, 0};
            const ModbusReply reply = ModbusTransact(sim.talk, 100, 2, 3, once);
            EXPECT_EQ(reply.kind == ModbusReply::Kind::Values, test.value.has_value()) << test.name;
            if (test.value) {
                EXPECT_EQ(sim.talk.modbus.mbvalues[1], *test.value) << test.name;
            }
            EXPECT_EQ(reply.kind == ModbusReply::Kind::Exception, test.parts == std::vector{exception}) << test.name;
            const std::uint64_t prompt = test.waits > 0 ? 2000 : 300 * static_cast<std::uint64_t>(test.parts.size());
            EXPECT_EQ(sim.desk.clock.Elapsed(), pacing == core::Pacing::Prompt ? prompt : 2000) << test.name;
            EXPECT_EQ(Hex(station.request.substr(2)), "00 00 00 06 01 03 00 64 00 02");
        }
    }
}

TEST(ModbusTcp, EachTryHasItsOwnNumber) {
    support::ScriptedTalk talk;
    talk.line.PortOpen(true);
    talk.talk.station.framing = core::Framing::Tcp;
    ModbusTransact(talk.talk, 100, 2, 3, onlineTransact);
    ASSERT_EQ(talk.line.sent.size(), 3U);
    EXPECT_NE(talk.line.sent[0], talk.line.sent[1]);
    EXPECT_NE(talk.line.sent[1], talk.line.sent[2]);
    EXPECT_EQ(talk.line.sent[0].substr(2), talk.line.sent[2].substr(2));
}

// Against a slave of another make. Its own helpers without a word order in their names have the low word first; those
// with one differ between its versions.
TEST(ModbusTcp, ASlaveOfAnotherMakeIsReadAndWrittenInBothWordOrders) {
    for (const auto order : {core::WordOrder::HighFirst, core::WordOrder::LowFirst}) {
        const bool lowFirst = order == core::WordOrder::LowFirst;
        support::LibmodbusTcpSlave slave;
        const auto turn = [&](std::uint16_t* registers) {
            if (!lowFirst) {
                std::swap(registers[0], registers[1]);
            }
        };
        modbus_set_float(-1234.5F, slave.Registers() + 10);
        turn(slave.Registers() + 10);
        slave.Registers()[20] = 0xFFFE;
        slave.Coils()[3] = 1;
        support::ScratchDesk desk;
        support::SocketLine line(slave.Port());
        FieldLine field{line, desk.clock};
        BsapCounters counters;
        core::Station station;
        station.framing = core::Framing::Tcp;
        station.slaveaddress = 17;
        station.pacing = core::Pacing::Prompt;
        station.wordOrder = order;
        Conversation talk{field.TakeOver(""), desk.clock, desk.feedback, desk.logs, counters, station, "", 1, {}, {}};

        EXPECT_EQ(ModbusReadBack(talk, core::ValueKind::Float, 10, onlineTransact), -1234.5);
        EXPECT_EQ(ModbusReadBack(talk, core::ValueKind::Integer, 20, onlineTransact), -2);
        EXPECT_EQ(ModbusReadBack(talk, core::ValueKind::Logical, 3, onlineTransact), 1);
        EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 30, 0.5, onlineWrite), WriteOutcome::Done);
        EXPECT_EQ(ModbusReadBack(talk, core::ValueKind::Float, 30, onlineTransact), 0.5);
        turn(slave.Registers() + 30);
        EXPECT_EQ(modbus_get_float(slave.Registers() + 30), 0.5F);
        EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Integer, 21, -3, onlineWrite), WriteOutcome::Done);
        EXPECT_EQ(slave.Registers()[21], 0xFFFD);
        EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Logical, 4, 1, onlineWrite), WriteOutcome::Done);
        EXPECT_EQ(slave.Coils()[4], 1);
        EXPECT_EQ(ModbusWrite(talk, core::ValueKind::Float, 124, 0.5, onlineWrite), WriteOutcome::Refused);
        EXPECT_EQ(desk.clock.Elapsed(), 0U) << "no wait was needed";
    }
}

TEST(ModbusWordOrder, IsThatOfTwoRegistersInRtuAndAsciiToo) {
    const std::string lowFirst = Bytes("01 03 04 00 00 42 C8");
    for (const bool ascii : {false, true}) {
        support::ScriptedTalk talk;
        talk.line.PortOpen(true);
        talk.talk.station.framing = ascii ? core::Framing::Ascii : core::Framing::Rtu;
        talk.talk.station.wordOrder = core::WordOrder::LowFirst;
        talk.line.answer = [&](const std::string&) {
            return fieldsim::ModbusFrame(ascii ? fieldsim::Framing::Ascii : fieldsim::Framing::Rtu, lowFirst);
        };
        EXPECT_EQ(ModbusReadBack(talk.talk, core::ValueKind::Float, 10, onlineTransact), 100);
    }
    support::ScriptedTalk wide;
    wide.line.PortOpen(true);
    wide.talk.station.wordOrder = core::WordOrder::LowFirst;
    wide.talk.modbus.rtu32bit = true;
    wide.line.answer = [&](const std::string&) {
        return fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes("01 03 04 42 C8 00 00"));
    };
    EXPECT_EQ(ModbusReadBack(wide.talk, core::ValueKind::Float, 10, onlineTransact), 100) << "a float in one register";
    ModbusWrite(wide.talk, core::ValueKind::Float, 198, 100, onlineWrite);
    EXPECT_EQ(Hex(wide.line.sent.at(1)), "01 10 00 C6 00 01 04 42 C8 00 00 EA 60");
}
