#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/Text.h"
#include "support/Downloads.h"

using namespace archive;
using namespace support;
using fieldsim::DataAnswer;
using testing::HasSubstr;

namespace {

// Whole downloads ----------------------------------------------------------------------------------------------------

// Every number of records up to three replies and more, in a file that is new, in one that has wrapped, and in one
// whose numbers have gone round; with fields of which a reply holds ten, three and two records.
TEST(DownloadTest, EveryRoutineBringsEveryRecordOnce) {
    for (const Selection& selection : selections) {
        HistoryTalk history(selection.isCW,
                            selection.screen == Screen::frmarchive ? DataAnswer::AtOnce : DataAnswer::Alternate);
        for (const int oldest : {0, 51, 65500, 65531, 70000}) {
            for (const std::size_t fields : {3U, 13U, 20U}) {
                for (const std::size_t records : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 8U, 9U, 11U, 35U, 50U}) {
                    const auto file = HourlyFile(records, oldest, fields);
                    history.station.Archives()[2] = file;
                    history.desk.dbconn.Execute("delete from tArchiveMark");
                    const Collected collected = history.Collect(WishOf(selection));
                    SCOPED_TRACE(std::string(selection.name) + ", " + std::to_string(records) + " records from " +
                                 std::to_string(oldest) + ", " + std::to_string(fields) + " fields");
                    EXPECT_EQ(collected.end, RunEnd::Whole) << collected.message;
                    EXPECT_EQ(history.view.rows, RowsOf(file, RunsNewestFirst(selection)));
                    const auto& captions = history.view.captions;
                    ASSERT_EQ(captions.size(), fields + 3);
                    EXPECT_EQ(captions[0], selection.timeHeader);
                    EXPECT_EQ(captions[1],
                              selection.screen == Screen::frmarchive ? "Global ID       " : "Globla ID       ");
                    EXPECT_EQ(captions[2] + captions[3], "Local ID        FIELD 1          ");
                }
            }
        }
    }
}

// What a download leaves ---------------------------------------------------------------------------------------------

TEST(DownloadTest, TheOnlineScreenStoresWhatIsNew) {
    HistoryTalk history(true);
    history.talk.streamno = 2;  // its hourly file is the fifth
    history.station.Archives()[5] = HourlyFile(10);
    const Wish wish = WishOf(selections[6]);
    EXPECT_EQ(history.Collect(wish).message, "Archive Collected\r10 records: 10 new, 0 known.");
    history.station.Archives()[5] = HourlyFile(13);
    EXPECT_EQ(history.Collect(wish).message,
              "Archive Collected\r7 records: 3 new, 4 known. The older ones were stored before.");
    const auto stored = history.desk.dbconn.Query(
        "select t.Time1, d.value1 from tArchiveTimeStamp t join tArchiveData d on d.TimeStampId=t.TimeStampId "
        "join tArchiveColumnHeader c on c.ColumnId=d.ColumnId where t.NodeId=7 and t.StreamNo=2 and "
        "t.HistoryTypeId=5 and c.ColumnName='FIELD 2          ' order by t.Time1");
    ASSERT_EQ(stored.size(), 13U);
    EXPECT_EQ(stored[12]["Time1"].Text(), "2026-02-01 12:00:00");
    EXPECT_EQ(stored[12]["value1"].Number(), 13.25);
    EXPECT_EQ(history.desk.dbconn.Texts("select * from TTS_table").back(),
              history.desk.logs.Stamp() + ": User WARDEN collected Hourly Archive from RTU O'Brien's Works.");
}

TEST(DownloadTest, TheOldScreenFillsItsReportTables) {
    struct Case {
        const char* modelno;
        ArchiveKind kind;
        const char* table;
        std::size_t fields;
    };
    for (const Case& c :
         {Case{"TeleFlow", ArchiveKind::Daily, "Daily_tf", 8}, Case{"TeleFlow", ArchiveKind::Hourly, "Hourly_tf", 8},
          Case{"TeleCorrector", ArchiveKind::Daily, "Daily", 11},
          Case{"TeleCorrector", ArchiveKind::Hourly, "Hourly", 11}}) {
        HistoryTalk history(false);
        history.talk.station.modelno = c.modelno;
        const auto file = HourlyFile(5, 0, c.fields);
        history.station.Archives()[HistoryType(1, c.kind)] = file;
        Wish wish = WishOf(selections[0]);
        wish.kind = c.kind;
        for (int times = 0; times < 2; ++times) {  // the table is emptied first
            EXPECT_EQ(history.Collect(wish).message, "Archive Collected");
        }
        const auto rows = history.desk.dbconn.Query(std::string("select * from ") + c.table);
        ASSERT_EQ(rows.size(), 5U) << c.table;
        const auto expected = RowsOf(file, false);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t column = 0; column < c.fields + 3; ++column) {
                EXPECT_EQ(rows[row][column].Text(), expected[row][column]) << c.table;
            }
            EXPECT_EQ(rows[row][c.fields + 3].Text(), "O'Brien's Works");
        }
    }
}

