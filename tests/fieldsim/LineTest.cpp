// What stands between a master and a station: modems, and the faults of a line.

#include <gtest/gtest.h>

#include "fieldsim/HayesModem.h"
#include "fieldsim/LineFaults.h"
#include "fieldsim/ModbusSlave.h"
#include "fieldsim/SimLine.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;

const std::string kRequest = Bytes("01 03 00 00 00 04 44 09");
const std::string kAnswer = Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1A");

ModbusMap Map() {
    return MakeModbusMap({{1, "P", "", Kind::Float, 100}, {3, "T", "", Kind::Float, -1.5}}, {});
}

struct ModemTest : testing::Test {
    VirtualClock clock{{2026, 3, 9, 8, 0, 0}};
    ModbusSlave slave{1, Framing::Rtu, Map()};
    HayesModem modem;
    SimLine line{clock};

    void SetUp() override {
        modem.PhoneBook("5551234", slave);
        line.Attach(1, modem);
        line.PortOpen(true);
        clock.WaitMs(5000);
    }
    std::string Say(const std::string& bytes, double waitMs) {
        line.Output(bytes);
        clock.WaitMs(waitMs);
        return line.Input();
    }
};

TEST_F(ModemTest, DialsTalksAndHangsUp) {
    EXPECT_EQ(Say("at\r", 1000), "at\r\r\nOK\r\n");
    EXPECT_EQ(Say(kRequest, 1000), "");  // no station before the call
    EXPECT_EQ(Say("\ratx3dt5551234\r", 3999), "\x01\x03" + kRequest.substr(2) + "\ratx3dt5551234\r");
    EXPECT_FALSE(modem.Connected());
    EXPECT_EQ(Say("", 1), "\r\nCONNECT 9600\r\n");
    EXPECT_EQ(Say(kRequest, 1000), kAnswer);
    EXPECT_TRUE(modem.Connected());
    EXPECT_EQ(Say("+++", 1500), "\r\nOK\r\n");
    EXPECT_EQ(Say("ath\r", 500), "ath\r\r\nOK\r\n");
    EXPECT_FALSE(modem.Connected());
    EXPECT_EQ(modem.Dialled(), std::vector<std::string>{"5551234"});
}

TEST_F(ModemTest, EachDialGivesWhatItsScriptSays) {
    modem.Script({{"NO CARRIER"}, {"BUSY"}, {""}, {"CONNECT 300", 1000, 1}});
    EXPECT_NE(Say("atd5551234\r", 5000).find("NO CARRIER"), std::string::npos);
    EXPECT_NE(Say("atd5551234\r", 5000).find("BUSY"), std::string::npos);
    EXPECT_EQ(Say("atd5551234\r", 60000), "atd5551234\r");
    EXPECT_NE(Say("at\r", 1000).find("OK"), std::string::npos);
    EXPECT_NE(Say("atd5551234\r", 5000).find("CONNECT 300"), std::string::npos);
    EXPECT_EQ(Say(kRequest, 1000), kAnswer);
    EXPECT_EQ(Say(kRequest, 1000), kAnswer.substr(0, 6) + "\r\nNO CARRIER\r\n");
    EXPECT_FALSE(modem.Connected());
    EXPECT_NE(Say("atd999\r", 15000).find("NO ANSWER"), std::string::npos);
}

TEST_F(ModemTest, OnlyAPauseMakesThePlusSignsACommandAndClosingEndsTheCall) {
    Say("atd5551234\r", 5000);
    Say(kRequest, 500);
    Say("+++", 1500);  // too soon behind data
    EXPECT_EQ(Say(kRequest, 1000), kAnswer);
    line.PortOpen(false);
    EXPECT_FALSE(modem.Connected());
    line.PortOpen(true);
    EXPECT_NE(Say("at\r", 1000).find("OK"), std::string::npos);
}

TEST(LineFaults, EachFaultDoesWhatItsNameSays) {
    ModbusSlave slave(1, Framing::Rtu, Map());
    LineFaults::Options options;
    options.script = {Fault::None, Fault::Silence, Fault::NoiseBefore, Fault::NoiseAfter, Fault::BadCheck,
                      Fault::Cut,  Fault::Late,    Fault::Exception,   Fault::Echo,       Fault::NoCarrier};
    LineFaults line(slave, options);
    std::vector<Answer> answers;
    for (std::uint64_t at = 1; at <= 10; ++at) {
        const auto parts = line.Receive(kRequest, {{2026, 3, 9, 8, 0, 0}, at * 1000});
        answers.push_back(parts.empty() ? Answer{} : parts.front());
    }
    EXPECT_EQ(answers[0].bytes, kAnswer);
    EXPECT_EQ(answers[1].bytes, "");
    EXPECT_TRUE(answers[2].bytes.size() > kAnswer.size() && answers[2].bytes.ends_with(kAnswer));
    EXPECT_TRUE(answers[3].bytes.size() > kAnswer.size() && answers[3].bytes.starts_with(kAnswer));
    EXPECT_TRUE(answers[4].bytes.size() == kAnswer.size() && answers[4].bytes != kAnswer);
    EXPECT_EQ(answers[5].bytes, kAnswer.substr(0, 7));
    EXPECT_TRUE(answers[6].bytes == kAnswer && answers[6].delayMs > 8000);
    EXPECT_EQ(Hex(answers[7].bytes), "01 83 02 C0 F1");
    EXPECT_EQ(answers[8].bytes, kRequest + kAnswer);
    EXPECT_EQ(answers[9].bytes, kAnswer.substr(0, 6) + "\r\nNO CARRIER\r\n");
    ASSERT_EQ(line.Exchanges().size(), 10U);
    EXPECT_EQ(line.Exchanges()[4].fault, Fault::BadCheck);
    EXPECT_EQ(line.Exchanges()[4].answer, kAnswer);
    EXPECT_EQ(ModbusException(":010300000004F8\r\n", 2), ":0183027A\r\n");
}

TEST(LineFaults, ChancesComeTrueTheSameWayForASeed) {
    const auto count = [](std::uint32_t seed) {
        ModbusSlave slave(1, Framing::Rtu, Map());
        LineFaults::Options options;
        options.chances = {{Fault::Silence, 0.1}, {Fault::Cut, 0.2}};
        options.seed = seed;
        LineFaults line(slave, options);
        for (std::uint64_t at = 1; at <= 1000; ++at) {
            line.Receive(kRequest, {{2026, 3, 9, 8, 0, 0}, at * 1000});
        }
        return std::pair(line.Count(Fault::Silence), line.Count(Fault::Cut));
    };
    EXPECT_EQ(count(5), count(5));
    EXPECT_NEAR(count(5).first, 100, 35);
    EXPECT_NEAR(count(5).second, 200, 50);
}

}  // namespace
}  // namespace fieldsim
