#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/Text.h"
#include "support/Downloads.h"

using namespace archive;
using namespace support;
using fieldsim::DataAnswer;
using fieldsim::Fault;
using testing::HasSubstr;

namespace {

// The rows of the table by which a screen chooses its routine.
struct Selection {
    const char* name;
    Screen screen;
    bool isCW;
    bool newFirst;
    const char* timeHeader;
};

const Selection selections[] = {
    {"frmarchive", Screen::frmarchive, false, false, "Time ::         "},
    {"CW long", Screen::frmCW_archive, false, true, "Time ::                         "},
    {"CW short", Screen::frmCW_archive, true, false, "Time ::                               "},
    {"CW short newest", Screen::frmCW_archive, true, true, "Time ::                               "},
    {"para long", Screen::frmparaarchive, false, false, "Time ::                         "},
    {"para long newest", Screen::frmparaarchive, false, true, "Time ::                         "},
    {"para short newest", Screen::frmparaarchive, true, true, "Time ::                               "},
    {"para short", Screen::frmparaarchive, true, false, "Time ::                                                     "},
};

// Long "frmCW_archive" ignores "New First".
bool RunsNewestFirst(const Selection& selection) {
    return selection.newFirst && (selection.isCW || selection.screen == Screen::frmparaarchive);
}

Wish WishOf(const Selection& selection, bool audit = false) {
    Wish wish;
    wish.screen = selection.screen;
    wish.newFirst = selection.newFirst;
    wish.audit = audit;
    wish.kind = ArchiveKind::Hourly;
    wish.file = 2;
    return wish;
}

// The rows that the grid is to show of a file.
std::vector<std::vector<std::string>> RowsOf(const fieldsim::ArchiveFile& file, bool newestFirst) {
    std::vector<std::vector<std::string>> rows;
    for (const fieldsim::FileRecord& record : file.records) {
        const core::DateTime& at = record.at;
        std::vector<std::string> row = {core::DateText(at) + "   " + std::to_string(at.hour) + ":0:0",
                                        std::to_string(record.globalID), std::to_string(record.localID)};
        for (const double value : record.values) {
            row.push_back(core::NumberText(value));
        }
        rows.push_back(row);
    }
    if (newestFirst) {
        std::reverse(rows.begin(), rows.end());
    }
    return rows;
}

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
    struct Case {
        std::size_t selection;
        std::vector<std::string> titles;
    };
    for (const Case& c :
         {Case{0, {}}, Case{2, {}}, Case{4, {}}, Case{5, {}},
          Case{3,
               {"GET Archive Num of Record", "Receive Archive", "Archive Defination", "Receive Archive Defination",
                "Get Archive data", "Receive Archive"}},
          Case{6, {"Archive Request:", "Archive Response:"}}, Case{7, {"Archive Request:", "Archive Response:"}}}) {
        for (const bool logGenflag : {true, false}) {
            HistoryTalk history(selections[c.selection].isCW);
            history.desk.shared.logGenflag = logGenflag;
            history.station.Archives()[2] = HourlyFile(2);
            history.Collect(WishOf(selections[c.selection]));
            const std::string log = FileText(history.desk.shared.logpath);
            EXPECT_EQ(log.empty(), c.titles.empty() || !logGenflag) << selections[c.selection].name;
            for (const std::string& title : c.titles) {
                EXPECT_EQ(log.find(title) != std::string::npos, logGenflag) << title;
            }
        }
    }
    HistoryTalk history(true);
    history.desk.shared.logGenflag = true;
    history.station.Options().notReadyOneIn = 0;
    history.station.Archives()[2] = HourlyFile(2);
    history.Collect(WishOf(selections[6]));
    const std::string log = FileText(history.desk.shared.logpath);
    EXPECT_THAT(log, HasSubstr("10 2 1 1 A0 2 0 B 0 70 7 4 2 0 10 3 "));
    for (const auto& exchange : history.faults.Exchanges()) {
        EXPECT_THAT(log, HasSubstr(core::HexLine(exchange.request)));
        EXPECT_THAT(log, HasSubstr(core::HexLine(exchange.answer)));
    }
}

