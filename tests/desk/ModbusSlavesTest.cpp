// A real serial port with slaves of other makes: what is written reaches the register from which it is read, and no
// other.

#include <gmock/gmock.h>

#include <QTimer>
#include <map>
#include <string>
#include <vector>

#include "archive/modbus/ModbusArchive.h"
#include "collection/CollectionRun.h"
#include "core/Text.h"
#include "protocols/modbus/ModbusTransact.h"
#include "session/Session.h"
#include "session/StationLine.h"
#include "support/ChildProcess.h"
#include "support/Downloads.h"
#include "support/LibmodbusSlave.h"
#include "support/PortDesk.h"
#include "support/Script.h"
#include "support/SessionDesk.h"

namespace {

using archive::ArchiveKind;
using support::LibmodbusSlave;
using support::PortDesk;

// Everything that a slave holds.
struct Held {
    std::map<int, std::uint16_t> registers;
    std::map<int, bool> coils;

    Held(const LibmodbusSlave& slave, const support::SlaveMap& map) {
        for (int n = 0; n < map.registers; ++n) {
            registers[n] = map.floatInOneRegister ? 0 : slave.Register(n);
        }
        for (int n = 0; n < map.coils; ++n) {
            coils[n] = slave.Coil(n);
        }
    }
    bool operator==(const Held&) const = default;
};

// Polls, and makes the steps meanwhile.
void Poll(PortDesk& desk, session::Session& session, const std::vector<support::Script::Step>& steps) {
    support::Script script(steps);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { script.Turn(); });
    timer.start(5);
    QTimer::singleShot(60000, &timer, [&] { session.Disconnect(); });
    session.GetData();
    support::TurnUntil([&] { return desk.clock.Conversations() == 0; });
    EXPECT_EQ(script.Missing(), "");
}

TEST(LibmodbusSession, EveryTypeInEveryRegisterModeIsWrittenWhereItIsRead) {
    for (const bool oneRegister : {false, true}) {
        SCOPED_TRACE(oneRegister ? "a float in one register" : "a float in two registers");
        support::SlaveMap map;
        map.slave = 17;
        map.floatInOneRegister = oneRegister;
        LibmodbusSlave slave(map);
        PortDesk desk(slave.Path());
        const auto locationID = desk.AddStation();
        // A map laid out by hand: a stored address of 21 goes over the line as 20.
        desk.dbconn.Execute("update configdata_master set MB_CONFIG = true, rtubits = ?", {oneRegister});
        desk.dbconn.Execute("update configdata_detail set startaddress = '0'");
        const auto place = [&](const char* description, int address, const char* type) {
            desk.dbconn.Execute("update configdata_detail set startaddress = ?, type = ? where description = ?",
                                {std::to_string(address), type, description});
        };
        place("Keypad N2", 21, "Float");
        place("Keypad CO2", oneRegister ? 22 : 23, "Float");
        place("Door Position", 6, "Coil(Boolean)");
        if (!oneRegister) {
            place("Dial-out Retry Count", 41, "Integer");
            place("Dial-out Retry Delay", 42, "Integer");
        }
        const char* elements[] = {"Set Year", "Set Month", "Set Date", "Set Hour", "Set Minute", "Set Second"};
        for (int i = 0; i < 6; ++i) {
            place(elements[i], 51 + (oneRegister ? i : 2 * i), "Float");
        }
        place("Set Time & Date", 11, "Coil(Boolean)");
        slave.SetFloat(20, 1.5F);
        const int second = oneRegister ? 21 : 22;
        slave.SetFloat(second, 7.25F);

        support::RecordingView view;
        session::Session session(desk.place, view, locationID);
        const auto row = [&](const char* aga, const char* description) {
            return session.Parameters().Find(aga, description).value();
        };
        session.Connect();
        support::TurnUntil([&] { return session.HasLine(); });
        const auto polled = [&] { return session.ValuesAt().has_value() && !session.WritePending(); };
        std::vector<support::Script::Step> steps{
            {"read", polled,
             [&] {
                 EXPECT_EQ(session.Parameters().At(row("KEYPAD", "Keypad N2")).lastvalue, 1.5);
                 EXPECT_EQ(session.Parameters().At(row("KEYPAD", "Keypad CO2")).lastvalue, 7.25);
                 EXPECT_EQ(session.AskWrite(row("KEYPAD", "Keypad N2"), "-12.5"), "");
             }},
            {"coil", polled, [&] { EXPECT_EQ(session.AskWrite(row("DRS", "Door Position"), "OPEN"), ""); }}};
        if (!oneRegister) {
            steps.push_back({"integer", polled,
                             [&] { EXPECT_EQ(session.AskWrite(row("ALARM", "Dial-out Retry Delay"), "-300"), ""); }});
        }
        steps.push_back({"clock", polled, [&] { session.AskTime(); }});
        steps.push_back({"end", [&] { return polled() && !session.TimePending(); }, [&] { session.Disconnect(); }});
        Held expected(slave, map);
        Poll(desk, session, steps);
        EXPECT_THAT(view.boxes, testing::ElementsAre("The clock of the station: not confirmed: its map has no clock"));

        EXPECT_EQ(slave.Float(20), -12.5F);
        EXPECT_EQ(slave.Float(second), 7.25F) << "the neighbour";
        const core::DateTime now = desk.clock.Now();
        EXPECT_EQ(slave.Float(50), static_cast<float>(now.year));
        EXPECT_EQ(slave.Float(50 + (oneRegister ? 1 : 2)), static_cast<float>(now.month));
        expected.coils[5] = true;
        expected.coils[10] = true;
        if (!oneRegister) {
            expected.registers[41] = static_cast<std::uint16_t>(-300);
            for (const int changed : {20, 21, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61}) {
                expected.registers[changed] = slave.Register(changed);
            }
        }
        EXPECT_EQ(Held(slave, map), expected);
    }
}

