// The archive of a Modbus station, read through its window: every kind of record, and every way in which a run ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archive/modbus/ModbusArchive.h"
#include "demo/DemoRegister.h"
#include "fieldsim/Field.h"
#include "fieldsim/SimLine.h"
#include "support/Hex.h"
#include "support/ScratchDesk.h"
#include "support/ScriptedLine.h"

namespace {

using archive::ArchiveKind;
using fieldsim::Fault;
using support::Bytes;
using support::Hex;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct View final : archive::RunView {
    std::string header;
    std::vector<std::string> rows;  // cells separated by "|"
    std::vector<std::string> progress;
    int stopBehind = 1000;  // rows

    void Columns(const std::vector<std::string>& captions) override {
        header.clear();
        for (const std::string& caption : captions) {
            header += (header.empty() ? "" : "|") + caption;
        }
    }
    void Rows(const std::vector<std::vector<std::string>>& block) override {
        for (const auto& cells : block) {
            std::string row;
            for (const std::string& cell : cells) {
                row += (row.empty() ? "" : "|") + cell;
            }
            rows.push_back(row);
        }
    }
    void Record(int records, int newest) override { progress.push_back(archive::RecordText(records, newest)); }
    bool Stopped() const override { return static_cast<int>(rows.size()) >= stopBehind; }
};

struct Told final : core::Feedback {
    std::vector<std::string> boxes;
    std::vector<std::string> sent;
    std::function<void()> onSent;

    void Status(const std::string&) override {}
    void Box(const std::string& text) override { boxes.push_back(text); }
    void Lamp(const std::string& lamp, const std::string& bytes) override {
        if (lamp == "TX") {
            sent.push_back(Hex(bytes));
            if (onSent) {
                onSent();
            }
        }
    }
};

// A desk in front of a station with `newest` records, in which each float is 100 times the record and its offset.
struct ArchiveDesk : support::ScratchDesk {
    fieldsim::SimPorts ports{clock};
    fieldsim::SimLine serial{ports};
    protocols::FieldLine field{serial, clock};
    protocols::BsapCounters counters;
    Told told;
    View view;
    core::Station station;
    double newest = 5;
    std::unique_ptr<fieldsim::ModbusSlave> slave;
    std::unique_ptr<fieldsim::LineFaults> faults;

    ArchiveDesk() {
        station.consumer = "O'Brien's Works";
        station.protocol = core::Protocol::Modbus;
        station.commtimeout = 100;
    }

    void OpenSlave(int floats, const std::deque<Fault>& script = {}) {
        std::vector<fieldsim::ModbusArchiveFile> files(2);
        files[0] = {"Daily", 602, 606, 802, floats};
        files[1] = {"Hourly", 604, 608, 1002, floats};
        for (auto& file : files) {
            file.newest = [this](const core::DateTime&) { return static_cast<int>(newest); };
            file.value = [](int record, int offset) { return record * 100 + offset; };
        }
        fieldsim::ModbusMap map = fieldsim::MakeModbusMap({}, {}, station.rtuBitsMode);
        map.archive = fieldsim::MakeArchiveWindows(files, station.rtuBitsMode);
        slave = std::make_unique<fieldsim::ModbusSlave>(station.slaveaddress, station.framing, map);
        faults = std::make_unique<fieldsim::LineFaults>(*slave, fieldsim::LineFaults::Options{script, {}});
        ports.Attach(1, *faults);
    }

    archive::ModbusArchiveOutcome Collect(ArchiveKind kind = ArchiveKind::Hourly) { return Collect(field, kind); }
    archive::ModbusArchiveOutcome Collect(protocols::FieldLine& line, ArchiveKind kind) {
        auto lease = line.TakeIfFree();
        lease->PortOpen(true);
        protocols::Conversation talk{lease, clock, told, logs, counters, station, "WARDEN"};
        talk.modbus.rtu32bit = station.rtuBitsMode;
        return archive::CollectModbusArchive(talk, dbconn, kind, view);
    }

