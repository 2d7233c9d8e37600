#include <gtest/gtest.h>

#include "fieldsim/ModbusSlave.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;

// Registers 1-2: 100.0, 3-4: -1.5, 5: integer -2, 7-8: 1.0; coils 1 and 3 on, 2 off, 10 on.
ModbusMap TestMap(bool floatInOneRegister = false) {
    const int step = floatInOneRegister ? 1 : 2;
    return MakeModbusMap({{1, "Flowing Pressure", "BAR", Kind::Float, 100},
                          {1 + step, "Temperature", "C", Kind::Float, -1.5},
                          {5, "Count", "", Kind::Integer, -2},
                          {7, "Factor", "", Kind::Float, 1}},
                         {{1, "A", "", Kind::Logical, 1},
                          {2, "B", "", Kind::Logical, 0},
                          {3, "C", "", Kind::Logical, 1},
                          {10, "D", "", Kind::Logical, 1}},
                         floatInOneRegister);
}

const Moment kNow{{2026, 3, 9, 8, 0, 0}, 1000};

std::string Ask(Device& device, const std::string& bytes, std::uint64_t atMs = 1000) {
    std::string answer;
    for (const Answer& part : device.Receive(bytes, {kNow.local, atMs})) {
        answer += part.bytes;
    }
    return answer;
}

std::string Rtu(const char* message) {
    return ModbusFrame(Framing::Rtu, Bytes(message));
}

TEST(ModbusSlave, AnswersWithTheFrameOfTheApplicationProtocol) {
    ModbusSlave slave(1, Framing::Rtu, TestMap());
    EXPECT_EQ(Hex(Ask(slave, Rtu("01 03 00 00 00 04"))), "01 03 08 42 C8 00 00 BF C0 00 00 7C 1A");
    EXPECT_EQ(Hex(Ask(slave, Rtu("01 03 00 C8 00 01"))), "01 83 02 C0 F1");
    EXPECT_EQ(slave.Map().registers->Served("Flowing Pressure").back().value, 100);
    EXPECT_TRUE(slave.Map().registers->WasServed("Temperature", -1.5));
    EXPECT_FALSE(slave.Map().registers->WasServed("Factor", 1));
}

TEST(ModbusSlave, EveryFunctionAndException) {
    ModbusSlave slave(1, Framing::Rtu, TestMap());
    ModbusSlave wide(1, Framing::Rtu, TestMap(true));
    const struct {
        const char* request;
        const char* answer;
        bool floatInOneRegister = false;
    } cases[] = {
        {"01 01 00 00 00 0A", "01 01 02 05 02"},        // ten coils, lowest bit first
        {"01 02 00 02 00 01", "01 02 01 01"},           // the third as an input
        {"01 04 00 04 00 01", "01 04 02 FF FE"},        // an integer
        {"01 03 00 01 00 02", "01 03 04 00 00 BF C0"},  // two halves of two floats
        {"01 03 00 05 00 02", "01 03 04 00 00 3F 80"},  // a register without a signal is 0
        {"01 03 00 00 00 02", "01 03 08 42 C8 00 00 BF C0 00 00", true},
        {"01 03 00 02 00 03", "01 03 0A 00 00 00 00 00 00 00 00 FF FE", true},
        {"01 03 00 00 00 00", "01 83 03"},        // no quantity
        {"01 03 00 00 00 7E", "01 83 03"},        // 126 registers
        {"01 03 00 00 00 3F", "01 83 03", true},  // 63 floats
        {"01 01 00 00 07 D1", "01 81 03"},        // 2001 coils
        {"01 03 00 07 00 02", "01 83 02"},        // one past the last register
        {"01 01 00 0A 00 01", "01 81 02"},
        {"01 07", "01 87 01"},
        {"01 2B 0E 01 00", "01 AB 01"},
    };
    for (const auto& test : cases) {
        ModbusSlave& asked = test.floatInOneRegister ? wide : slave;
        EXPECT_EQ(Hex(Ask(asked, Rtu(test.request))), Hex(Rtu(test.answer))) << test.request;
    }
}

