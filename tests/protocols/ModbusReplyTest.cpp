#include <gtest/gtest.h>

#include "fieldsim/ModbusSlave.h"
#include "protocols/modbus/ModbusReply.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using Kind = ModbusReply::Kind;

namespace {

std::string Rtu(const std::string& message) {
    return fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes(message));
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

struct Row {
    const char* what;
    std::string reply;
    bool floatread;
    Kind kind;
    std::vector<double> values;  // from index 1
    AsciiCheck check = AsciiCheck::Required;
};

template <typename Parse>
void ExpectReplies(const std::vector<Row>& rows, const Parse& parse) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ModbusState modbus;
        modbus.mbvalues.fill(9);  // of an earlier reply
        modbus.floatread = row.floatread;
        const ModbusReply parsed = parse(modbus, row);
        EXPECT_EQ(parsed.kind, row.kind);
        EXPECT_EQ(First(modbus, row.values), row.values);
        EXPECT_EQ(parsed.Answered(), row.kind == Kind::Values || row.kind == Kind::Exception);
    }
}

}  // namespace

TEST(ModbusReply, RtuOutcomes) {
    ExpectReplies(
        {
            {"silence", "", true, Kind::NoResponse, {-32100, 9}},
            {"four bytes", Bytes("01 03 02 00"), true, Kind::NoResponse, {-32100, 9}},
            {"two floats", Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1A"), true, Kind::Values, {100, -1.5, 0}},
            {"a bad check", Bytes("01 03 08 42 C8 00 00 BF C0 00 00 7C 1B"), true, Kind::CrcError, {8, 0}},
            {"a flipped bit", Bytes("01 03 08 42 C8 00 01 BF C0 00 00 7C 1A"), true, Kind::CrcError, {8, 0}},
            {"an exception", Bytes("01 83 02 C0 F1"), true, Kind::Exception, {2, 0}},
            {"six decimals", Rtu("01 03 08 3E AA AA AB C6 1C 40 1A"), true, Kind::Values, {0.333333, -10000.025391, 0}},
            {"small floats", Rtu("01 03 08 38 D1 B7 17 33 D6 BF 95"), true, Kind::Values, {0.0001, 0, 0}},
            {"floats, fewer counted", Rtu("01 03 04 42 C8 00 00 BF C0 00 00"), true, Kind::Values, {100, 0}},
            {"floats, more counted", Rtu("01 03 10 42 C8 00 00 BF C0"), true, Kind::Values, {100, 0}},
            {"no float at all", Rtu("01 03 00"), true, Kind::Empty, {0, 0}},
            {"signed integers", Rtu("01 03 06 7F FF 80 00 FF FE"), false, Kind::Values, {32767, -32768, -2}},
            // The check word stands behind integers.
            {"its check", Bytes("01 03 04 00 0A 00 14 DA 3E"), false, Kind::Values, {10, 20, 0xDA3E - 0x10000, 0}},
            {"input registers", Rtu("01 04 02 00 05"), false, Kind::Values, {5}},
            {"integers of another length", Rtu("01 03 04 00 01"), false, Kind::Empty, {-32100, 0}},
            {"input registers as floats", Rtu("01 04 04 42 C8 00 00"), true, Kind::Empty, {0, 0}},
            {"coils", Rtu("01 01 01 A5"), false, Kind::Values, {1, 0, 1, 0, 0, 1, 0, 1, 0}},
            {"coils, more counted", Rtu("01 01 40 80"), false, Kind::Values, {0, 0, 0, 0, 0, 0, 0, 1, 0}},
            {"a register written", Rtu("01 06 00 09 FF FE"), false, Kind::Values, {0}},
            {"too long for it", Rtu("01 06 00 09 FF FE 00"), false, Kind::Empty, {-32100}},
            {"registers written", Bytes("01 10 00 C6 00 02 A1 F5"), false, Kind::Values, {0}},
            {"a coil written", Bytes("01 05 00 04 FF 00 CD FB"), false, Kind::Empty, {0}},
        },
        [](ModbusState& modbus, const Row& row) { return ParseRtuReply(modbus, row.reply); });
}

TEST(ModbusReply, AsciiOutcomes) {
    constexpr auto standard = AsciiCheck::Standard;
    ExpectReplies(
        {
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
            {"noise in front", "~}:01030442C80000EE\r\n", true, Kind::Values, {100, 0}},
            {"a lost carrier", ":01030842C80000BF\r\nNO CARRIER\r\n", true, Kind::Values, {100, 0}},
            {"two replies", ":01030442C80000EE\r\n:01030442C80000EE\r\n", true, Kind::Empty, {0, 0}},
            {"noise", "\x81\xFF..garbage..\x01", true, Kind::Empty, {0, 0}},
            {"standard", "\r\n:01030842C80000BFC000006b\r\n", true, Kind::Values, {100, -1.5, 0}, standard},
            {"standard, a wrong check", ":01030842C80000BFC0000000\r\n", true, Kind::CrcError, {}, standard},
            {"standard, a changed digit", ":01030842C80001BFC000006B\r\n", true, Kind::CrcError, {}, standard},
            {"standard, a check of one digit", ":01030842C80000BFC00000B\r\n", true, Kind::CrcError, {}, standard},
            {"standard, no end", ":01030842C80000BFC000006B", true, Kind::CrcError, {}, standard},
            {"standard, an exception", ":0183027A\r\n", true, Kind::Exception, {2}, standard},
            {"standard, no such exception", ":0183027B\r\n", true, Kind::CrcError, {}, standard},
            {"standard, silence", "", true, Kind::NoResponse, {}, standard},
        },
        [](ModbusState& modbus, const Row& row) { return ParseAsciiReply(modbus, row.reply, row.check); });
}

TEST(ModbusReply, OfTheLongestWhatFitsIsKept) {
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

    // Of an ASCII reply the first 103 are cleared, and the last index holds.
    modbus.mbvalues.fill(9);
    ParseAsciiReply(modbus, ":01030442C80000EE\r\n");
    EXPECT_EQ(modbus.mbvalues[103], 0);
    EXPECT_EQ(modbus.mbvalues[104], 9);
    ParseAsciiReply(modbus, ":0103F8" + Repeated(200, "42C80000") + "00\r\n");
    EXPECT_EQ(modbus.mbvalues[125], 100);
}
