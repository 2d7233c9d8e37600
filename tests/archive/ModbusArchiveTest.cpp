// The archive of a Modbus station, read through its window: every kind of record, and every way in which a run ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archive/modbus/ModbusArchive.h"
#include "fieldsim/LineFaults.h"
#include "fieldsim/ModbusArchive.h"
#include "fieldsim/ModbusSlave.h"
#include "fieldsim/SimLine.h"
#include "support/Hex.h"
#include "support/ScratchDesk.h"
#include "support/ScriptedLine.h"

namespace {

using archive::ArchiveKind;
using fieldsim::Fault;
using support::Bytes;
using support::Hex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string Joined(const std::vector<std::string>& cells) {
    std::string text;
    for (const std::string& cell : cells) {
        text += (text.empty() ? "" : "|") + cell;
    }
    return text;
}

struct View final : archive::RunView {
    std::string header;
    std::vector<std::string> rows;
    std::vector<std::string> progress;
    std::size_t stopBehind = 1000;  // rows

    void Columns(const std::vector<std::string>& captions) override { header = Joined(captions); }
    void Rows(const std::vector<std::vector<std::string>>& block) override {
        std::transform(block.begin(), block.end(), std::back_inserter(rows), Joined);
    }
    void Record(int records, int newest) override { progress.push_back(archive::RecordText(records, newest)); }
    bool Stopped() const override { return rows.size() >= stopBehind; }
};

struct Told final : core::Feedback {
    std::vector<std::string> boxes;
    std::vector<std::string> sent;
    std::function<void()> onSent = [] {};