    // The records of a table, cells separated by "|".
    std::vector<std::string> Table(const std::string& table) {
        std::vector<std::string> records;
        for (const core::Row& row : dbconn.Query("select * from " + table)) {
            std::string& text = records.emplace_back(row[0].Text());
            for (std::size_t i = 1; i < row.Size(); ++i) {
                text += "|" + row[i].Text();
            }
        }
        return records;
    }
};

const core::Station teleFlow;

core::Station TeleCorrector() {
    core::Station station;
    station.isTeleCorrector = true;
    return station;
}

core::Station Cw(const char* method) {
    core::Station station;
    station.isCW = true;
    station.stream[0] = method;
    return station;
}

// Of a download that brought nothing there is nothing to tell.
TEST(ModbusArchive, ADownloadIsInTheAuditTrail) {
    ArchiveDesk desk;
    desk.OpenSlave(12);
    desk.Collect(ArchiveKind::Hourly);
    desk.Collect(ArchiveKind::Daily);
    desk.slave->Manners().dead = true;
    desk.Collect(ArchiveKind::Daily);
    EXPECT_THAT(desk.dbconn.Texts("select * from TTS_table"),
                ElementsAre(HasSubstr(": User WARDEN collected Hourly Archive from RTU O'Brien's Works."),
                            HasSubstr(": User WARDEN collected Daily Archive from RTU O'Brien's Works.")));
}

TEST(ModbusArchive, EveryKindComesUnderItsNames) {
    const struct {
        core::Station model;
        ArchiveKind kind;
        int floats;
        const char* row;  // of the second record, which is the first to come
        const char* table;
        const char* ids;  // what stands in front of its values there
        const char* firstCaption;
        const char* lastCaption;
        int captions;
    } cases[] = {
        {Cw("AGA7"), ArchiveKind::Hourly, 12, "211/210/209 212:00:00|201|202|203|204|205|206|207|208", "hourly_tf_mf_7",
         "", "|Static Pressure |", "|Battery Voltage  ", 9},
        {Cw("AGA3"), ArchiveKind::Hourly, 13, "212/211/210 213:00:00|201|202|203|204|205|206|207|208|209",
         "hourly_tf_mf", "", "|Diff. Pressure |", "|Battery Voltage  ", 10},
        {TeleCorrector(), ArchiveKind::Hourly, 15, "212/213/214 215:00:00|201|202|203|204|205|206|207|208|209|210|211",
         "hourly_tc", "", "|Static Pressure |", "|Battery Volt", 12},
        {teleFlow, ArchiveKind::Hourly, 12, "211/210/209 212:00:00|201|202|203|204|205|206|207|208", "hourly_tf",
         "0|0|", "|Diff. Pressure |", "|Battery Voltage  ", 9},
        {Cw("AGA7"), ArchiveKind::Daily, 13, "212/211/210 213:00:00|201|202|203|204|205|206|207|208|209",
         "daily_tf_mf_7", "", "|Static Pressure |", "|Energy Yesterday", 10},
        {Cw("AGA3"), ArchiveKind::Daily, 14, "213/212/211 214:00:00|201|202|203|204|205|206|207|208|209|210",
         "daily_tf_mf", "", "|Diff. Pressure |", "|Energy Yesterday", 11},
        {TeleCorrector(), ArchiveKind::Daily, 15, "212/213/214 215:00:00|201|202|203|204|205|206|207|208|209|210|211",
         "daily_tc", "", "|Static Pressure |", "|Battery Volt", 12},
        {teleFlow, ArchiveKind::Daily, 12, "211/210/209 212:00:00|201|202|203|204|205|206|207|208", "daily_tf", "0|0|",
         "|Diff. Pressure |", "|Battery Voltage  ", 9},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.table);
        ArchiveDesk desk;
        desk.station.isCW = test.model.isCW;
        desk.station.stream = test.model.stream;
        desk.station.isTeleCorrector = test.model.isTeleCorrector;
        desk.dbconn.Execute("insert into " + std::string(test.table) + "(NodeName) values('of a run before')");
        desk.OpenSlave(test.floats);
        const auto outcome = desk.Collect(test.kind);
        EXPECT_EQ(archive::ArchiveCollected(outcome), "Archive Collected");
        // Blocks from the newest down, each in the station's order: 2, 3, 4, 5, then 1.
        ASSERT_THAT(desk.view.rows, SizeIs(5));
        EXPECT_EQ(desk.view.rows[0], test.row);
        EXPECT_THAT(desk.view.rows[3], HasSubstr("|501|502|503|"));
        EXPECT_THAT(desk.view.rows[4], HasSubstr("|101|102|103|"));
        EXPECT_THAT(desk.view.progress, ElementsAre("Record (4/5 )", "Record (5/5 )"));
        EXPECT_THAT(desk.view.header,
                    AllOf(HasSubstr(test.firstCaption), testing::EndsWith(test.lastCaption),
                          testing::StartsWith(test.kind == ArchiveKind::Daily ? "Date  " : "Hour  ")));
        EXPECT_EQ(std::count(desk.view.header.begin(), desk.view.header.end(), '|') + 1, test.captions);

        const auto records = desk.Table(test.table);
        ASSERT_THAT(records, SizeIs(5));
        for (std::size_t i = 0; i < records.size(); ++i) {
            std::string expected = desk.view.rows[i] + "|";
            expected.insert(expected.find('|') + 1, test.ids);
            EXPECT_EQ(records[i], expected + "O'Brien's Works");
        }
    }
}