// How many requests of a download's records were answered.
int RecordRequests(const HistoryTalk& history) {
    return static_cast<int>(
        std::count_if(history.faults.Exchanges().begin(), history.faults.Exchanges().end(), [](const auto& exchange) {
            return exchange.request.find("\x70\x07\x07") != std::string::npos ||
                   exchange.request.find("\x70\x07\x06") != std::string::npos;
        }));
}

std::int64_t Stored(HistoryTalk& history) {
    return history.desk.dbconn.First("select count(*) from tArchiveTimeStamp").value()[0].Long();
}

fieldsim::LineFaults::Options Lossy(double silence, double other) {
    fieldsim::LineFaults::Options faults;
    faults.chances = {{Fault::Silence, silence}, {Fault::Cut, other}, {Fault::BadCheck, other}};
    return faults;
}

fieldsim::LineFaults::Options DeadBehind(std::size_t answers) {
    fieldsim::LineFaults::Options faults;
    faults.script.assign(answers, Fault::None);
    faults.script.insert(faults.script.end(), 1000, Fault::Silence);
    return faults;
}

// What a station and a line do, and what the download leaves: records, on the disk before the next request; requests
// for records; what is said.
TEST(DownloadTest, WhatADownloadLeaves) {
    using Change = void (*)(fieldsim::ArchiveFile&);
    constexpr Change asItIs = [](fieldsim::ArchiveFile&) {};
    constexpr Change oneInTheFuture = [](fieldsim::ArchiveFile& file) { file.records[9].at.year = 2036; };
    constexpr Change single = [](fieldsim::ArchiveFile& file) { file.singleEvery = 40; };
    constexpr Change three = [](fieldsim::ArchiveFile& file) { file.mostPerReply = 3; };
    constexpr Change one = [](fieldsim::ArchiveFile& file) { file.mostPerReply = 1; };
    constexpr const char* whole = "Archive Collected\r";
    const fieldsim::LineFaults::Options good;
    const std::vector<std::size_t> newest = {5, 6};
    const std::vector<std::size_t> oldest = {4, 7};
    const struct {
        const char* name;
        std::vector<std::size_t> selections;
        std::size_t records;
        Change change;
        fieldsim::LineFaults::Options faults;
        std::size_t stored;
        int requests;  // at most
        const char* said;
        bool ranged = false;
    } cases[] = {
        {"as it is", newest, 400, asItIs, good, 400, 102, whole},
        {"as it is", oldest, 400, asItIs, good, 400, 100, whole},
        {"single replies", newest, 400, single, good, 400, 106, whole},
        {"three fit", newest, 400, three, good, 400, 138, whole},
        {"three fit", oldest, 400, three, good, 400, 136, whole},
        {"one fits", newest, 40, one, good, 40, 42, whole},
        {"one stamped 2036", oldest, 40, oneInTheFuture, good, 39, 13, whole, true},
        {"one in a hundred lost", newest, 2000, asItIs, Lossy(0.01, 0), 2000, 530, whole},
        {"one in a hundred lost", oldest, 2000, asItIs, Lossy(0.01, 0), 2000, 530, whole},
        {"one in five lost", newest, 200, asItIs, Lossy(0.1, 0.05), 200, 90, whole},
        {"one in five lost", oldest, 200, asItIs, Lossy(0.1, 0.05), 200, 90, whole},
        {"dead behind 12", oldest, 400, asItIs, DeadBehind(12), 40, 14,
         "Bad Response\rThe station gave no valid answer.\r40 records received, 40 stored: 40 new, 0 known."},
        {"dead behind 12", {5}, 400, asItIs, DeadBehind(12), 38, 14, "The station gave no valid answer.\r"},
        {"dead behind 12", {6}, 400, asItIs, DeadBehind(12), 39, 14, "The station gave no valid answer.\r"},
    };
    for (const auto& test : cases) {
        for (const std::size_t n : test.selections) {
            const Selection& selection = selections[n];
            HistoryTalk history(selection.isCW, DataAnswer::AtOnce, test.faults);
            history.talk.station.commtimeout = 100;
            auto file = HourlyFile(test.records);
            test.change(file);
            history.station.Archives()[2] = file;
            Wish wish = WishOf(selection);
            if (test.ranged) {
                wish.range = {{2026, 1, 1}, {2026, 12, 31}};
            }
            history.view.stopped = [&] {
                EXPECT_EQ(Stored(history), static_cast<std::int64_t>(history.view.rows.size()));
                return false;
            };
            const Collected collected = history.Collect(wish);
            SCOPED_TRACE(std::string(test.name) + ", " + selection.name + ": " + collected.message);
            EXPECT_EQ(collected.end == RunEnd::Whole, test.said == whole);
            EXPECT_THAT(collected.message, testing::StartsWith(test.said));
            EXPECT_THAT(collected.message, HasSubstr(std::to_string(test.stored) + " new, 0 known."));
            EXPECT_EQ(history.view.rows.size(), test.stored);
            EXPECT_EQ(Stored(history), static_cast<std::int64_t>(test.stored));
            EXPECT_LE(RecordRequests(history), test.requests);
        }
    }
}