TEST(ModbusSlave, KeepsWhatIsWrittenIntoIt) {
    using Noted = std::vector<std::string>;
    const struct {
        const char* request;
        const char* answer;
        Noted noted;
        const char* data = "42 C8 00 00 BF C0 00 00 FF FE";  // registers 1 to 5
        const char* coils = "05 02";                         // 1 to 10
    } cases[] = {
        {"01 05 00 01 FF 00", "01 05 00 01 FF 00", {"coil 2 B = 1"}, "42 C8 00 00 BF C0 00 00 FF FE", "07 02"},
        {"01 05 00 00 00 00", "01 05 00 00 00 00", {"coil 1 A = 0"}, "42 C8 00 00 BF C0 00 00 FF FE", "04 02"},
        {"01 05 00 01 00 01", "01 85 03", {"coil 2 B = 1 refused"}},
        {"01 05 00 03 FF 00", "01 85 02", {"coil 4 = 1 refused"}},
        {"01 0F 00 00 00 03 01 FA",
         "01 0F 00 00 00 03",
         {"coil 1 A = 0", "coil 2 B = 1", "coil 3 C = 0"},
         "42 C8 00 00 BF C0 00 00 FF FE",
         "02 02"},
        {"01 0F 00 02 00 02 01 00", "01 8F 02", {"coil 3 C = 0 refused", "coil 4 = 0 refused"}},
        {"01 0F 00 00 00 00 00", "01 8F 03", {"coil 1 A = nan refused"}},
        {"01 0F 00 00 00 09 01 FF", "01 8F 03", {"coil 1 A = nan refused"}},
        {"01 06 00 04 80 01", "01 06 00 04 80 01", {"register 5 Count = -32767"}, "42 C8 00 00 BF C0 00 00 80 01"},
        {"01 06 00 00 C1 48",
         "01 06 00 00 C1 48",
         {"register 1 Flowing Pressure = -12.5"},
         "C1 48 00 00 BF C0 00 00 FF FE"},
        {"01 06 00 03 12 34",
         "01 06 00 03 12 34",
         {"register 3 Temperature = -1.50056"},
         "42 C8 00 00 BF C0 12 34 FF FE"},
        {"01 06 00 05 00 01", "01 86 02", {"register 6 = 1 refused"}},
        {"01 10 00 00 00 02 04 C1 48 00 01",
         "01 10 00 00 00 02",
         {"register 1 Flowing Pressure = -12.5"},
         "C1 48 00 01 BF C0 00 00 FF FE"},
        {"01 10 00 01 00 02 04 12 34 3F 80",
         "01 10 00 01 00 02",  // the halves of two floats
         {"register 1 Flowing Pressure = 100.036", "register 3 Temperature = 1"},
         "42 C8 12 34 3F 80 00 00 FF FE"},
        {"01 10 00 04 00 02 04 00 01 00 01",
         "01 90 02",  // nothing in register 6
         {"register 5 Count = 1 refused", "register 6 = 1 refused"}},
        {"01 10 00 08 00 01 02 00 01", "01 90 02", {"register 9 = 1 refused"}},
        {"01 10 00 00 00 02 02 C1 48", "01 90 03", {"register 1 Flowing Pressure = nan refused"}},
        {"01 10 00 00 00 00 00", "01 90 03", {"register 1 Flowing Pressure = nan refused"}},
    };
    for (const auto& test : cases) {
        ModbusSlave slave(1, Framing::Rtu, TestMap());
        EXPECT_EQ(Hex(Ask(slave, Rtu(test.request))), Hex(Rtu(test.answer))) << test.request;
        EXPECT_EQ(Hex(Ask(slave, Rtu("01 03 00 00 00 05")).substr(3, 10)), test.data) << test.request;
        EXPECT_EQ(Hex(Ask(slave, Rtu("01 01 00 00 00 0A")).substr(3, 2)), test.coils) << test.request;
        EXPECT_EQ(slave.WritesText(), test.noted) << test.request;
    }
}

