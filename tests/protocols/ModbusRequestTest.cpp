#include <gtest/gtest.h>

#include <cmath>

#include "fieldsim/ModbusSlave.h"
#include "protocols/modbus/ModbusCheck.h"
#include "protocols/modbus/ModbusRequest.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using support::Hex;

namespace {

std::string Rtu(const std::string& message) {
    return Hex(fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes(message)));
}

}  // namespace

TEST(ModbusRequest, Rtu) {
    const struct {
        int command;
        int slave;
        double reg;
        std::vector<float> data;
        const char* message;  // without the check
    } cases[] = {
        {3, 1, 100, {10}, "01 03 00 64 00 0A"},
        {1, 17, 0, {62}, "11 01 00 00 00 3E"},
        {5, 1, 4, {1}, "01 05 00 04 FF 00"},
        {5, 1, 4, {2}, "01 05 00 04 00 00"},
        {6, 247, 9, {-2}, "F7 06 00 09 FF FE"},
        {6, 1, 10, {2.5F}, "01 06 00 0A 00 02"},
        {6, 1, 10, {255.5F}, "01 06 00 0A 01 00"},
        {6, 1, 10, {65535}, "01 06 00 0A FF FF"},
        {6, 1, 10, {-65536}, "01 06 00 0A 00 00"},
        {15, 1, 10, {1}, "01 0F 00 0A 00 00 01 00 01"},
        {15, 1, 10, {1, 0, 1, 0, 1}, "01 0F 00 0A 00 02 05 00 01 00 00 00 01 00 00 00 01"},
        {16, 1, 10, {258, 3}, "01 10 00 0A 00 01 04 01 02 00 03"},
        {3, 1, 10, {}, "01 03 00 0A"},
    };
    for (auto [command, slave, reg, data, message] : cases) {
        const ModbusRequest request = BuildRtuRequest(command, slave, reg, data);
        EXPECT_EQ(Hex(request.frame), Rtu(message));
        EXPECT_TRUE(request.Built());
    }
    std::vector<float> data = {-2, 5, -65536};
    EXPECT_EQ(Hex(BuildRtuRequest(6, 1, 9, data).frame).substr(0, 17), "01 06 00 09 FF FE");
    EXPECT_EQ(data, (std::vector<float>{65534, 5, 0})) << "a negative datum is written back";
}

TEST(ModbusRequest, Ascii) {
    const struct {
        int command;
        int slave;
        double reg;
        std::vector<float> data;
        std::string frame;
        AsciiCheck check = AsciiCheck::Required;
    } cases[] = {
        {3, 1, 100, {10}, ":01030064000A8E\r\n"},
        {3, 247, 0, {1}, ":F703000000015\r\n"},    // the check has one digit
        {3, 247, 0, {6}, ":F70300000006100\r\n"},  // a sum of zero has three
        {6, 1, 100, {-2}, ":01060064FFFE98\r\n"},
        {5, 1, 4, {1}, ":010500040001F5\r\n"},  // no 255, 0 in this framing
        {16, 1, 100, {1, 2}, ":01100064001279\r\n"},
        {16, 1, 100, {4096, 1}, ":01100064100017A\r\n"},
        {3, 1, 100, {}, ":01030064098\r\n"},
        {3, 1, 0, {10}, ":01030000000AF2\r\n", AsciiCheck::Standard},
        {3, 247, 0, {1}, ":F7030000000105\r\n", AsciiCheck::Standard},
        {3, 247, 0, {6}, ":F7030000000600\r\n", AsciiCheck::Standard},
    };
    for (auto [command, slave, reg, data, frame, check] : cases) {
        EXPECT_EQ(BuildAsciiRequest(command, slave, reg, data, check).frame, frame);
    }
}