TEST(DownloadTest, FramesAreLoggedWhereTheScreenLogsThem) {
    const std::vector<std::string> own = {"GET Archive Num of Record",  "Receive Archive",  "Archive Defination",
                                          "Receive Archive Defination", "Get Archive data", "Receive Archive"};
    const std::vector<std::string> plain = {"Archive Request:",  "Archive Response:", "Archive Request:",
                                            "Archive Response:", "Archive Request:",  "Archive Response:"};
    for (std::size_t i = 0; i < std::size(selections); ++i) {
        for (const bool logGenflag : {true, false}) {
            HistoryTalk history(selections[i].isCW);
            history.desk.shared.logGenflag = logGenflag;
            history.station.Options().notReadyOneIn = 0;
            history.station.Archives()[2] = HourlyFile(2);
            history.Collect(WishOf(selections[i]));
            // Information, definitions, records: each request and its answer.
            const auto titles = !logGenflag ? std::vector<std::string>()
                                : i == 3    ? own
                                : i >= 6    ? plain
                                            : std::vector<std::string>();
            std::string log;
            for (std::size_t line = 0; line < titles.size(); ++line) {
                const auto& exchange = history.faults.Exchanges().at(line / 2);
                const std::string& bytes = line % 2 == 0 ? exchange.request : exchange.answer;
                log += "\r" + titles[line] + "\n\r" + core::HexLine(bytes) + "\n";
            }
            EXPECT_EQ(FileText(history.desk.shared.logpath), log) << selections[i].name;
        }
    }
}

// By date ------------------------------------------------------------------------------------------------------------

TEST(DownloadTest, ARangeOfDatesIsWholeDays) {
    const auto file = HourlyFile(24 * 6);
    for (const std::size_t selection : {4U, 7U}) {
        HistoryTalk history(selections[selection].isCW);
        history.station.Archives()[2] = file;
        Wish wish = WishOf(selections[selection]);
        wish.range = {{2026, 2, 3}, {2026, 2, 4}};
        EXPECT_EQ(history.Collect(wish).message, "Archive Collected\r48 records: 48 new, 0 known.");
        const auto all = RowsOf(file, false);
        EXPECT_EQ(history.view.rows, std::vector<std::vector<std::string>>(all.begin() + 48, all.begin() + 96));
    }
}

// The station reads on at the record that it found by date: what that brought comes twice, and counts once.
TEST(DownloadTest, ARangeThatBeginsBeforeTheFileOrEndsBehindIt) {
    for (const std::size_t selection : {4U, 7U}) {
        HistoryTalk history(selections[selection].isCW);
        Wish wish = WishOf(selections[selection]);
        const auto rows = [&](const core::DateTime& first, const core::DateTime& last) {
            wish.range = {first, last};
            EXPECT_EQ(history.Collect(wish).end, RunEnd::Whole);
            return history.view.rows;
        };
        for (std::size_t records = 0; records < 14; ++records) {
            const auto file = HourlyFile(records, 0, 8);
            history.station.Archives()[2] = file;
            EXPECT_EQ(rows({2026, 1, 15}, {2026, 3, 1}), RowsOf(file, false)) << records;
        }
        history.station.Archives()[2] = HourlyFile(24 * 6);
        EXPECT_EQ(rows({2026, 2, 6}, {2026, 2, 9}).size(), 24U);
        EXPECT_EQ(rows({2026, 2, 6}, {2026, 2, 6}).size(), 24U);
        EXPECT_EQ(rows({2026, 2, 6}, {2026, 2, 5}).size(), 0U);
        EXPECT_EQ(rows({2026, 2, 8}, {2026, 2, 9}).size(), 0U);
    }
}

// A full disk: the rows stay in the grid and the operator is told. So does a record whose time is none.
TEST(DownloadTest, WhatTheDatabaseRefusesIsTold) {
    HistoryTalk history(false);
    auto file = HourlyFile(5);
    file.records[2].timeBytes = fieldsim::TimeBytes{1, 0, 0xE4, 0x57};
    history.station.Archives()[2] = file;
    EXPECT_EQ(history.Collect(WishOf(selections[4])).message, "Archive Collected\r5 records: 5 new, 0 known.");
    EXPECT_EQ(history.view.rows[2][0], "01/01/1977   25:0:0");
    history.desk.dbconn.Execute("delete from tArchiveTimeStamp");
    history.desk.dbconn.Execute(
        "create trigger full before insert on tArchiveTimeStamp begin select raise(abort, "
        "'database or disk is full'); end");
    const auto collected = history.Collect(WishOf(selections[4]));
    EXPECT_THAT(collected.message, HasSubstr("Not stored: database or disk is full"));
    EXPECT_EQ(history.view.rows.size(), 5U);
}

}  // namespace