// Worked out by another program. Five hourly records of twelve floats: pointer 302, index 304, window 501.
TEST(ModbusArchive, TheFramesOfARun) {
    ArchiveDesk desk;
    desk.OpenSlave(12);
    desk.Collect();
    EXPECT_THAT(desk.told.sent, ElementsAre("01 03 02 5B 00 02 B4 60", "01 10 02 5F 00 02 04 40 A0 00 00 BA 51",
                                            "01 03 03 E9 00 60 94 52", "01 10 02 5F 00 02 04 3F 80 00 00 A2 4F",
                                            "01 03 03 E9 00 18 94 70"));
    ArchiveDesk wide;  // a float in one register
    wide.station.rtuBitsMode = true;
    wide.OpenSlave(12);
    EXPECT_EQ(archive::ArchiveCollected(wide.Collect()), "Archive Collected");
    EXPECT_EQ(wide.view.rows, desk.view.rows);
    EXPECT_THAT(wide.told.sent, ElementsAre("01 03 02 5B 00 01 F4 61", "01 10 02 5F 00 01 04 40 A0 00 00 BA 62",
                                            "01 03 03 E9 00 30 94 6E", "01 10 02 5F 00 01 04 3F 80 00 00 A2 7C",
                                            "01 03 03 E9 00 0C 94 7F"));
}

TEST(ModbusArchive, TheNumberOfTheNewestRecordDecidesTheBlocks) {
    const struct {
        double newest;
        std::vector<std::string> indexes;
        std::size_t rows;
        const char* said;
    } cases[] = {
        {0, {}, 0, "Archive Collected"},
        {-3, {}, 0, "Archive Collected"},
        {3, {"3"}, 3, "Archive Collected"},
        {4, {"4"}, 4, "Archive Collected"},
        {8, {"8", "4"}, 8, "Archive Collected"},
        {9, {"9", "5", "1"}, 9, "Archive Collected"},
        {40000, {}, 0, "The station says that its newest record is number 40000\rNo records received."},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.newest);
        ArchiveDesk desk;
        desk.newest = test.newest;
        desk.OpenSlave(12);
        EXPECT_EQ(archive::ArchiveCollected(desk.Collect()), test.said);
        std::vector<std::string> writes;
        for (const std::string& index : test.indexes) {
            writes.push_back("register 608 Hourly index = " + index);
        }
        EXPECT_EQ(desk.slave->WritesText(), writes);
        EXPECT_THAT(desk.view.rows, SizeIs(test.rows));
        EXPECT_THAT(desk.Table("hourly_tf"), SizeIs(test.rows));
        EXPECT_EQ(std::set<std::string>(desk.view.rows.begin(), desk.view.rows.end()).size(), test.rows);
    }
}