// Newest first ends where everything below is in the store. A known record alone does not say so: a download that was
// cut off has left a gap below it.
TEST(DownloadTest, NewestFirstEndsAtWhatIsWhollyKnown) {
    for (const std::size_t selection : {5U, 6U}) {
        for (const int oldest : {0, 65480}) {
            HistoryTalk history(selections[selection].isCW);
            const Wish wish = WishOf(selections[selection]);
            const auto collect = [&](std::size_t records, std::size_t stopAt) {
                const int before = RecordRequests(history);
                history.station.Archives()[2] = HourlyFile(records, oldest);
                history.view.rows.clear();
                history.view.stopped = [&, stopAt] { return history.view.rows.size() >= stopAt; };
                const std::string said = history.Collect(wish).message;
                return std::pair(said, RecordRequests(history) - before);
            };
            SCOPED_TRACE(selections[selection].name);
            EXPECT_EQ(collect(100, 1000).first, "Archive Collected\r100 records: 100 new, 0 known.");
            const auto [same, few] = collect(100, 1000);
            EXPECT_THAT(same, HasSubstr(" 0 new, "));
            EXPECT_THAT(same, HasSubstr(" The older ones were stored before."));
            EXPECT_EQ(few, 1);
            const auto [more, some] = collect(103, 1000);
            EXPECT_THAT(more, HasSubstr(": 3 new, "));
            EXPECT_LE(some, 3);
            EXPECT_THAT(collect(150, 10).first, testing::StartsWith("Stopped before the end\r"));  // leaves a gap
            EXPECT_LT(Stored(history), 120);
            EXPECT_THAT(collect(152, 1000).first, HasSubstr("The older ones were stored before."));
            EXPECT_EQ(Stored(history), 152);
            // Another file under the same number: what is known of the former one does not end its download.
            auto other = HourlyFile(60, oldest);
            for (auto& record : other.records) {
                record.at.month = 5;
            }
            history.station.Archives()[2] = other;
            EXPECT_EQ(history.Collect(wish).message, "Archive Collected\r60 records: 60 new, 0 known.");
        }
    }
}

