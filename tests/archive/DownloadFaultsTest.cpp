#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/Downloads.h"

using namespace archive;
using namespace support;
using fieldsim::DataAnswer;
using fieldsim::Fault;
using testing::HasSubstr;

namespace {

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

// What a station and a line do, and what the download leaves: records, on the disk before the next request; requests
// for records; what is said.
TEST(DownloadFaultsTest, WhatADownloadLeaves) {
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
        {"dead behind 12", oldest, 400, asItIs, FaultAt(12, Fault::Silence, 1000), 40, 14,
         "Bad Response\rThe station gave no valid answer.\r40 records received, 40 stored: 40 new, 0 known."},
        {"dead behind 12",
         {5},
         400,
         asItIs,
         FaultAt(12, Fault::Silence, 1000),
         38,
         14,
         "The station gave no valid answer.\r"},
        {"dead behind 12",
         {6},
         400,
         asItIs,
         FaultAt(12, Fault::Silence, 1000),
         39,
         14,
         "The station gave no valid answer.\r"},
    };
    for (const auto& test : cases) {
        for (const std::size_t n : test.selections) {
            const Selection& selection = selections[n];
            HistoryTalk history(selection.isCW, DataAnswer::AtOnce, test.faults);
            auto file = HourlyFile(test.records);
            test.change(file);
            history.station.Archives()[2] = file;
            Wish wish = WishOf(selection);
            if (test.ranged) {
                wish.range = {{2026, 1, 1}, {2026, 12, 31}};
            }
            // As another program sees it: what is stored outlives this one.
            core::Database other(history.desk.shared.DatabasePath());
            history.view.stopped = [&] {
                EXPECT_EQ(other.First("select count(*) from tArchiveTimeStamp").value()[0].Long(),
                          static_cast<std::int64_t>(history.view.rows.size()));
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
TEST(DownloadFaultsTest, NewestFirstEndsAtWhatIsWhollyKnown) {
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

// A refusal is called one, whichever request it is the answer to.
TEST(DownloadFaultsTest, ARefusalIsCalledOne) {
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
        // One that ends behind its status counts on some screens; the others ask again.
        HistoryTalk brief(selection.isCW);
        brief.station.Archives()[2] = HourlyFile(5);
        brief.station.Archives()[2].definitionStatus = {135, 129};
        brief.station.Archives()[2].shortRefusals = true;
        const bool takes = selection.screen == Screen::frmarchive || selection.name == std::string("CW long") ||
                           selection.name == std::string("para long newest");
        EXPECT_THAT(brief.Collect(WishOf(selection)).message,
                    testing::StartsWith((takes ? "Invalid File Number" : "Invalid File Defination") +
                                        std::string("\rThe station refused the request (status 135, 129).")));

        HistoryTalk history(selection.isCW);
        history.station.Options().notReadyOneIn = 0;
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

// A number that has no record where one must be: the download has not come to its end.
TEST(DownloadFaultsTest, AGapEndsNewestFirst) {
    for (const std::size_t selection : {3U, 5U, 6U}) {
        for (const bool audit : {false, true}) {
            HistoryTalk history(selections[selection].isCW);
            history.station.Archives()[2] = HourlyFile(40);
            history.station.Audit().events.resize(40, {.signal = "AB"});
            history.view.stopped = [&] {
                if (history.view.rows.size() > 8) {
                    history.station.Archives()[2].records.clear();
                    history.station.Audit().events.clear();
                }
                return history.faults.Exchanges().size() > 100;
            };
            const Collected collected = history.Collect(WishOf(selections[selection], audit));
            EXPECT_EQ(collected.end, RunEnd::Failed) << selections[selection].name;
            EXPECT_THAT(collected.message, testing::StartsWith(audit ? "The station gave no event at position "
                                                                     : "The station gave no record of number "));
        }
    }
}

// A fault at each exchange of a download, once and then for good. A bad reply is forgiven, and no record is lost or
// wrong by it.
TEST(DownloadFaultsTest, EveryFaultAtEveryExchange) {
    const Fault everyFault[] = {Fault::Silence, Fault::BadCheck, Fault::Cut};
    for (const Selection& selection : selections) {
        const auto file = HourlyFile(11, 0, 8);
        const auto all = RowsOf(file, RunsNewestFirst(selection));
        for (const Fault fault : everyFault) {
            for (std::size_t at = 0; at < 6; ++at) {
                for (const std::size_t times : {1U, 3U, 100U}) {
                    HistoryTalk history(selection.isCW, DataAnswer::AtOnce, FaultAt(at, fault, times));
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
TEST(DownloadFaultsTest, ACutDownloadStoresWhatItHasAndTheNextCompletesIt) {
    for (const std::size_t selection : {4U, 5U, 6U, 7U}) {
        for (const bool taken : {false, true}) {
            for (std::size_t behind = 0; behind < 8; ++behind) {
                HistoryTalk history(selections[selection].isCW);
                history.station.Archives()[2] = HourlyFile(14, 0, 8);
                history.CutBehind(behind, taken);
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

}  // namespace
