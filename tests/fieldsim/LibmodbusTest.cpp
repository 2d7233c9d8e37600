// A master of another make reads the simulated slave through a pseudo-terminal.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <modbus.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <memory>
#include <string>
#include <thread>

#include "core/Text.h"
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

TEST(Libmodbus, ReadsAndWritesAndIsRefused) {
    ModbusSlave slave(17, Framing::Rtu,
                      MakeModbusMap({{1, "P", "", Kind::Float, 100}, {3, "T", "", Kind::Float, 20}},
                                    {{1, "A", "", Kind::Logical, 1}, {2, "B", "", Kind::Logical, 0}}),
                      5);
    const ServedSlave served(slave);
    ASSERT_EQ(served.failure, "");
    const auto expectNoSuchAddress = [](int result) {
        EXPECT_EQ(result, -1);
        EXPECT_EQ(errno, EMBXILADD);
    };
    for (const auto& [word, value] : {std::pair(0xC148, -12.5F), {0x41A0, 20}}) {  // each opens the port anew
        slave.ForgetWrites();
        const Master master = Connect(served.Path(), 17);
        ASSERT_TRUE(master) << modbus_strerror(errno);
        std::array<std::uint16_t, 4> registers{static_cast<std::uint16_t>(word)};
        ASSERT_EQ(modbus_write_registers(master.get(), 2, 2, registers.data()), 2) << modbus_strerror(errno);
        ASSERT_EQ(modbus_read_registers(master.get(), 0, 4, registers.data()), 4) << modbus_strerror(errno);
        EXPECT_EQ(modbus_get_float_abcd(registers.data()), 100);
        EXPECT_EQ(modbus_get_float_abcd(registers.data() + 2), value);
        ASSERT_EQ(modbus_write_bit(master.get(), 1, 1), 1) << modbus_strerror(errno);
        std::array<std::uint8_t, 2> coils{};
        ASSERT_EQ(modbus_read_bits(master.get(), 0, 2, coils.data()), 2) << modbus_strerror(errno);
        EXPECT_EQ(coils, (std::array<std::uint8_t, 2>{1, 1}));
        EXPECT_THAT(slave.WritesText(),
                    testing::ElementsAre("register 3 T = " + core::NumberText(value), "coil 2 B = 1"));
        expectNoSuchAddress(modbus_read_registers(master.get(), 4, 1, registers.data()));
        expectNoSuchAddress(modbus_write_registers(master.get(), 3, 2, registers.data()));
        expectNoSuchAddress(modbus_write_bit(master.get(), 2, 1));
        EXPECT_EQ(modbus_mask_write_register(master.get(), 0, 1, 1), -1);
        EXPECT_EQ(errno, EMBXILFUN);
    }
}

}  // namespace
}  // namespace fieldsim