// The process dies in the middle: what had come is on the disk.
TEST(DownloadTest, WhatCameOutlivesTheProgram) {
    HistoryTalk history(true);
    history.station.Archives()[2] = HourlyFile(100);
    history.view.stopped = [&]() -> bool {
        if (history.view.rows.size() >= 30) {
            throw std::runtime_error("power");
        }
        return false;
    };
    EXPECT_THROW(history.Collect(WishOf(selections[6])), std::runtime_error);
    core::Database reopened(history.desk.shared.DatabasePath());
    EXPECT_GE(reopened.First("select count(*) from tArchiveTimeStamp").value()[0].Long(), 30);
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
TEST(DownloadTest, ARangeThatBeginsBeforeTheFileBringsAllOfIt) {
    for (const std::size_t selection : {4U, 7U}) {
        for (std::size_t records = 0; records < 14; ++records) {
            HistoryTalk history(selections[selection].isCW);
            const auto file = HourlyFile(records, 0, 8);
            history.station.Archives()[2] = file;
            Wish wish = WishOf(selections[selection]);
            wish.range = {{2026, 1, 15}, {2026, 3, 1}};
            EXPECT_EQ(history.Collect(wish).end, RunEnd::Whole);
            EXPECT_EQ(history.view.rows, RowsOf(file, false)) << records;
        }
    }
}

TEST(DownloadTest, ARangeAtTheEndAndBehindTheEndOfTheFile) {
    for (const auto& [last, rows] : {std::pair{6, 24}, std::pair{9, 24}, std::pair{5, 0}}) {
        HistoryTalk history(false);
        history.station.Archives()[2] = HourlyFile(24 * 6);
        Wish wish = WishOf(selections[4]);
        wish.range = {{2026, 2, 6}, {2026, 2, last}};
        EXPECT_EQ(history.Collect(wish).end, RunEnd::Whole);
        EXPECT_EQ(history.view.rows.size(), static_cast<std::size_t>(rows));
        wish.range = {{2026, 2, 8}, {2026, 2, 9}};
        EXPECT_EQ(history.Collect(wish).message, "Archive Collected\r0 records: 0 new, 0 known.");
    }
}

// Failures -----------------------------------------------------------------------------------------------------------

// A refusal is called one, whichever request it is the answer to.
TEST(DownloadTest, ARefusalIsCalledOne) {
    struct Case {
        std::array<std::uint8_t, 2> status;
        const char* message;
    };
    for (const Selection& selection : selections) {
        const std::string end = "\r0 records received";
        for (const Case& c :
             {Case{{135, 129}, "Invalid File Number\rThe station refused the request (status 135, 129)."},
              Case{{135, 130}, "Invalid Field Number\rThe station refused the request (status 135, 130)."},
              Case{{1, 2}, "The station refused the request (status 1, 2)."}}) {
            HistoryTalk history(selection.isCW);
            history.station.Archives()[2] = HourlyFile(5);
            history.station.Archives()[2].definitionStatus = c.status;
            const auto collected = history.Collect(WishOf(selection));
            EXPECT_EQ(collected.end, RunEnd::Failed) << selection.name;
            EXPECT_THAT(collected.message, testing::StartsWith(c.message + end)) << selection.name;
        }
        HistoryTalk history(selection.isCW);
        EXPECT_THAT(
            history.Collect(WishOf(selection)).message,
            testing::StartsWith("Invalid Archive Number\rThe station refused the request (status 135, 129)." + end));
        EXPECT_EQ(history.faults.Exchanges().size(), 1U);

        HistoryTalk gone(selection.isCW);
        gone.station.Archives()[2] = HourlyFile(40);
        gone.view.stopped = [&] {
            if (gone.view.rows.size() > 8) {
                gone.station.Archives().clear();
            }
            return false;
        };
        const std::string said = gone.Collect(WishOf(selection)).message;
        EXPECT_THAT(said, HasSubstr("The station refused the request (status 135, 129).\r")) << selection.name;
        EXPECT_EQ(said.find("Archive Collected"), std::string::npos);
    }
}

// A fault at each exchange of a download, once and then for good. A bad reply is forgiven, and no record is lost or
// wrong by it.
TEST(DownloadTest, EveryFaultAtEveryExchange) {
    const Fault everyFault[] = {Fault::Silence, Fault::BadCheck, Fault::Cut};
    for (const Selection& selection : selections) {
        const auto file = HourlyFile(11, 0, 8);
        const auto all = RowsOf(file, RunsNewestFirst(selection));
        for (const Fault fault : everyFault) {
            for (std::size_t at = 0; at < 6; ++at) {
                for (const std::size_t times : {1U, 3U, 100U}) {
                    fieldsim::LineFaults::Options faults;
                    faults.script.assign(at, Fault::None);
                    faults.script.insert(faults.script.end(), times, fault);
                    HistoryTalk history(selection.isCW, DataAnswer::AtOnce, faults);
                    history.station.Archives()[2] = file;
                    const auto collected = history.Collect(WishOf(selection));
                    SCOPED_TRACE(std::string(selection.name) + ", fault " + std::to_string(static_cast<int>(fault)) +
                                 " at " + std::to_string(at) + ", " + std::to_string(times) +
                                 " times: " + collected.message);
                    const bool met = history.faults.Exchanges().size() > at;
                    const bool forgiven = times < 4;
                    EXPECT_EQ(collected.end, !met || forgiven ? RunEnd::Whole : RunEnd::Failed);
                    EXPECT_EQ(collected.message.find("Archive Collected") == 0, collected.end == RunEnd::Whole);
                    ASSERT_LE(history.view.rows.size(), all.size());
                    EXPECT_TRUE(std::equal(history.view.rows.begin(), history.view.rows.end(), all.begin()));
                    const bool stores = selection.screen == Screen::frmparaarchive;
                    EXPECT_EQ(Stored(history), stores ? static_cast<std::int64_t>(history.view.rows.size()) : 0);
                }
            }
        }
    }
}

// Stopped, or its line taken, behind each request: what came is stored, and the next download completes it.
TEST(DownloadTest, ACutDownloadStoresWhatItHasAndTheNextCompletesIt) {
    for (const std::size_t selection : {4U, 5U, 6U, 7U}) {
        for (const bool taken : {false, true}) {
            for (std::size_t behind = 0; behind < 8; ++behind) {
                HistoryTalk history(selections[selection].isCW);
                history.station.Archives()[2] = HourlyFile(14, 0, 8);
                const auto due = [&] { return history.faults.Exchanges().size() >= behind; };
                history.view.stopped = [&] { return !taken && due(); };
                history.desk.clock.Every(1, [&] {
                    if (taken && due()) {
                        history.field.TakeOver("The line was taken");
                    }
                });
                const auto collected = history.Collect(WishOf(selections[selection]));
                SCOPED_TRACE(std::string(selections[selection].name) + " behind " + std::to_string(behind) + ": " +
                             collected.message);
                EXPECT_TRUE(collected.end == (taken ? RunEnd::LineLost : RunEnd::Stopped) ||
                            (!taken && collected.end == RunEnd::Whole));
                EXPECT_THAT(collected.message, HasSubstr(collected.end == RunEnd::Whole ? "Archive Collected\r"
                                                         : taken                        ? "The line was taken\r"
                                                                                        : "Stopped before the end\r"));
                EXPECT_EQ(Stored(history), static_cast<std::int64_t>(history.view.rows.size()));

                const std::int64_t before = Stored(history);
                HistoryTalk again(selections[selection].isCW);
                again.station.Archives()[2] = HourlyFile(14, 0, 8);
                const auto completed =
                    archive::Collect(history.desk.dbconn, again.talk, WishOf(selections[selection]), again.view);
                EXPECT_THAT(completed.message, HasSubstr(std::to_string(14 - before) + " new, "));
                EXPECT_EQ(Stored(history), 14);
            }
        }
    }
}

TEST(DownloadTest, AClockWithNonsenseStopsNoRun) {
    HistoryTalk history(false);
    auto file = HourlyFile(5);
    file.records[1].timeBytes = fieldsim::TimeBytes{0, 0, 0, 0};
    file.records[2].timeBytes = fieldsim::TimeBytes{1, 0, 0xE4, 0x57};
    history.station.Archives()[2] = file;
    EXPECT_EQ(history.Collect(WishOf(selections[4])).message, "Archive Collected\r5 records: 5 new, 0 known.");
    EXPECT_EQ(history.view.rows[1][0], "31/12/1976   0:0:0");
    EXPECT_EQ(history.view.rows[2][0], "01/01/1977   25:0:0");
    EXPECT_THAT(history.desk.dbconn.Texts("select Time1 from tArchiveTimeStamp order by Time1"),
                testing::Contains("1977-01-01 25:00:00"));
}

// A full disk: the rows stay in the grid and the operator is told.
TEST(DownloadTest, WhatTheDatabaseRefusesIsTold) {
    HistoryTalk history(false);
    history.station.Archives()[2] = HourlyFile(5);
    history.desk.dbconn.Execute(
        "create trigger full before insert on tArchiveTimeStamp begin select raise(abort, "
        "'database or disk is full'); end");
    const auto collected = history.Collect(WishOf(selections[4]));
    EXPECT_THAT(collected.message, HasSubstr("Not stored: database or disk is full"));
    EXPECT_EQ(history.view.rows.size(), 5U);
}

}  // namespace