TEST(ModbusSlave, KeepsAWholeFloatInOneRegister) {
    const struct {
        const char* request;
        const char* answer;
        const char* data = "42 C8 00 00 BF C0 00 00";  // registers 1 and 2
    } cases[] = {
        {"01 10 00 00 00 01 04 C1 48 00 01", "01 10 00 00 00 01", "C1 48 00 01 BF C0 00 00"},
        {"01 10 00 00 00 02 08 C1 48 00 01 3F 80 00 00", "01 10 00 00 00 02", "C1 48 00 01 3F 80 00 00"},
        {"01 10 00 00 00 02 04 C1 48 00 01", "01 90 03"},
        {"01 06 00 00 C1 48", "01 86 03"},  // 16 bits of a 32-bit register
        {"01 06 00 04 00 07", "01 06 00 04 00 07"},
    };
    for (const auto& test : cases) {
        ModbusSlave slave(1, Framing::Rtu, TestMap(true));
        EXPECT_EQ(Hex(Ask(slave, Rtu(test.request))), Hex(Rtu(test.answer))) << test.request;
        EXPECT_EQ(Hex(Ask(slave, Rtu("01 03 00 00 00 02")).substr(3, 8)), test.data) << test.request;
    }
}

TEST(ModbusSlave, StaysSilentForWhatIsNotMeantForIt) {
    ModbusSlave slave(1, Framing::Rtu, TestMap());
    std::string badCheck = Rtu("01 03 00 00 00 02");
    badCheck.back() = static_cast<char>(badCheck.back() ^ 1);
    EXPECT_EQ(Ask(slave, badCheck), "");
    EXPECT_EQ(Ask(slave, Rtu("02 03 00 00 00 02"), 2000), "");
    EXPECT_EQ(Ask(slave, Rtu("00 03 00 00 00 02"), 3000), "");
    slave.NeverAnswer(7);
    EXPECT_EQ(Ask(slave, Rtu("01 03 00 05 00 02"), 4000), "");
    EXPECT_EQ(Ask(slave, Rtu("01 10 00 06 00 02 04 00 00 00 00"), 4500), "");
    EXPECT_EQ(Ask(slave, Rtu("01 06 00 06 00 00"), 4700), "");
    EXPECT_NE(Ask(slave, Rtu("01 03 00 00 00 02"), 5000), "");
}

TEST(ModbusSlave, FindsItsFrameInPiecesAndNoise) {
    ModbusSlave slave(1, Framing::Rtu, TestMap());
    const std::string request = Rtu("01 03 00 04 00 01");
    const std::string answer = Rtu("01 03 02 FF FE");
    EXPECT_EQ(Ask(slave, request.substr(0, 3)), "");
    EXPECT_EQ(Ask(slave, request.substr(3), 1050), answer);
    EXPECT_EQ(Ask(slave, Bytes("FF 10 01") + request, 2000), answer);
    EXPECT_EQ(Ask(slave, Rtu("02 03 00 04 00 01") + request, 3000), answer);
    EXPECT_EQ(Ask(slave, request.substr(0, 3), 4000), "");
    EXPECT_EQ(Ask(slave, request, 6000), answer);  // the half of an abandoned frame does not spoil the next
}

TEST(ModbusSlave, AsciiTakesTheShortLrcOfItsMasters) {
    ModbusSlave slave(1, Framing::Ascii, TestMap());
    // Sums in hex: the request 8, so the LRC F8; the answer 01 + 03 + 08 + 42 + C8 + BF + C0 = 295, so 6B.
    EXPECT_EQ(Ask(slave, ":010300000004F8\r\n"), ":01030842C80000BFC000006B\r\n");
    EXPECT_EQ(Ask(slave, ":010300000004F7\r\n"), "");
    EXPECT_EQ(Ask(slave, "x:01:010300C80001", 2000), "");
    EXPECT_EQ(Ask(slave, "33\r\n", 2010), ":0183027A\r\n");
    // The sum 01 + 01 + 00 + FE = 100 (hex) gives the three digits "100", the sum FF the one digit "1".
    ModbusSlave coils(1, Framing::Ascii, TestMap());
    EXPECT_EQ(Ask(coils, ":010100FD0001100\r\n"), ":0181027C\r\n");
    EXPECT_EQ(Ask(coils, ":010100FC00011\r\n", 2000), ":0181027C\r\n");
}

}  // namespace
}  // namespace fieldsim