TEST(ModbusRequest, WhatCannotBeAskedSaysWhy) {
    const struct {
        int command;
        int slave;
        double reg;
        float datum;
        const char* problem;
    } cases[] = {
        {0, 300, -1, 1e6F, "Bad COMMAND TYPE selected."},
        {8, 1, 1, 1, "Bad COMMAND TYPE selected."},
        {14, 1, 1, 1, "Bad COMMAND TYPE selected."},
        {17, 1, 1, 1, "Bad COMMAND TYPE selected."},
        {3, 248, -1, 1, "Illegal Slave Address."},
        {3, -1, 1, 1, "Illegal Slave Address."},
        {3, 1, 65536, 1e6F, "Bad REGISTER entered."},
        {3, 1, -1, 1, "Bad REGISTER entered."},
        {3, 1, NAN, 1, "Bad REGISTER entered."},
        {3, 1, 1, 65537, "Bad DATA VALUE entered."},
        {3, 1, 1, -65537, "Bad DATA VALUE entered."},
        {3, 1, 1, NAN, "Bad DATA VALUE entered."},
        {3, 0, 65535, 1, ""},
        {3, 247, 0, 1, ""},
    };
    for (const auto& [command, slave, reg, datum, problem] : cases) {
        std::vector<float> data = {datum};
        for (const ModbusRequest& request :
             {BuildRtuRequest(command, slave, reg, data), BuildAsciiRequest(command, slave, reg, data)}) {
            EXPECT_EQ(request.problem, problem);
            EXPECT_EQ(request.frame.empty(), !request.Built());
        }
    }
}

TEST(ModbusWriteFrame, WritesOneValue) {
    const struct {
        double value;
        int reg;
        int command;
        int slave;
        bool rtu32bit;
        const char* message;  // without the check
    } cases[] = {
        {100, 198, 16, 1, false, "01 10 00 C6 00 02 04 42 C8 00 00"},
        {100, 198, 16, 1, true, "01 10 00 C6 00 01 04 42 C8 00 00"},
        {-123456, 198, 16, 1, false, "01 10 00 C6 00 02 04 C7 F1 20 00"},
        {1, 4, 5, 1, false, "01 05 00 04 FF 00"},
        {1.0000001, 4, 5, 1, false, "01 05 00 04 00 00"},
        {-2, 9, 6, 247, false, "F7 06 00 09 FF FE"},
        {1, 9, 15, 1, false, "01 0F 00 09 00 00 00 00 01"},
    };
    for (const auto& [value, reg, command, slave, rtu32bit, message] : cases) {
        ModbusState modbus;
        modbus.rtu32bit = rtu32bit;
        EXPECT_EQ(Hex(BuildWriteFrame(modbus, value, reg, command, slave).frame), Rtu(message));
    }
    EXPECT_EQ(BuildWriteFrame({}, 1, 9, 16, 248).problem, "Illegal Slave Address.");
    EXPECT_EQ(BuildWriteFrame({}, 1, 65536, 16, 1).problem, "Bad REGISTER entered.");
    EXPECT_EQ(BuildWriteFrame({}, 1e39, 9, 16, 1).problem, "Bad DATA VALUE entered.");
    EXPECT_EQ(BuildWriteFrame({}, 1e39, 9, 6, 1).problem, "Bad DATA VALUE entered.");
    EXPECT_EQ(BuildClockWriteFrame({}, {}, -1, 1).problem, "Bad REGISTER entered.");
}

TEST(ModbusWriteFrame, TheClockIsSixFloats) {
    const std::string floats =
        " 44 FD 40 00 40 40 00 00 41 10 00 00 40 E0 00 00 42 6C 00 00 41 F0 00 00";  // 2026 3 9 7 59 30
    ModbusState modbus;
    for (const auto& [rtu32bit, head] : {std::pair(false, "02 10 01 2C 00 0C 18"), {true, "02 10 01 2C 00 06 18"}}) {
        modbus.rtu32bit = rtu32bit;
        EXPECT_EQ(Hex(BuildClockWriteFrame(modbus, {2026, 3, 9, 7, 59, 30}, 300, 2).frame), Rtu(head + floats));
    }
}

TEST(ModbusCheck, OfTheKnownText) {
    EXPECT_EQ(ModbusCrc("123456789"), 0x4B37);  // the check value of CRC-16/MODBUS
    EXPECT_EQ(ModbusLrc("FFFF"), 2);
    EXPECT_EQ(ModbusLrc("0x1"), 255);  // what is no digit ends its pair
}
