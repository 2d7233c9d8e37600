// The archive of each model on a real serial port, from a slave of another make that plays the windows.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "archive/modbus/ModbusArchive.h"
#include "support/LibmodbusSlave.h"
#include "support/PortDesk.h"

namespace {

using archive::ArchiveKind;

struct Collected final : archive::RunView {
    std::vector<std::vector<std::string>> rows;

    void Columns(const std::vector<std::string>&) override {}
    void Rows(const std::vector<std::vector<std::string>>& block) override {
        rows.insert(rows.end(), block.begin(), block.end());
    }
    void Record(int, int) override {}
    bool Stopped() const override { return false; }
};

TEST(LibmodbusArchive, EachModelIsReadFromItsWindow) {
    const struct {
        const char* model;  // a metering method is that of a CW
        ArchiveKind kind;
        int floats;
        const char* table;
        const char* time;  // of record 2
        std::size_t values;
    } cases[] = {
        {"AGA7", ArchiveKind::Hourly, 12, "hourly_tf_mf_7", "211/210/209 212:00:00", 8},
        {"AGA7", ArchiveKind::Daily, 13, "daily_tf_mf_7", "212/211/210 213:00:00", 9},
        {"AGA3", ArchiveKind::Hourly, 13, "hourly_tf_mf", "212/211/210 213:00:00", 9},
        {"AGA3", ArchiveKind::Daily, 14, "daily_tf_mf", "213/212/211 214:00:00", 10},
        {"TeleCorrector", ArchiveKind::Hourly, 15, "hourly_tc", "212/213/214 215:00:00", 11},
        {"TeleCorrector", ArchiveKind::Daily, 15, "daily_tc", "212/213/214 215:00:00", 11},
        {"TeleFlow", ArchiveKind::Hourly, 12, "hourly_tf", "211/210/209 212:00:00", 8},
        {"TeleFlow", ArchiveKind::Daily, 12, "daily_tf", "211/210/209 212:00:00", 8},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.table);
        const bool hourly = test.kind == ArchiveKind::Hourly;
        support::SlaveMap map;
        map.slave = 17;
        map.firstRegister = 601;
        map.registers = 521;
        support::LibmodbusSlave slave(map);
        slave.Show({hourly ? 603 : 601, hourly ? 607 : 605, hourly ? 1001 : 801, test.floats, 5,
                    [](int record, int offset) { return static_cast<float>(record * 100 + offset); }});
        support::PortDesk desk(slave.Path());
        core::Station station;
        station.consumer = "Hill Farm";
        station.isTeleCorrector = std::string(test.model) == "TeleCorrector";
        station.isCW = test.model[0] == 'A';
        station.stream[0] = test.model;
        station.slaveaddress = 17;
        station.commtimeout = 60;
        auto lease = desk.line.TakeIfFree();
        lease->CommPort(1);
        lease->Settings("9600,N,8,1");
        ASSERT_TRUE(lease->PortOpen(true));
        protocols::Conversation talk{lease, desk.clock, desk.feedback, desk.logs, desk.counters, station, "WARDEN"};
        Collected view;
        const auto outcome = archive::CollectModbusArchive(talk, desk.dbconn, test.kind, view);
        EXPECT_EQ(archive::ArchiveCollected(outcome), "Archive Collected");
        EXPECT_THAT(desk.feedback.boxes, testing::IsEmpty());
        EXPECT_EQ(slave.Float(hourly ? 607 : 605), 1.0F) << "the last index written";

        ASSERT_THAT(view.rows, testing::SizeIs(5));
        const auto table = desk.dbconn.Query("select * from " + std::string(test.table));
        ASSERT_THAT(table, testing::SizeIs(5));
        EXPECT_EQ(view.rows[0][0], test.time);
        const int order[] = {2, 3, 4, 5, 1};
        for (std::size_t i = 0; i < 5; ++i) {
            EXPECT_THAT(view.rows[i], testing::SizeIs(test.values + 1));
            const std::size_t behind = table[i].Size() - 1 - test.values;
            for (std::size_t value = 1; value <= test.values; ++value) {
                const int expected = order[i] * 100 + static_cast<int>(value);
                EXPECT_EQ(view.rows[i][value], std::to_string(expected));
                EXPECT_EQ(table[i][behind + value - 1].Number(), expected);
            }
        }
    }
}

}  // namespace
