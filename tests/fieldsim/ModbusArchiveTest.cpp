// The window in which a Modbus station shows its archive, byte by byte, and what the stations of a field keep.

#include <gtest/gtest.h>

#include "fieldsim/Field.h"
#include "fieldsim/GasBehaviour.h"
#include "fieldsim/ModbusArchive.h"
#include "tests/support/Hex.h"
#include "tests/support/ScratchDesk.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;

const Moment kNow{{2026, 3, 9, 8, 30, 0}, 1000};

std::string Ask(Device& device, const std::string& message, const Moment& now = kNow) {
    std::string answer;
    for (const Answer& part : device.Receive(ModbusFrame(Framing::Rtu, Bytes(message)), now)) {
        answer += part.bytes;
    }
    return Hex(answer.substr(0, answer.size() - 2));
}

// Records of one float, 1 to 6, each its own number: 1 is 3F80, 2 4000, 3 4040, 4 4080, 5 40A0, 6 40C0.
TEST(ModbusArchiveWindow, ShowsTheWantedRecordAndThreeBeforeIt) {
    const struct {
        const char* index;
        const char* window;
    } cases[] = {
        {"40 C0", "40 40 00 00 40 80 00 00 40 A0 00 00 40 C0 00 00"},  // 6: 3 to 6
        {"40 80", "3F 80 00 00 40 00 00 00 40 40 00 00 40 80 00 00"},  // 4: 1 to 4
        {"40 00", "3F 80 00 00 40 00 00 00 00 00 00 00 00 00 00 00"},  // 2: 1 and 2
        {"00 00", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
        {"40 E0", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},  // 7 is none
        {"BF 80", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
    };
    for (const bool oneRegister : {false, true}) {
        ModbusMap map = MakeModbusMap({{1, "Flowing Pressure", "", Kind::Float, 1}}, {}, oneRegister);
        map.archive = MakeArchiveWindows({{"Hourly", 101, 103, 201, 1, [](const core::DateTime&) { return 6; },
                                           [](int record, int) { return record; }}},
                                         oneRegister);
        ModbusSlave slave(1, Framing::Rtu, std::move(map));
        const std::string two = oneRegister ? " 00 01" : " 00 02";
        EXPECT_EQ(Ask(slave, "01 03 00 64" + two), "01 03 04 40 C0 00 00");
        for (const auto& test : cases) {
            EXPECT_EQ(Ask(slave, "01 10 00 66" + two + " 04 " + test.index + " 00 00"), "01 10 00 66" + two);
            EXPECT_EQ(Ask(slave, std::string("01 03 00 C8 00 0") + (oneRegister ? "4" : "8")),
                      std::string("01 03 10 ") + test.window);
        }
        // Nothing else is behind the last register.
        EXPECT_EQ(Ask(slave, "01 03 00 C8 00 09"), "01 83 02");
        EXPECT_EQ(Ask(slave, "01 03 00 10 00 01"), "01 83 02");
        EXPECT_EQ(Ask(slave, "01 03 00 00 00 65"), oneRegister ? "01 83 03" : "01 83 02");
    }
}

TEST(ModbusArchiveWindow, AFieldsStationKeepsDaysAndHoursAndGoesOn) {
    support::ScratchDesk desk;
    desk.dbconn.Execute(
        "insert into configdata_master(locationID, consumer, modelno, comport, protocol, mode, slaveaddress, delaytime,"
        " rtubits, MB_CONFIG) values (1, 'One', 'TeleCorrector', 'COM1', 'Modbus', 'RTU', 1, 2000, false, false)");
    Field field(desk.dbconn, {});
    const Field::Served& served = *field.Station(1);
    ASSERT_EQ(served.archive.size(), 2U);
    // Pointers 301 and 302, over the line as 601 and 603.
    EXPECT_EQ(Ask(*served.device, "01 03 02 59 00 02"), "01 03 04 42 20 00 00");  // 40
    EXPECT_EQ(Ask(*served.device, "01 03 02 5B 00 02"), "01 03 04 42 90 00 00");  // 72
    const ModbusArchiveFile& hourly = served.archive[1];
    EXPECT_EQ(hourly.newest({2026, 3, 9, 8, 59, 59}), 72);
    EXPECT_EQ(hourly.newest({2026, 3, 9, 9, 0, 0}), 73);
    const GasBehaviour live(1 * 1000003U + 1 * 4 + 1, 6);
    for (const int record : {1, 72, 73}) {
        const core::DateTime at = core::FromSeconds(core::ToSeconds({2026, 3, 9, 8, 0, 0}) + (record - 72) * 3600);
        EXPECT_EQ(hourly.value(record, 6), live({0, "Volume Today", "SCM"}, at));
        EXPECT_EQ(hourly.value(record, 12), at.day);
        EXPECT_EQ(hourly.value(record, 14), at.year);
        EXPECT_EQ(hourly.value(record, 15), at.hour);
    }
    EXPECT_EQ(served.archive[0].value(40, 15), 6) << "the contract hour";
    EXPECT_EQ(served.archive[0].value(40, 12), 9);
}

}  // namespace
}  // namespace fieldsim