    void Status(const std::string&) override {}
    void Box(const std::string& text) override { boxes.push_back(text); }
    void Lamp(const std::string& lamp, const std::string& bytes) override {
        if (lamp == "TX") {
            sent.push_back(Hex(bytes));
            onSent();
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

    std::vector<std::string> Table(const std::string& table) {
        std::vector<std::string> records;
        for (const core::Row& row : dbconn.Query("select * from " + table)) {
            std::vector<std::string> cells;
            for (std::size_t i = 0; i < row.Size(); ++i) {
                cells.push_back(row[i].Text());
            }
            records.push_back(Joined(cells));
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

TEST(ModbusArchive, EveryKindComesUnderItsNames) {
    const struct {
        core::Station model;
        ArchiveKind kind;
        int floats;
        const char* time;  // of the second record, which is the first to come
        int values;
        const char* table;
        const char* lastCaption;
    } cases[] = {
        {Cw("AGA7"), ArchiveKind::Hourly, 12, "211/210/209 212", 8, "hourly_tf_mf_7", "|Battery Voltage  "},
        {Cw("AGA3"), ArchiveKind::Hourly, 13, "212/211/210 213", 9, "hourly_tf_mf", "|Battery Voltage  "},
        {TeleCorrector(), ArchiveKind::Hourly, 15, "212/213/214 215", 11, "hourly_tc", "|Battery Volt"},
        {teleFlow, ArchiveKind::Hourly, 12, "211/210/209 212", 8, "hourly_tf", "|Battery Voltage  "},
        {Cw("AGA7"), ArchiveKind::Daily, 13, "212/211/210 213", 9, "daily_tf_mf_7", "|Energy Yesterday"},
        {Cw("AGA3"), ArchiveKind::Daily, 14, "213/212/211 214", 10, "daily_tf_mf", "|Energy Yesterday"},
        {TeleCorrector(), ArchiveKind::Daily, 15, "212/213/214 215", 11, "daily_tc", "|Battery Volt"},
        {teleFlow, ArchiveKind::Daily, 12, "211/210/209 212", 8, "daily_tf", "|Battery Voltage  "},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.table);
        ArchiveDesk desk;
        desk.station.isCW = test.model.isCW;
        desk.station.stream = test.model.stream;
        desk.station.isTeleCorrector = test.model.isTeleCorrector;
        desk.dbconn.Execute("insert into " + std::string(test.table) + "(NodeName) values('of a run before')");
        desk.OpenSlave(test.floats);
        EXPECT_EQ(archive::ArchiveCollected(desk.Collect(test.kind)), "Archive Collected");
        // Blocks from the newest down, each in the station's order: 2, 3, 4, 5, then 1.
        ASSERT_THAT(desk.view.rows, SizeIs(5));
        std::string row = test.time + std::string(":00:00");
        for (int value = 1; value <= test.values; ++value) {
            row += "|" + std::to_string(200 + value);
        }
        EXPECT_EQ(desk.view.rows[0], row);
        EXPECT_THAT(desk.view.rows[3], HasSubstr("|501|502|503|"));
        EXPECT_THAT(desk.view.rows[4], HasSubstr("|101|102|103|"));
        EXPECT_THAT(desk.view.progress, ElementsAre("Record (4/5 )", "Record (5/5 )"));
        EXPECT_THAT(desk.view.header, testing::EndsWith(test.lastCaption));
        EXPECT_THAT(desk.view.header, testing::StartsWith(test.kind == ArchiveKind::Daily ? "Date  " : "Hour  "));
        EXPECT_EQ(std::count(desk.view.header.begin(), desk.view.header.end(), '|'), test.values);

        // In front of a TeleFlow's values two columns stand that no reply fills.
        std::vector<std::string> records;
        for (const std::string& shown : desk.view.rows) {
            records.push_back(shown + "|O'Brien's Works");
            const bool hasIDs = !test.model.isCW && !test.model.isTeleCorrector;
            records.back().insert(records.back().find('|') + 1, hasIDs ? "0|0|" : "");
        }
        EXPECT_EQ(desk.Table(test.table), records);
        const std::string kind = test.kind == ArchiveKind::Daily ? "Daily" : "Hourly";
        EXPECT_THAT(desk.dbconn.Texts("select * from TTS_table"),
                    ElementsAre(HasSubstr(": User WARDEN collected " + kind + " Archive from RTU O'Brien's Works.")));
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

TEST(ModbusArchive, TheNumberOfTheNewestRecordDecidesTheBlocksUntilAStop) {
    const struct {
        double newest;
        std::vector<int> indexes;
        std::size_t rows;
        const char* said;
        std::size_t stopBehind = 1000;
    } cases[] = {
        {0, {}, 0, "Archive Collected"},
        {-3, {}, 0, "Archive Collected"},
        {3, {3}, 3, "Archive Collected"},
        {8, {8, 4}, 8, "Archive Collected"},
        {9, {9, 5, 1}, 9, "Archive Collected"},
        {40000, {}, 0, "The station says that its newest record is number 40000\rNo records received."},
        {9, {9}, 4, "Stopped before the end\r4 of 9 records received, 4 stored.", 1},
        {9, {9, 5}, 8, "Stopped before the end\r8 of 9 records received, 8 stored.", 5},
        {9, {9, 5, 1}, 9, "Archive Collected", 9},
        {8, {8, 4}, 8, "Archive Collected", 8},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.newest);
        ArchiveDesk desk;
        desk.newest = test.newest;
        desk.view.stopBehind = test.stopBehind;
        desk.OpenSlave(12);
        EXPECT_EQ(archive::ArchiveCollected(desk.Collect()), test.said);
        std::vector<std::string> writes;
        for (const int index : test.indexes) {
            writes.push_back("register 608 Hourly index = " + std::to_string(index));
        }
        EXPECT_EQ(desk.slave->WritesText(), writes);
        EXPECT_EQ(std::set<std::string>(desk.view.rows.begin(), desk.view.rows.end()).size(), test.rows);
        EXPECT_THAT(desk.Table("hourly_tf"), SizeIs(test.rows));
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
    const auto said = [](ArchiveDesk& desk) {
        desk.OpenSlave(12);
        const std::string text = archive::ArchiveCollected(desk.Collect());
        EXPECT_THAT(desk.slave->WritesText(), SizeIs(desk.view.rows.empty() ? 0 : 1));
        return text;
    };
    ArchiveDesk ascii;
    ascii.station.framing = core::Framing::Ascii;
    EXPECT_THAT(said(ascii), testing::StartsWith("Modbus ASCII cannot"));
    EXPECT_THAT(ascii.told.boxes, ElementsAre("Valid parameters not available to assemble Modbus packet"));

    ArchiveDesk aga9;
    aga9.station = Cw("AGA9");
    EXPECT_THAT(said(aga9), HasSubstr("no such archive"));
    ArchiveDesk unknown;
    unknown.dbconn.Execute("update modbus_para set hourlyData = 0");
    EXPECT_THAT(said(unknown), HasSubstr("modbus_para"));
    EXPECT_THAT(unknown.told.sent, IsEmpty());
    // Of a download that brought nothing there is nothing to tell.
    EXPECT_THAT(unknown.dbconn.Texts("select * from TTS_table"), IsEmpty());

    ArchiveDesk full;
    full.dbconn.Execute("create trigger full before insert on hourly_tf begin select raise(abort, 'disk full'); end");
    EXPECT_EQ(said(full), "disk full\r4 of 5 records received, 0 stored.");
    EXPECT_THAT(full.view.rows, SizeIs(4)) << "what came is seen";
    EXPECT_THAT(full.RtuErr(), HasSubstr("disk full"));
}

}  // namespace
