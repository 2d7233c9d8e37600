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

// Events a minute apart, their codes one after the other. A long name leaves room for three events in a reply.
std::vector<fieldsim::AuditEvent> Events(int count, const std::string& name) {
    std::vector<fieldsim::AuditEvent> events;
    for (int i = 0; i < count; ++i) {
        fieldsim::AuditEvent event;
        event.flags = static_cast<std::uint8_t>(i % 8);
        event.signal = name;
        event.at = core::FromSeconds(core::ToSeconds({2026, 3, 1, 8, 0, 0}) + i * 60);
        event.first = i;
        event.second = i + 0.5;
        event.localID = i + 1;
        event.globalID = i + 2;
        events.push_back(event);
    }
    return events;
}

const char* const texts[] = {"Signal Value Change",   "Logical Alarm",          "Logical Return To Normal",
                             "Analog Low Alarm",      "Analog High Alarm",      "Analog LowLow Alarm",
                             "Analog HighHigh Alarm", "Analog Return To Normal"};

std::vector<std::vector<std::string>> RowsOf(const std::vector<fieldsim::AuditEvent>& events,
                                             const Selection& selection) {
    const bool old = selection.screen == Screen::frmarchive;
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < events.size(); ++i) {
        const fieldsim::AuditEvent& event = selection.newFirst ? events[events.size() - 1 - i] : events[i];
        const char* text = texts[old ? event.flags % 2 * 7 : event.flags];
        const std::string n = core::NumberText(event.first);
        rows.push_back({core::DateText(event.at) + "   " + std::to_string(event.at.hour) + ":" +
                            std::to_string(event.at.minute) + ":0",
                        event.signal + "         " + n + "  " + text + "    [" + n + ".5]",
                        std::to_string(event.localID), std::to_string(event.globalID)});
        if (!old) {
            rows.back().insert(rows.back().begin(), std::to_string(i + 1));
        }
    }
    return rows;
}

TEST(AuditTest, EveryRoutineBringsEveryEventOnce) {
    for (const Selection& selection : selections) {
        HistoryTalk history(selection.isCW);
        for (const char* name : {"AB", "A NAME OF TWENTY FIVE CHR"}) {
            for (const int count : {0, 1, 2, 3, 4, 5, 6, 8, 9, 12, 13, 41}) {
                history.station.Audit().events = Events(count, name);
                const Collected collected = history.Collect(WishOf(selection, true));
                SCOPED_TRACE(std::string(selection.name) + ", " + std::to_string(count) + " events of " + name);
                EXPECT_EQ(collected.end, RunEnd::Whole);
                EXPECT_EQ(collected.message, "Audit Collected");
                EXPECT_EQ(history.view.rows, RowsOf(history.station.Audit().events, selection));
            }
        }
    }
}

TEST(AuditTest, TheReportTableAndTheTransactionLine) {
    HistoryTalk history(true, DataAnswer::AcknowledgeFirst);
    history.station.Audit().events = Events(6, "PRESSURE");
    for (int times = 0; times < 2; ++times) {
        history.Collect(WishOf(selections[2], true));
    }
    const auto rows = history.desk.dbconn.Query("select * from Audit");
    ASSERT_EQ(rows.size(), 6U);
    EXPECT_EQ(rows[5][0].Text(), "01/03/2026   8:5:0");
    EXPECT_EQ(rows[5][1].Text(), "PRESSURE         5  Analog LowLow Alarm    [5.5]");
    EXPECT_EQ(rows[5][2].Text(), "6");
    EXPECT_EQ(rows[5][3].Text(), "7");
    EXPECT_EQ(rows[5][4].Text(), "O'Brien's Works");
    EXPECT_EQ(history.desk.dbconn.Texts("select * from TTS_table").back(),
              history.desk.logs.Stamp() + ": User WARDEN collected Audit from RTU O'Brien's Works.");
    EXPECT_EQ(history.view.captions.size(), 5U);
    EXPECT_EQ(history.view.captions[0], "No");

    HistoryTalk old(false);
    old.station.Audit().events = Events(1003, "AB");
    EXPECT_EQ(old.Collect(WishOf(selections[0], true)).message, "Audit Collected\r1000 events, there may be more.");
    EXPECT_EQ(old.view.rows.size(), 1000U);
    EXPECT_EQ(old.view.captions.size(), 4U);
}

