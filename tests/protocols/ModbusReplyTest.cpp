#include <gtest/gtest.h>

#include "fieldsim/ModbusSlave.h"
#include "protocols/ModbusReply.h"
#include "support/Hex.h"

using namespace protocols;
using fieldsim::Framing;
using support::Bytes;
using Kind = ModbusReply::Kind;

namespace {

std::string Rtu(const std::string& message) {
    return fieldsim::ModbusFrame(Framing::Rtu, Bytes(message));
}

// As long as `expected`, from index 1.
std::vector<double> First(const ModbusState& modbus, const std::vector<double>& expected) {
    return {modbus.mbvalues.begin() + 1, modbus.mbvalues.begin() + 1 + static_cast<std::ptrdiff_t>(expected.size())};
}

std::string Repeated(int times, const std::string& text) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

}  // namespace

TEST(ModbusRtuReply, Outcomes) {
    const struct {
        const char* what;
        bool floatread;
        std::string reply;
        Kind kind;
        const char* text;
        std::vector<double> values;  // from index 1
    } cases[] = {
        {"silence", true, "", Kind::NoResponse, "No Response", {-32100, 9}},
        {"four bytes", true, Bytes("01 03 02 00"), Kind::NoResponse, "No Response", {-32100, 9}},
        {"two floats",
         true,
         Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1A"),
         Kind::Values,
         "100 -1.5 ",
         {100, -1.5, 0}},
        {"a bad check", true, Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1B"), Kind::CrcError, "CRC ERROR", {8, 0}},
        {"a flipped bit", true, Bytes("01 03 08 42 C8 00 01 BF C0 00 00 7C 1A"), Kind::CrcError, "CRC ERROR", {8, 0}},
        {"an exception", true, Bytes("01 83 02 C0 F1"), Kind::Exception, "Ex.Error", {2, 0}},
        {"six decimals",
         true,
         Rtu("01 03 08 3E AA AA AB C6 1C 40 1A"),
         Kind::Values,
         "0.333333 -10000.025391 ",
         {0.333333, -10000.025391, 0}},
        {"small floats", true, Rtu("01 03 08 38 D1 B7 17 33 D6 BF 95"), Kind::Values, "0.0001 0 ", {0.0001, 0, 0}},
        {"a large float", true, Rtu("01 03 04 4E 93 2C 06"), Kind::Values, "1234567936 ", {1234567936, 0}},
        {"floats, fewer counted", true, Rtu("01 03 04 42 C8 00 00 BF C0 00 00"), Kind::Values, "100 ", {100, 0}},
        {"floats, more counted", true, Rtu("01 03 10 42 C8 00 00 BF C0"), Kind::Values, "100 ", {100, 0}},
        {"no float at all", true, Rtu("01 03 00"), Kind::Empty, "", {0, 0}},
        {"signed integers",
         false,
         Rtu("01 03 06 7F FF 80 00 FF FE"),
         Kind::Values,
         "32767 -32768 -2 ",
         {32767, -32768, -2}},
        {"input registers", false, Rtu("01 04 02 00 05"), Kind::Values, "5 ", {5}},
        {"integers of another length", false, Rtu("01 03 04 00 01"), Kind::Empty, "", {-32100, 0}},
        {"input registers as floats", true, Rtu("01 04 04 42 C8 00 00"), Kind::Empty, "", {0, 0}},
        {"coils", false, Rtu("01 01 01 A5"), Kind::Values, "1 0 1 0 0 1 0 1 ", {1, 0, 1, 0, 0, 1, 0, 1, 0}},
        {"coils, more counted",
         false,
         Rtu("01 01 40 80"),
         Kind::Values,
         "0 0 0 0 0 0 0 1 ",
         {0, 0, 0, 0, 0, 0, 0, 1, 0}},
        {"a register written", false, Rtu("01 06 00 09 FF FE"), Kind::Values, "-2 ", {0}},
        {"too long for it", false, Rtu("01 06 00 09 FF FE 00"), Kind::Empty, "", {-32100}},
        {"registers written", false, Bytes("01 10 00 C6 00 02 A1 F5"), Kind::Values, "1 16 198 2 41461 ", {0}},
        {"a coil written", false, Bytes("01 05 00 04 FF 00 CD FB"), Kind::Empty, "", {0}},
    };
    for (const auto& [what, floatread, reply, kind, text, values] : cases) {
        SCOPED_TRACE(what);
        ModbusState modbus;
        modbus.mbvalues.fill(9);  // of an earlier reply
        modbus.floatread = floatread;
        const ModbusReply parsed = ParseRtuReply(modbus, reply);
        EXPECT_EQ(parsed.kind, kind);
        EXPECT_EQ(parsed.text, text);
        EXPECT_EQ(First(modbus, values), values);
        EXPECT_EQ(parsed.Answered(), kind == Kind::Values || kind == Kind::Exception);
    }
}

TEST(ModbusRtuReply, TheCheckWordStandsBehindIntegers) {
    ModbusState modbus;
    EXPECT_EQ(ParseRtuReply(modbus, Bytes("01 03 04 00 0A 00 14 DA 3E")).text, "10 20 ");
    EXPECT_EQ(modbus.mbvalues[3], 0xDA3E - 0x10000);
    EXPECT_EQ(modbus.mbvalues[4], 0);
}

TEST(ModbusRtuReply, TheLongestRepliesKeepWhatFits) {
    ModbusState modbus;
    EXPECT_EQ(ParseRtuReply(modbus, Rtu("01 03 FE" + Repeated(127, " 00 07"))).text, Repeated(125, "7 "));
    EXPECT_EQ(modbus.mbvalues[0], 0);
    EXPECT_EQ(modbus.mbvalues[125], 7);

    EXPECT_EQ(ParseRtuReply(modbus, Rtu("01 01 FF" + Repeated(255, " FF"))).text, Repeated(125, "1 "));
    EXPECT_EQ(modbus.mbvalues[125], 1);

    modbus.floatread = true;
    EXPECT_EQ(ParseRtuReply(modbus, Rtu("01 03 F8" + Repeated(62, " 42 C8 00 00"))).text, Repeated(62, "100 "));
    EXPECT_EQ(modbus.mbvalues[62], 100);
    EXPECT_EQ(modbus.mbvalues[63], 0);
}

TEST(ModbusAsciiReply, Outcomes) {
    const struct {
        const char* what;
        bool floatread;
        const char* reply;
        Kind kind;
        const char* text;
        std::vector<double> values;
    } cases[] = {
        {"silence", true, "", Kind::NoResponse, "No Response", {-32100, 9}},
        {"nine characters", true, ":0103007\r", Kind::NoResponse, "No Response", {-32100, 9}},
        {"two floats", true, ":01030842C80000BFC000006B\r\n", Kind::Values, "", {100, -1.5, 0}},
        {"a wrong check", true, ":01030842C80000BFC0000000\r\n", Kind::Values, "", {100, -1.5, 0}},
        {"a float cut short", true, ":01030842C80000BFC0\r\n", Kind::Values, "", {100, 0}},
        {"no float", true, ":010300FC\r\n", Kind::Empty, "", {0, 0}},
        {"an exception", true, ":0183027A\r\n", Kind::Exception, "Ex.Error", {2, 0}},
        {"integers", false, ":0103020005F5\r\n", Kind::Empty, "", {0, 0}},
        // The pair behind the data, here the check 58, is taken for coils as well.
        {"coils",
         false,
         ":010101A558\r\n",
         Kind::Values,
         "1 0 1 0 0 1 0 1 0 0 0 1 1 0 1 0 ",
         {1, 0, 1, 0, 0, 1, 0, 1, 0, 0, 0, 1, 1, 0, 1, 0, 0}},
        {"coils, more counted", false, ":0101FF01\r\n", Kind::Values, "1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 ", {1, 0}},
        {"noise", true, "\x81\xFF..garbage..\x01", Kind::Empty, "", {0, 0}},
    };
    for (const auto& [what, floatread, reply, kind, text, values] : cases) {
        SCOPED_TRACE(what);
        ModbusState modbus;
        modbus.mbvalues.fill(9);
        modbus.floatread = floatread;
        const ModbusReply parsed = ParseAsciiReply(modbus, reply);
        EXPECT_EQ(parsed.kind, kind);
        EXPECT_EQ(parsed.text, text);
        EXPECT_EQ(First(modbus, values), values);
    }
}

TEST(ModbusAsciiReply, OnlyTheFirstValuesAreClearedAndTheLastIndexHolds) {
    ModbusState modbus;
    modbus.mbvalues.fill(9);
    modbus.floatread = true;
    ParseAsciiReply(modbus, ":01030442C80000EE\r\n");
    EXPECT_EQ(modbus.mbvalues[103], 0);
    EXPECT_EQ(modbus.mbvalues[104], 9);

    ParseAsciiReply(modbus, ":0103F8" + Repeated(200, "42C80000") + "00\r\n");
    EXPECT_EQ(modbus.mbvalues[125], 100);
}
