#include <gtest/gtest.h>

#include "collection/Schedule.h"
#include "support/CollectionDesk.h"

namespace {

struct ScheduleTest : testing::Test {
    support::CollectionDesk desk;

    void Add(const char* consumer, const char* duration, const char* day, const char* contracthour) {
        desk.dbconn.Execute(
            "insert into configdata_master(locationID, consumer, duration, day, contracthour) "
            "values((select ifnull(max(locationID),0)+1 from configdata_master),?,?,?,?)",
            {consumer, duration, day, contracthour});
    }
    // "Mill 10/03/2026 08:00:00"
    std::string Next(const core::DateTime& now, bool minuteServed = true) {
        const auto next = collection::NextDue(desk.dbconn, now, minuteServed);
        return next ? next->consumer + " " + core::DateText(next->at) + " " + core::TimeText(next->at) : "";
    }
};

TEST_F(ScheduleTest, NobodyIsNextWithoutASchedule) {
    Add("Never", "NO", "100", "00:00");
    Add("Odd", "Hourly", "0", "08:00");
    EXPECT_EQ(Next({2026, 3, 9, 7, 0, 0}), "");
}

TEST_F(ScheduleTest, TheEarliestIsNextAndAMinuteCountsUntilItIsServed) {
    Add("Mill", "Daily", "0", "08:00");
    Add("Kiln", "Daily", "0", "08:00");
    Add("Gate", "Daily", "0", "07:30");
    EXPECT_EQ(Next({2026, 3, 9, 7, 29, 59}), "Gate 09/03/2026 07:30:00");
    EXPECT_EQ(Next({2026, 3, 9, 7, 30, 20}, false), "Gate 09/03/2026 07:30:00");
    EXPECT_EQ(Next({2026, 3, 9, 7, 30, 20}, true), "Mill 09/03/2026 08:00:00");
    EXPECT_EQ(Next({2026, 3, 9, 23, 59, 59}), "Gate 10/03/2026 07:30:00");
}

TEST_F(ScheduleTest, ADayThatComesSeldomIsFound) {
    Add("Sunday", "Weekly", "1", "08:00");
    EXPECT_EQ(Next({2026, 3, 9, 8, 0, 0}), "Sunday 15/03/2026 08:00:00");
    desk.dbconn.Execute("delete from configdata_master");
    Add("Month's end", "Monthly", "31", "2026-01-01 06:15");
    EXPECT_EQ(Next({2026, 3, 31, 6, 15, 0}), "Month's end 31/05/2026 06:15:00");
    EXPECT_EQ(Next({2026, 12, 31, 7, 0, 0}), "Month's end 31/01/2027 06:15:00");
}

}  // namespace