TEST(ModbusArchive, AStopLeavesTheRowsOfTheBlocksSoFar) {
    for (const int behind : {1, 5, 9}) {
        ArchiveDesk desk;
        desk.newest = 9;
        desk.view.stopBehind = behind;
        desk.OpenSlave(12);
        const auto outcome = desk.Collect();
        const std::size_t rows = behind == 1 ? 4 : behind == 5 ? 8 : 9;
        EXPECT_THAT(desk.view.rows, SizeIs(rows));
        EXPECT_THAT(desk.Table("hourly_tf"), SizeIs(rows));
        EXPECT_EQ(archive::ArchiveCollected(outcome), rows == 9 ? "Archive Collected"
                                                                : "Stopped before the end\r" + std::to_string(rows) +
                                                                      " of 9 records received, " +
                                                                      std::to_string(rows) + " stored.");
    }
}

// A run of eight records has five requests: pointer, index, block, index, block.
constexpr int requests = 5;

std::size_t RecordsBefore(int request) {
    return request > 3 ? 4 : 0;
}

TEST(ModbusArchive, AReplyThatIsNotTheOneToItsRequestEndsTheRun) {
    const char* const noResponse = "There was No Response from the controller!\rCheck Settings and try again!";
    const char* const badCheck = "A CRC Error occurred in the last packet!";
    const std::pair<Fault, const char*> faults[] = {
        {Fault::Silence, noResponse},
        {Fault::Cut, nullptr},  // shorter than any reply, or with a wrong check
        {Fault::BadCheck, badCheck},
        {Fault::NoiseBefore, badCheck},
        {Fault::NoiseAfter, badCheck},
        {Fault::Late, noResponse},
        {Fault::Echo, badCheck},
        {Fault::NoCarrier, badCheck},
        {Fault::Exception, "Invalid Modbus Address Specified"},
    };
    for (const auto& [fault, box] : faults) {
        for (int request = 1; request <= requests; ++request) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(fault) << " at " << request);
            ArchiveDesk desk;
            desk.newest = 8;
            std::deque<Fault> script(static_cast<std::size_t>(request - 1), Fault::None);
            script.push_back(fault);
            desk.OpenSlave(12, script);
            const auto outcome = desk.Collect();
            EXPECT_THAT(desk.told.boxes,
                        ElementsAre(box == nullptr ? testing::Matcher<std::string>(testing::AnyOf(noResponse, badCheck))
                                                   : testing::Matcher<std::string>(box)));
            EXPECT_THAT(desk.told.sent, SizeIs(request)) << "nothing is tried again";
            EXPECT_THAT(desk.view.rows, SizeIs(RecordsBefore(request)));
            EXPECT_THAT(desk.Table("hourly_tf"), SizeIs(RecordsBefore(request)));
            EXPECT_THAT(archive::ArchiveCollected(outcome),
                        testing::EndsWith(request == 1  ? "\rNo records received."
                                          : request < 4 ? "\r0 of 8 records received, 0 stored."
                                                        : "\r4 of 8 records received, 4 stored."));
        }
    }
}

TEST(ModbusArchive, TheReplyOfAnotherStationOrFunctionIsNoValue) {
    for (const char* const reply :
         {"02 03 04 40 A0 00 00", "01 04 04 40 A0 00 00", "01 03 08 40 A0 00 00 40 A0 00 00"}) {
        support::ScriptedLine wire;
        ArchiveDesk desk;
        protocols::FieldLine line(wire, desk.clock);
        wire.replies = {fieldsim::ModbusFrame(fieldsim::Framing::Rtu, Bytes(reply))};
        EXPECT_EQ(desk.Collect(line, ArchiveKind::Hourly).newest, 0) << reply;
        EXPECT_THAT(desk.told.sent, SizeIs(1)) << reply;
        EXPECT_THAT(desk.told.boxes, ElementsAre(HasSubstr("There was No Response")));
    }
}

