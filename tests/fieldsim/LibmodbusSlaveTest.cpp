// The slave of another make, which tests of the station use, asked by a master of that make.

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/support/Hex.h"
#include "tests/support/LibmodbusSlave.h"

namespace {

using support::Bytes;
using support::Hex;
using support::LibmodbusSlave;

struct LibmodbusMaster {
    modbus_t* line;

    explicit LibmodbusMaster(const LibmodbusSlave& slave)
        : line(modbus_new_rtu(slave.Path().c_str(), 9600, 'N', 8, 1)) {
        modbus_set_slave(line, 9);
        modbus_set_response_timeout(line, 1, 0);
        EXPECT_EQ(modbus_connect(line), 0) << modbus_strerror(errno);
    }
    ~LibmodbusMaster() {
        modbus_close(line);
        modbus_free(line);
    }
    // The answer to a message without its check, in hex likewise.
    std::string Ask(const char* message) const {
        const std::string bytes = Bytes(message);
        std::vector<std::uint8_t> request(bytes.begin(), bytes.end());
        std::array<std::uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> reply{};
        modbus_send_raw_request(line, request.data(), static_cast<int>(request.size()));
        const int length = modbus_receive_confirmation(line, reply.data());
        return length < 2 ? "" : Hex(std::string(reply.begin(), reply.begin() + length - 2));
    }
};

TEST(LibmodbusSlave, HoldsRegistersAndCoils) {
    LibmodbusSlave slave({.slave = 9, .firstRegister = 40, .registers = 4, .firstCoil = 7, .coils = 2});
    slave.SetFloat(40, 100);
    slave.SetRegister(42, 0xFFFE);
    slave.SetCoil(8, true);
    for (int session = 0; session < 2; ++session) {
        const LibmodbusMaster master(slave);
        EXPECT_EQ(master.Ask("09 03 00 28 00 03"), "09 03 06 42 C8 00 00 FF FE");
        EXPECT_EQ(master.Ask("09 01 00 07 00 02"), "09 01 01 02");
        EXPECT_EQ(master.Ask("09 03 00 28 00 05"), "09 83 02");
    }
    const LibmodbusMaster master(slave);
    const std::array<std::uint16_t, 2> words = {0xBFC0, 0};
    EXPECT_EQ(modbus_write_registers(master.line, 41, 2, words.data()), 2) << modbus_strerror(errno);
    EXPECT_EQ(modbus_write_bit(master.line, 7, 1), 1) << modbus_strerror(errno);
    EXPECT_EQ(slave.Float(41), -1.5F);
    EXPECT_EQ(slave.Register(40), 0x42C8);
    EXPECT_TRUE(slave.Coil(7));
    EXPECT_EQ(slave.Requests().size(), 8U);
    EXPECT_EQ(Hex(slave.Requests().back()).substr(0, 17), "09 05 00 07 FF 00");
    EXPECT_THROW(slave.Float(43), std::out_of_range);
}

TEST(LibmodbusSlave, HoldsAFloatInOneRegister) {
    LibmodbusSlave slave({.slave = 9, .firstRegister = 197, .registers = 2, .floatInOneRegister = true});
    slave.SetFloat(197, -1.5F);
    const LibmodbusMaster master(slave);
    EXPECT_EQ(master.Ask("09 10 00 C6 00 01 04 42 C8 00 00"), "09 10 00 C6 00 01");
    EXPECT_EQ(slave.Float(198), 100);
    EXPECT_EQ(master.Ask("09 03 00 C5 00 02"), "09 03 08 BF C0 00 00 42 C8 00 00");
    EXPECT_EQ(master.Ask("09 03 00 C6 00 02"), "09 83 02");
    EXPECT_EQ(master.Ask("09 10 00 C6 00 02 04 42 C8 00 00"), "09 90 03");
    EXPECT_EQ(master.Ask("09 01 00 00 00 03"), "09 01 01 00");
}

TEST(LibmodbusSlave, PlaysExceptionsAndSilence) {
    LibmodbusSlave slave({.slave = 9});
    slave.Play(6, 4, 1);
    slave.Play(3, LibmodbusSlave::kSilence, 1);
    const LibmodbusMaster master(slave);
    EXPECT_EQ(master.Ask("09 06 00 00 00 07"), "09 86 04");
    modbus_set_response_timeout(master.line, 0, 50000);
    EXPECT_EQ(master.Ask("09 03 00 00 00 01"), "");
    modbus_set_response_timeout(master.line, 1, 0);
    EXPECT_EQ(master.Ask("09 03 00 00 00 01"), "09 03 02 00 00");
    EXPECT_EQ(master.Ask("09 06 00 00 00 07"), "09 06 00 00 00 07");
    EXPECT_EQ(slave.Register(0), 7);
}

}  // namespace
