#include <gtest/gtest.h>

#include "fieldsim/ModbusSlave.h"
#include "protocols/modbus/ModbusReply.h"
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
        std::string reply;
        bool floatread;
        Kind kind;
        std::vector<double> values;  // from index 1
    } cases[] = {
        {"silence", "", true, Kind::NoResponse, {-32100, 9}},
        {"four bytes", Bytes("01 03 02 00"), true, Kind::NoResponse, {-32100, 9}},
        {"two floats", Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1A"), true, Kind::Values, {100, -1.5, 0}},
        {"a bad check", Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1B"), true, Kind::CrcError, {8, 0}},
        {"a flipped bit", Bytes("01 03 08 42 C8 00 01 BF C0 00 00 7C 1A"), true, Kind::CrcError, {8, 0}},
        {"an exception", Bytes("01 83 02 C0 F1"), true, Kind::Exception, {2, 0}},
        {"six decimals", Rtu("01 03 08 3E AA AA AB C6 1C 40 1A"), true, Kind::Values, {0.333333, -10000.025391, 0}},
        {"small floats", Rtu("01 03 08 38 D1 B7 17 33 D6 BF 95"), true, Kind::Values, {0.0001, 0, 0}},
        {"a large float", Rtu("01 03 04 4E 93 2C 06"), true, Kind::Values, {1234567936, 0}},
        {"floats, fewer counted", Rtu("01 03 04 42 C8 00 00 BF C0 00 00"), true, Kind::Values, {100, 0}},
        {"floats, more counted", Rtu("01 03 10 42 C8 00 00 BF C0"), true, Kind::Values, {100, 0}},
        {"a negative zero", Rtu("01 03 04 80 00 00 00"), true, Kind::Values, {0, 0}},
        {"no float at all", Rtu("01 03 00"), true, Kind::Empty, {0, 0}},
        {"signed integers", Rtu("01 03 06 7F FF 80 00 FF FE"), false, Kind::Values, {32767, -32768, -2}},
        {"input registers", Rtu("01 04 02 00 05"), false, Kind::Values, {5}},
        {"integers of another length", Rtu("01 03 04 00 01"), false, Kind::Empty, {-32100, 0}},
        {"input registers as floats", Rtu("01 04 04 42 C8 00 00"), true, Kind::Empty, {0, 0}},
        {"coils", Rtu("01 01 01 A5"), false, Kind::Values, {1, 0, 1, 0, 0, 1, 0, 1, 0}},
        {"coils, more counted", Rtu("01 01 40 80"), false, Kind::Values, {0, 0, 0, 0, 0, 0, 0, 1, 0}},
        {"a register written", Rtu("01 06 00 09 FF FE"), false, Kind::Values, {0}},
        {"too long for it", Rtu("01 06 00 09 FF FE 00"), false, Kind::Empty, {-32100}},
        {"registers written", Bytes("01 10 00 C6 00 02 A1 F5"), false, Kind::Values, {0}},
        {"a coil written", Bytes("01 05 00 04 FF 00 CD FB"), false, Kind::Empty, {0}},
    };
    for (const auto& [what, reply, floatread, kind, values] : cases) {
        SCOPED_TRACE(what);
        ModbusState modbus;
        modbus.mbvalues.fill(9);  // of an earlier reply
        modbus.floatread = floatread;
        const ModbusReply parsed = ParseRtuReply(modbus, reply);
        EXPECT_EQ(parsed.kind, kind);
        EXPECT_EQ(First(modbus, values), values);
        EXPECT_EQ(parsed.Answered(), kind == Kind::Values || kind == Kind::Exception);
    }
}

TEST(ModbusRtuReply, TheCheckWordStandsBehindIntegers) {
    ModbusState modbus;
    EXPECT_EQ(ParseRtuReply(modbus, Bytes("01 03 04 00 0A 00 14 DA 3E")).kind, Kind::Values);
    EXPECT_EQ(First(modbus, {10, 20}), (std::vector<double>{10, 20}));
    EXPECT_EQ(modbus.mbvalues[3], 0xDA3E - 0x10000);
    EXPECT_EQ(modbus.mbvalues[4], 0);
}

TEST(ModbusRtuReply, TheLongestRepliesKeepWhatFits) {
    ModbusState modbus;
    EXPECT_EQ(ParseRtuReply(modbus, Rtu("01 03 FE" + Repeated(127, " 00 07"))).count, 125U);
    EXPECT_EQ(modbus.mbvalues[0], 0);
    EXPECT_EQ(modbus.mbvalues[125], 7);

    EXPECT_EQ(ParseRtuReply(modbus, Rtu("01 01 FF" + Repeated(255, " FF"))).count, 125U);
    EXPECT_EQ(modbus.mbvalues[125], 1);

    modbus.floatread = true;
    EXPECT_EQ(ParseRtuReply(modbus, Rtu("01 03 F8" + Repeated(62, " 42 C8 00 00"))).count, 62U);
    EXPECT_EQ(modbus.mbvalues[62], 100);
    EXPECT_EQ(modbus.mbvalues[63], 0);
}

TEST(ModbusAsciiReply, Outcomes) {
    const struct {
        const char* what;
        const char* reply;
        bool floatread;
        Kind kind;
        std::vector<double> values;
    } cases[] = {
        {"silence", "", true, Kind::NoResponse, {-32100, 9}},
        {"nine characters", ":0103007\r", true, Kind::NoResponse, {-32100, 9}},
        {"two floats", ":01030842C80000BFC000006B\r\n", true, Kind::Values, {100, -1.5, 0}},
        {"a wrong check", ":01030842C80000BFC0000000\r\n", true, Kind::Values, {100, -1.5, 0}},
        {"a float cut short", ":01030842C80000BFC0\r\n", true, Kind::Values, {100, 0}},
        {"no float", ":010300FC\r\n", true, Kind::Empty, {0, 0}},
        {"an exception", ":0183027A\r\n", true, Kind::Exception, {2, 0}},
        {"integers", ":0103020005F5\r\n", false, Kind::Empty, {0, 0}},
        // The pair behind the data, here the check 58, is taken for coils as well.
        {"coils", ":010101A558\r\n", false, Kind::Values, {1, 0, 1, 0, 0, 1, 0, 1, 0, 0, 0, 1, 1, 0, 1, 0, 0}},
        {"coils, more counted", ":0101FF01\r\n", false, Kind::Values, {1, 0}},
        {"noise in front", "~}:01030442C80000EE\r\n", true, Kind::Values, {100, 0}},
        {"a lost carrier", ":01030842C80000BF\r\nNO CARRIER\r\n", true, Kind::Values, {100, 0}},
        {"two replies", ":01030442C80000EE\r\n:01030442C80000EE\r\n", true, Kind::Empty, {0, 0}},
        {"noise", "\x81\xFF..garbage..\x01", true, Kind::Empty, {0, 0}},
    };
    for (const auto& [what, reply, floatread, kind, values] : cases) {
        SCOPED_TRACE(what);
        ModbusState modbus;
        modbus.mbvalues.fill(9);
        modbus.floatread = floatread;
        const ModbusReply parsed = ParseAsciiReply(modbus, reply);
        EXPECT_EQ(parsed.kind, kind);
        EXPECT_EQ(First(modbus, values), values);
    }
}

// The check of a standard frame, in a reply that another slave made.
TEST(ModbusAsciiReply, AStandardCheckIsLookedAt) {
    const std::pair<const char*, Kind> cases[] = {
        {":01030842C80000BFC000006B\r\n", Kind::Values},
        {"\r\n:01030842C80000BFC000006b\r\n", Kind::Values},
        {":01030842C80000BFC0000000\r\n", Kind::CrcError},  // wrong
        {":01030842C80001BFC000006B\r\n", Kind::CrcError},  // a changed digit
        {":01030842C80000BFC00000B\r\n", Kind::CrcError},   // of one digit
        {":01030842C80000BFC000006B", Kind::CrcError},      // no end
        {":0183027A\r\n", Kind::Exception},
        {":0183027B\r\n", Kind::CrcError},
        {":01030842C8\r\n", Kind::CrcError},
        {"", Kind::NoResponse},
    };
    for (const auto& [reply, kind] : cases) {
        ModbusState modbus;
        modbus.floatread = true;
        EXPECT_EQ(ParseAsciiReply(modbus, reply, AsciiCheck::Standard).kind, kind) << reply;
        EXPECT_EQ(modbus.mbvalues[1], kind == Kind::Values ? 100 : modbus.mbvalues[1]);
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
