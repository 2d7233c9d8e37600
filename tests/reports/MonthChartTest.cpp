#include "reports/MonthChart.h"
#include "support/ScratchDesk.h"

namespace reports {

namespace {

struct MonthChartTest : testing::Test {
    support::ScratchDesk desk;

    void Log(const std::string& date, const core::Value& day, const core::Value& month, const core::Value& pressure) {
        desk.dbconn.Execute(
            "insert into LogParam(LocationId, date, CurrentDayFlow, CurrentMonthFlow, currentprs) values(1,?,?,?,?)",
            {date, day, month, pressure});
    }
};

TEST_F(MonthChartTest, TakesTheNewestYearThatHasRows) {
    Log("2026-03-02 08:00:00", 20.5, 30.0, 4.5);
    Log("2026-03-01 08:00:00", 10.0, 10.0, {});
    Log("2025-03-05 08:00:00", 99.0, 99.0, 9.0);
    Log("2025-04-05 08:00:00", 77.0, 77.0, 7.0);
    const auto march = ReadMonth(desk.dbconn, 1, 3);
    ASSERT_TRUE(march);
    EXPECT_EQ(march->year, 2026);
    ASSERT_EQ(march->days.size(), 2U);
    EXPECT_EQ(march->days[0].day, 1);
    EXPECT_EQ(march->days[0].currentprs, std::nullopt);
    EXPECT_EQ(march->days[1].day, 2);
    EXPECT_EQ(march->days[1].CurrentDayFlow, 20.5);
    EXPECT_EQ(march->days[1].CurrentMonthFlow, 30.0);
    EXPECT_EQ(march->days[1].currentprs, 4.5);
    EXPECT_EQ(ReadMonth(desk.dbconn, 1, 4)->year, 2025);
    EXPECT_FALSE(ReadMonth(desk.dbconn, 1, 5));
    EXPECT_FALSE(ReadMonth(desk.dbconn, 2, 3));
}

TEST_F(MonthChartTest, WhatIsNoFigureIsLeftOut) {
    Log("2026-03-01 21:00:00", "abc", 1e308 * 10, {});
    Log("2026-03-45 08:00:00", 1.0, 1.0, 1.0);
    Log("nonsense", 1.0, 1.0, 1.0);
    const auto march = ReadMonth(desk.dbconn, 1, 3);
    ASSERT_EQ(march->days.size(), 1U);
    EXPECT_FALSE(march->days[0].CurrentDayFlow || march->days[0].CurrentMonthFlow || march->days[0].currentprs);
}

}  // namespace

}  // namespace reports