// The fixed map of a model.
TEST(LibmodbusSession, ATeleFlowIsReadAndWrittenWhereItsMapSays) {
    support::SlaveMap map;
    map.slave = 17;
    map.registers = 600;
    map.coils = 80;
    LibmodbusSlave slave(map);
    slave.SetFloat(372, 0.25F);  // Keypad N2: the 187th value
    slave.SetCoil(26, true);     // Time Sync
    PortDesk desk(slave.Path());
    support::RecordingView view;
    session::Session session(desk.place, view, desk.AddStation());
    const auto place = [&](const char* aga, const char* name) { return session.Parameters().Find(aga, name).value(); };
    const auto polled = [&] { return session.ValuesAt().has_value() && !session.WritePending(); };
    Held expected(slave, map);
    session.Connect();
    support::TurnUntil([&] { return session.HasLine(); });
    Poll(desk, session,
         {{"a value", polled,
           [&] {
               EXPECT_EQ(session.Parameters().At(place("KEYPAD", "Keypad N2")).lastvalue, 0.25);
               EXPECT_EQ(session.AskWrite(place("KEYPAD", "Keypad N2"), "3.5"), "");
           }},
          {"a switch", polled, [&] { EXPECT_EQ(session.AskWrite(place("HEALTH", "Time Sync"), "SET_TIME"), ""); }},
          {"end", polled, [&] { session.Disconnect(); }}});
    EXPECT_EQ(slave.Float(372), 3.5F);
    expected.registers[372] = slave.Register(372);
    expected.registers[373] = slave.Register(373);
    expected.coils[26] = false;
    EXPECT_EQ(Held(slave, map), expected);
}

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
        auto lease = desk.lines.Of(station).TakeIfFree();
        lease->CommPort(1);
        lease->Settings("9600,N,8,1");
        ASSERT_TRUE(lease->PortOpen(true));
        protocols::Conversation talk{lease, desk.clock, desk.feedback, desk.logs, desk.counters, station, "WARDEN"};
        support::RecordingRun view;
        archive::ModbusArchiveOutcome outcome;
        support::Converse(desk.clock,
                          [&] { outcome = archive::CollectModbusArchive(talk, desk.dbconn, test.kind, view); });
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

// At address 1 the request for registers 125 to 248 has the LRC 04, and that to switch coil 251 on has 01.
struct AsciiSlaveTest : testing::Test {
    support::ChildProcess slave{{"/usr/bin/python3", ASCII_SLAVE, "1"}};
    support::PortDesk desk{Path()};
    std::int64_t locationID = desk.AddStation();

    std::string Path() {
        EXPECT_TRUE(slave.Printed("\n")) << slave.Said();
        return slave.Said().substr(0, slave.Said().find('\n'));
    }
    void SetUp() override {
        desk.dbconn.Execute("update configdata_master set mode='ASCII', slaveaddress=1");
        desk.dbconn.Execute("update configdata_detail set lastvalue=-1");
    }
    reading::RunState Collect() {
        reading::RunState state;
        support::Converse(desk.clock, [&] { collection::collectiong_Data(desk.place, locationID, state); });
        return state;
    }
    // The floats of the first two blocks by their numbers.
    std::map<int, double> Floats() {
        std::map<int, double> floats;
        for (const core::Row& row :
             desk.dbconn.Query("select startaddress, lastvalue from configdata_detail where type like 'Float%' and "
                               "cast(startaddress as integer) between 1 and 248")) {
            floats[(static_cast<int>(core::Val(row[0].Text())) + 1) / 2] = row[1].Number();
        }
        return floats;
    }
    protocols::WriteOutcome SwitchOn(int coil) {
        auto outcome = protocols::WriteOutcome::NotBuilt;
        bool over = false;
        session::OnStationLine(
            desk.place, nullptr, {}, locationID,
            [&](protocols::Conversation& talk) {
                outcome = protocols::ModbusWrite(talk, core::ValueKind::Logical, coil - 1, 1, protocols::onlineWrite);
            },
            [&] { over = true; });
        support::TurnUntil([&] { return over; });
        return outcome;
    }
};

TEST_F(AsciiSlaveTest, RefusesARequiredCheckOfOneDigit) {
    EXPECT_TRUE(Collect().runfailed);
    for (const auto& [number, value] : Floats()) {
        EXPECT_EQ(value, -1) << number;
    }
    EXPECT_EQ(SwitchOn(251), protocols::WriteOutcome::Failed);
    EXPECT_EQ(SwitchOn(12), protocols::WriteOutcome::Done);
}

TEST_F(AsciiSlaveTest, IsReadWholeAndWrittenInStandardFraming) {
    desk.dbconn.Execute("update configdata_master set framing='standard'");
    EXPECT_FALSE(Collect().runfailed) << desk.scratch.RtuErr();
    const auto floats = Floats();
    EXPECT_GT(floats.size(), 100U);
    EXPECT_TRUE(floats.rbegin()->first > 62) << "the second block";
    for (const auto& [number, value] : floats) {
        EXPECT_EQ(value, number + 0.25);
    }
    EXPECT_EQ(SwitchOn(251), protocols::WriteOutcome::Done);
}

}  // namespace
