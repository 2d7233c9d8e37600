// What a run keeps of a day: the row of LogParam, the figures of the report, the words of a switch.

#include <gtest/gtest.h>

#include "reading/LogParam.h"
#include "reading/LogicalText.h"
#include "reading/RunFigures.h"
#include "support/ScratchDesk.h"

using namespace reading;

namespace {

TEST(UpsertLogParam, ASecondRunOfTheStationsDayUpdatesItsRow) {
    support::ScratchDesk desk;
    auto& dbconn = desk.dbconn;
    const core::DateTime morning{2026, 3, 9, 8, 0, 0};
    const core::DateTime evening{2026, 3, 9, 20, 0, 0};
    UpsertLogParam(dbconn, 1, morning, morning, {"#Volume Yesterday=5", 5, 50, 3.5});
    UpsertLogParam(dbconn, 2, morning, morning, {"", {}, {}, {}});
    UpsertLogParam(dbconn, 1, evening, evening, {"it's", 6, {}, {}});
    const auto rows = dbconn.Query("select * from LogParam where LocationId=1");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].Text("date"), "2026-03-09 20:00:00");
    EXPECT_EQ(rows[0].Text("desc"), "it's");
    EXPECT_EQ(rows[0].Number("CurrentDayFlow"), 6);
    EXPECT_EQ(rows[0].Number("CurrentMonthFlow"), 50);  // not given: as it was
    // The same day of another month, and a station that is a minute late: a row of its own, with the computer's date.
    UpsertLogParam(dbconn, 1, {2026, 4, 9, 8, 0, 0}, {2026, 4, 9, 8, 0, 0}, {});
    UpsertLogParam(dbconn, 1, {2026, 4, 8, 23, 59, 0}, {2026, 4, 9, 0, 0, 0}, {});
    EXPECT_EQ(dbconn.Texts("select date from LogParam where LocationId=1 order by rowid"),
              (std::vector<std::string>{"2026-03-09 20:00:00", "2026-04-09 08:00:00", "2026-04-09 00:00:00"}));
}

TEST(RunFigures, TheStationsClockCountsOnlyWhenItIsARealDate) {
    const struct {
        std::vector<double> elements;
        std::optional<core::DateTime> clock;
    } cases[] = {
        {{2026, 3, 9, 8, 0, 5}, core::DateTime{2026, 3, 9, 8, 0, 5}},
        {{26, 12, 31, 23, 59, 59}, core::DateTime{2026, 12, 31, 23, 59, 59}},
        {{2026, 2, 30, 8, 0, 0}, {}},
        {{2026, 3, 9, 25, 0, 0}, {}},
        {{2026, 3, 9.5, 8, 0, 0}, {}},
        {{1e30, 3, 9, 8, 0, 0}, {}},
        {{2026, 3, 9, 8, 0}, {}},
    };
    for (const auto& c : cases) {
        RunFigures figures;
        const char* names[] = {"Year", "Month", "Date", "Hour", "Minute", "Second"};
        for (std::size_t i = 0; i < c.elements.size(); ++i) {
            figures.Note(std::string("RTU Time - ") + names[i], c.elements[i]);
        }
        EXPECT_EQ(figures.StationClock(), c.clock);
    }
}

TEST(LogicalText, WordsByDescription) {
    const std::tuple<const char*, double, const char*> cases[] = {
        {"Tap Type", 1, "PIPE"},
        {"Tap Type", -1, "PIPE"},
        {"Tap Type", 2, "FLANGE"},
        {"  Pressure Tap location ", 1, "UPSTREAM"},
        {"AGA3/7 Method", 0, "Method: 1992"},
        {"SSV Stream2", 1, "CLOSE"},
        {"Door Position", 1, "OPEN"},
        {"Stop Mode", 0, "OPEN"},
        {"Mode Selection", 1, "FAST"},
        {"Digital Input - 1", 1, "ON"},
        {"Digital Input - 10", 0, "OFF"},
        {"PID Output Auto/Manual", 1, "ENABLE"},
        {"Battery Overcharge DialOut", 1, "YES"},
        // No words: the number stays.
        {"Digital Input - 11", 1, "1"},
        {"Digital Output - 3", 0, "0"},
        {"Volume Yesterday", -2.5, "-2.5"},
    };
    for (const auto& [description, value, text] : cases) {
        EXPECT_EQ(LogicalText(description, value), text) << description;
    }
}

}  // namespace