TEST(ModbusArchive, AScheduledRunTakesTheLineAtAnyStep) {
    for (int request = 1; request <= requests; ++request) {
        SCOPED_TRACE(request);
        ArchiveDesk desk;
        desk.newest = 8;
        desk.OpenSlave(12);
        std::shared_ptr<protocols::LineLease> run;
        desk.told.onSent = [&] {
            if (desk.told.sent.size() == static_cast<std::size_t>(request)) {
                desk.clock.After(10, [&] { run = desk.field.TakeOver("A scheduled collection has taken the line"); });
            }
        };
        const auto outcome = desk.Collect();
        EXPECT_EQ(outcome.failure, "A scheduled collection has taken the line");
        EXPECT_THAT(desk.told.boxes, IsEmpty());
        EXPECT_THAT(desk.told.sent, SizeIs(request));
        EXPECT_THAT(desk.Table("hourly_tf"), SizeIs(RecordsBefore(request)));
        EXPECT_THAT(desk.view.rows, SizeIs(RecordsBefore(request)));
    }
}

TEST(ModbusArchive, WhatCannotBeReadOrStoredIsSaid) {
    ArchiveDesk ascii;
    ascii.station.framing = core::Framing::Ascii;
    ascii.OpenSlave(12);
    EXPECT_THAT(archive::ArchiveCollected(ascii.Collect()), testing::StartsWith("Modbus ASCII cannot"));
    EXPECT_THAT(ascii.told.boxes, ElementsAre("Valid parameters not available to assemble Modbus packet"));
    EXPECT_THAT(ascii.slave->WritesText(), IsEmpty());

    ArchiveDesk aga9;
    aga9.station.isCW = true;
    aga9.station.stream[0] = "AGA9";
    aga9.OpenSlave(12);
    EXPECT_THAT(aga9.Collect().failure, HasSubstr("no such archive"));
    EXPECT_THAT(aga9.told.sent, IsEmpty());

    ArchiveDesk unknown;
    unknown.dbconn.Execute("update modbus_para set hourlyData = 0");
    unknown.OpenSlave(12);
    EXPECT_THAT(unknown.Collect().failure, HasSubstr("modbus_para"));
    EXPECT_THAT(unknown.told.sent, IsEmpty());

    ArchiveDesk full;
    full.dbconn.Execute("create trigger full before insert on hourly_tf begin select raise(abort, 'disk full'); end");
    full.OpenSlave(12);
    EXPECT_THAT(archive::ArchiveCollected(full.Collect()), "disk full\r4 of 5 records received, 0 stored.");
    EXPECT_THAT(full.view.rows, SizeIs(4)) << "what came is seen";
    EXPECT_THAT(full.RtuErr(), HasSubstr("disk full"));
}

// Every record of the field, of the models whose stations speak Modbus.
TEST(ModbusArchive, WhatTheFieldHoldsIsWhatComes) {
    for (const char* const model : {"TeleFlow", "TeleCorrector"}) {
        for (const ArchiveKind kind : {ArchiveKind::Daily, ArchiveKind::Hourly}) {
            ArchiveDesk desk;
            const auto locationID = demo::AddStation(desk.dbconn, {"O'Neill", model, "Modbus", "RTU", 1, 7});
            fieldsim::Field field(desk.dbconn, {});
            field.AttachTo(desk.ports);
            desk.station = *core::ReadStation(desk.dbconn, locationID);
            EXPECT_EQ(archive::ArchiveCollected(desk.Collect(kind)), "Archive Collected");
            const auto& file = field.Station(locationID)->archive[kind == ArchiveKind::Hourly ? 1 : 0];
            const int newest = kind == ArchiveKind::Hourly ? 72 : 40;
            ASSERT_THAT(desk.view.rows, SizeIs(newest));
            const auto* records = archive::RecordKindOf(desk.station, 1, kind);
            for (int row = 0; row < newest; ++row) {
                const int record = newest - row / 4 * 4 - 3 + row % 4;
                std::string text = desk.view.rows[static_cast<std::size_t>(row)];
                for (std::size_t value = 1; value <= records->Values(); ++value) {
                    text.erase(0, text.find('|') + 1);
                    const double served = static_cast<float>(file.value(record, static_cast<int>(value)));
                    EXPECT_NEAR(core::Val(text), served, 1e-6) << record << " " << value;
                }
            }
            EXPECT_THAT(desk.view.rows[static_cast<std::size_t>(3)],
                        testing::StartsWith(kind == ArchiveKind::Hourly ? "9/3/2026 7:00:00|" : "9/3/2026 6:00:00|"));
        }
    }
}

}  // namespace