// Three bad replies to a request are forgiven, two to the first one of newest first.
TEST(AuditTest, BadRepliesAreForgivenThreeTimes) {
    struct Case {
        std::size_t selection;
        std::size_t at;
        std::size_t times;
        const char* failure;
    };
    for (const Case& c :
         {Case{0, 0, 3, ""}, Case{0, 1, 4, "Error In response"}, Case{2, 0, 3, ""}, Case{2, 2, 4, "Error In response"},
          Case{3, 0, 2, ""}, Case{3, 0, 3, "Error In Communication"}, Case{5, 2, 4, "Error In response"}}) {
        for (const Fault fault : {Fault::Silence, Fault::Cut, Fault::BadCheck}) {
            HistoryTalk history(selections[c.selection].isCW, DataAnswer::AtOnce, FaultAt(c.at, fault, c.times));
            history.station.Audit().events = Events(21, "AB");
            const auto collected = history.Collect(WishOf(selections[c.selection], true));
            SCOPED_TRACE(selections[c.selection].name + (": " + collected.message));
            const auto all = RowsOf(history.station.Audit().events, selections[c.selection]);
            ASSERT_LE(history.view.rows.size(), all.size());
            EXPECT_TRUE(std::equal(history.view.rows.begin(), history.view.rows.end(), all.begin()));
            if (*c.failure == '\0') {
                EXPECT_EQ(collected.end, RunEnd::Whole);
                EXPECT_EQ(history.view.rows.size(), all.size());
            } else {
                EXPECT_EQ(collected.end, RunEnd::Failed);
                EXPECT_THAT(collected.message,
                            testing::StartsWith(std::string(c.failure) + "\rThe station gave no valid answer.\r" +
                                                std::to_string(history.view.rows.size()) + " event"));
            }
        }
    }
}

// On a line that loses an answer in a hundred; four bad replies in all would end each of these.
TEST(AuditTest, ALossyLineBringsTheWholeTrail) {
    for (const Selection& selection : selections) {
        fieldsim::LineFaults::Options faults;
        faults.chances = {{Fault::Silence, 0.05}, {Fault::BadCheck, 0.05}};
        HistoryTalk history(selection.isCW, DataAnswer::AtOnce, faults);
        history.station.Audit().events = Events(400, "AB");
        EXPECT_EQ(history.Collect(WishOf(selection, true)).message, "Audit Collected") << selection.name;
        EXPECT_EQ(history.view.rows, RowsOf(history.station.Audit().events, selection)) << selection.name;
    }
}

// The short layout does not say how many events there are.
TEST(AuditTest, TheEndOfALongTrailIsFoundSoon) {
    for (const int count : {1, 2, 5, 63, 64, 65, 4000}) {
        HistoryTalk history(true);
        history.station.Options().notReadyOneIn = 0;
        history.station.Audit().events = Events(count, "AB");
        std::size_t searched = 0;
        history.view.stopped = [&] {
            searched = history.view.rows.empty() ? history.faults.Exchanges().size() : searched;
            return history.view.rows.size() > 8;
        };
        history.Collect(WishOf(selections[6], true));
        EXPECT_EQ(history.view.rows[0][1], RowsOf(history.station.Audit().events, selections[6])[0][1]) << count;
        EXPECT_LE(searched, 25U) << count;
        EXPECT_EQ(history.desk.feedback.status.back(), "Collecting Audit.......");
        if (count == 4000) {
            EXPECT_THAT(history.desk.feedback.status,
                        testing::Contains(testing::StartsWith("Looking for the newest event: ")));
        }
    }
}

TEST(AuditTest, StoppedOrTakenAtEveryStep) {
    for (const Selection& selection : selections) {
        for (const bool taken : {false, true}) {
            for (std::size_t behind = 1; behind < 5; ++behind) {
                HistoryTalk history(selection.isCW);
                history.station.Audit().events = Events(40, "AB");
                history.CutBehind(behind, taken);
                const auto collected = history.Collect(WishOf(selection, true));
                EXPECT_EQ(collected.end, taken ? RunEnd::LineLost : RunEnd::Stopped) << selection.name;
                EXPECT_THAT(collected.message,
                            testing::StartsWith(taken ? "The line was taken\r" : "Stopped before the end\r"));
                EXPECT_EQ(history.desk.dbconn.First("select count(*) from Audit").value()[0].Long(),
                          static_cast<std::int64_t>(history.view.rows.size()));
            }
        }
    }
}

}  // namespace
