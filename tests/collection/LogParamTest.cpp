#include <gtest/gtest.h>

#include "reading/LogParam.h"
#include "reading/RunFigures.h"
#include "support/ScratchDesk.h"

using namespace reading;

namespace {

TEST(UpsertLogParam, ASecondRunOfTheDayUpdatesItsRow) {
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
    UpsertLogParam(dbconn, 1, {2026, 4, 9, 8, 0, 0}, {2026, 4, 9, 8, 0, 0}, {});
    EXPECT_EQ(dbconn.Query("select * from LogParam where LocationId=1").size(), 2U);
}

TEST(UpsertLogParam, IsFoundByTheStationsDateAndStampedWithTheComputers) {
    support::ScratchDesk desk;
    const core::DateTime now{2026, 3, 9, 8, 0, 0};
    UpsertLogParam(desk.dbconn, 1, {2026, 3, 8, 23, 59, 0}, now,
                   {});  // the station is a minute late: no row of the 8th
    EXPECT_EQ(desk.dbconn.First("select date from LogParam")->Text("date"), "2026-03-09 08:00:00");
}

TEST(RunFigures, KeepsTheFiguresOfTheReport) {
    RunFigures figures;
    figures.Note("volume yesterday", 12.5);
    figures.Note("Flowing Pressure", 3);
    EXPECT_EQ(figures.CurrentDayFlow, 12.5);
    EXPECT_EQ(figures.CurrentMonthFlow, std::nullopt);
    EXPECT_EQ(figures.currentprs, 3);
}

TEST(RunFigures, TheStationsClockCountsOnlyWhenItIsARealDate) {
    struct Case {
        std::vector<double> elements;
        std::optional<core::DateTime> clock;
    };
    for (const Case& c : {
             Case{{2026, 3, 9, 8, 0, 5}, core::DateTime{2026, 3, 9, 8, 0, 5}},
             Case{{26, 12, 31, 23, 59, 59}, core::DateTime{2026, 12, 31, 23, 59, 59}},
             Case{{2026, 2, 30, 8, 0, 0}, {}},
             Case{{2026, 3, 0, 8, 0, 0}, {}},
             Case{{2026, 3, 9, 25, 0, 0}, {}},
             Case{{2026, 3, 9.5, 8, 0, 0}, {}},
             Case{{1e30, 3, 9, 8, 0, 0}, {}},
             Case{{2026, 3, 9, 8, 0}, {}},
         }) {
        RunFigures figures;
        const char* names[] = {"Year", "Month", "Date", "Hour", "Minute", "Second"};
        for (std::size_t i = 0; i < c.elements.size(); ++i) {
            figures.Note(std::string("RTU Time - ") + names[i], c.elements[i]);
        }
        EXPECT_EQ(figures.StationClock(), c.clock);
    }
}

}  // namespace
