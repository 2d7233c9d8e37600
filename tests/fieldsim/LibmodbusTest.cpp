// A master of another make reads the simulated slave through a pseudo-terminal.

#include <gtest/gtest.h>
#include <modbus.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <memory>
#include <string>
#include <thread>

#include "fieldsim/ModbusSlave.h"
#include "fieldsim/PtyPorts.h"
#include "tests/support/ScratchDesk.h"

namespace fieldsim {
namespace {

class ServedSlave {
  public:
    explicit ServedSlave(Device& device) {
        failure = ports_.Open(scratch_.path / "COM1", device);
        thread_ = std::thread([this] {
            while (!stopped_) {
                ports_.Turn(20);
            }
        });
    }
    ~ServedSlave() {
        stopped_ = true;
        thread_.join();
    }

    std::string Path() const { return (scratch_.path / "COM1").string(); }
    std::string failure;

  private:
    support::ScratchDirectory scratch_;
    PtyPorts ports_;
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

struct FreeModbus {
    void operator()(modbus_t* master) const {
        modbus_close(master);
        modbus_free(master);
    }
};
using Master = std::unique_ptr<modbus_t, FreeModbus>;

Master Connect(const std::string& path, int slave) {
    Master master(modbus_new_rtu(path.c_str(), 9600, 'N', 8, 1));
    modbus_set_slave(master.get(), slave);
    modbus_set_response_timeout(master.get(), 1, 0);
    return modbus_connect(master.get()) == 0 ? std::move(master) : nullptr;
}

TEST(Libmodbus, ReadsCoilsRegistersAndExceptions) {
    ModbusSlave slave(17, Framing::Rtu,
                      MakeModbusMap({{1, "P", "", Kind::Float, 100}, {3, "N", "", Kind::Integer, -2}},
                                    {{2, "On", "", Kind::Logical, 1}, {62, "Last", "", Kind::Logical, 1}}),
                      5);
    const ServedSlave served(slave);
    ASSERT_EQ(served.failure, "");
    for (int session = 0; session < 3; ++session) {  // the port lives through many openings
        const Master master = Connect(served.Path(), 17);
        ASSERT_TRUE(master) << modbus_strerror(errno);
        std::array<std::uint16_t, 3> registers{};
        ASSERT_EQ(modbus_read_registers(master.get(), 0, 3, registers.data()), 3) << modbus_strerror(errno);
        EXPECT_EQ(registers, (std::array<std::uint16_t, 3>{0x42C8, 0, 0xFFFE}));
        EXPECT_EQ(modbus_get_float_abcd(registers.data()), 100);
        EXPECT_EQ(modbus_read_input_registers(master.get(), 2, 1, registers.data()), 1);
        std::array<std::uint8_t, 62> coils{};
        ASSERT_EQ(modbus_read_bits(master.get(), 0, 62, coils.data()), 62) << modbus_strerror(errno);
        EXPECT_EQ((std::array{coils[0], coils[1], coils[2], coils[60], coils[61]}),
                  (std::array<std::uint8_t, 5>{0, 1, 0, 0, 1}));
        EXPECT_EQ(modbus_read_registers(master.get(), 3, 1, registers.data()), -1);
        EXPECT_EQ(errno, EMBXILADD);
        EXPECT_EQ(modbus_mask_write_register(master.get(), 0, 1, 1), -1);
        EXPECT_EQ(errno, EMBXILFUN);
    }
}

TEST(Libmodbus, WritesRegistersAndCoilsAndReadsThemBack) {
    ModbusSlave slave(17, Framing::Rtu,
                      MakeModbusMap({{1, "P", "", Kind::Float, 100}, {3, "T", "", Kind::Float, 20}},
                                    {{1, "A", "", Kind::Logical, 1}, {2, "B", "", Kind::Logical, 0}}),
                      5);
    const ServedSlave served(slave);
    const Master master = Connect(served.Path(), 17);
    ASSERT_TRUE(master) << modbus_strerror(errno);
    std::array<std::uint16_t, 4> registers{0xC148, 0};
    ASSERT_EQ(modbus_write_registers(master.get(), 2, 2, registers.data()), 2) << modbus_strerror(errno);
    ASSERT_EQ(modbus_read_registers(master.get(), 0, 4, registers.data()), 4) << modbus_strerror(errno);
    EXPECT_EQ(modbus_get_float_abcd(registers.data()), 100);
    EXPECT_EQ(modbus_get_float_abcd(registers.data() + 2), -12.5F);
    ASSERT_EQ(modbus_write_register(master.get(), 0, 0x42C9), 1) << modbus_strerror(errno);
    ASSERT_EQ(modbus_write_bit(master.get(), 1, 1), 1) << modbus_strerror(errno);
    EXPECT_EQ(slave.WritesText(),
              (std::vector<std::string>{"register 3 T = -12.5", "register 1 P = 100.5", "coil 2 B = 1"}));
    std::array<std::uint8_t, 2> coils{0, 0};
    ASSERT_EQ(modbus_write_bits(master.get(), 0, 2, coils.data()), 2) << modbus_strerror(errno);
    coils = {1, 1};
    ASSERT_EQ(modbus_read_bits(master.get(), 0, 2, coils.data()), 2) << modbus_strerror(errno);
    EXPECT_EQ(coils, (std::array<std::uint8_t, 2>{0, 0}));
    slave.ForgetWrites();
    const auto expectNoSuchAddress = [](int result) {
        EXPECT_EQ(result, -1);
        EXPECT_EQ(errno, EMBXILADD);
    };
    expectNoSuchAddress(modbus_write_registers(master.get(), 3, 2, registers.data()));
    expectNoSuchAddress(modbus_write_register(master.get(), 4, 1));
    expectNoSuchAddress(modbus_write_bit(master.get(), 2, 1));
    expectNoSuchAddress(modbus_write_bits(master.get(), 1, 2, coils.data()));
    EXPECT_EQ(slave.Writes().size(), 6U);
}

}  // namespace
}  // namespace fieldsim
