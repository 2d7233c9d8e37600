#include <gmock/gmock.h>

#include "collection/Schedule.h"
#include "collection/Scheduler.h"
#include "support/CollectionDesk.h"

using testing::HasSubstr;

namespace {

// Stations whose ports have nobody behind them, or a station that never answers: what matters here is when a station is
// tried, how often, and what is recorded.
struct SchedulerTest : testing::Test {
    support::CollectionDesk desk{{2026, 3, 9, 7, 59, 30}};  // a Monday

    std::int64_t Add(const std::string& contracthour, const std::string& duration = "Daily",
                     const std::string& day = "0", int port = 9) {
        demo::DemoStation station{"Station " + contracthour + duration + day, "TeleFlow", "Modbus", "RTU", port, 1};
        const std::int64_t location = demo::AddStation(desk.dbconn, station);
        // As a row may hold it, also where no form would write it so.
        desk.dbconn.Execute("update configdata_master set contracthour=?, duration=?, day=? where locationID=?",
                            {contracthour, duration, day, location});
        return location;
    }
    int Attempts(std::int64_t location) const {
        int attempts = 0;
        const std::string log = desk.RtuErr();
        const std::string mark = "[" + std::to_string(location) + "]";
        for (auto at = log.find(mark); at != std::string::npos; at = log.find(mark, at + 1)) {
            ++attempts;
        }
        return attempts;
    }
};

TEST_F(SchedulerTest, AStationIsDueAtItsContractHourOnItsDay) {
    struct Case {
        const char *contracthour, *duration, *day;
        bool tried;
    };
    const Case cases[] = {
        {"08:00", "Daily", "0", true},     {"08:01", "Daily", "0", false},  {"20:00", "Daily", "0", false},
        {"08:00", "Weekly", "2", true},    {"08:00", "Weekly", "1", false}, {"08:00", "Monthly", "9", true},
        {"08:00", "Monthly", "10", false}, {"08:00", "NO", "100", false},   {"08:00", "Hourly", "0", false},
        {"noon", "Daily", "0", false},     {"", "Daily", "0", false},
    };
    std::vector<std::int64_t> locations;
    for (const Case& c : cases) {
        locations.push_back(Add(c.contracthour, c.duration, c.day));
    }
    desk.clock.Run(30000);
    desk.Tick();
    for (std::size_t i = 0; i < locations.size(); ++i) {
        EXPECT_EQ(Attempts(locations[i]), cases[i].tried ? 3 : 0) << cases[i].duration << cases[i].day;
    }
}

TEST_F(SchedulerTest, TheMarkOfTheDayIsSetDueOrNot) {
    const auto silent = Add("08:00");
    const auto notToday = Add("08:00", "Weekly", "5");
    const auto later = Add("09:00");
    desk.dbconn.Execute("update configdata_master set sampledtoday=true, sampleddate=8");
    desk.clock.Run(30000);
    desk.Tick();
    for (const auto location : {silent, notToday}) {
        EXPECT_FALSE(desk.Master(location).Bool("sampledtoday"));
        EXPECT_EQ(desk.Master(location).Long("sampleddate"), 9);
    }
    EXPECT_TRUE(desk.Master(later).Bool("sampledtoday"));
    EXPECT_EQ(desk.Master(later).Long("sampleddate"), 8);
    desk.dbconn.Execute("update configdata_master set sampledtoday=true");
    desk.scheduler.ResetDailyFlags();  // those of another day
    EXPECT_FALSE(desk.Master(later).Bool("sampledtoday"));
    EXPECT_TRUE(desk.Master(silent).Bool("sampledtoday"));
}

TEST_F(SchedulerTest, NoMinuteIsMissedBecauseARunIsLong) {
    // Each silent station takes several minutes; those of the following minutes wait behind it.
    fieldsim::LineFaults::Options silence;
    silence.chances = {{fieldsim::Fault::Silence, 1.0}};
    std::vector<std::int64_t> locations;
    for (const char* hour : {"08:00", "08:00", "08:01", "08:03"}) {
        locations.push_back(Add(hour, "Daily", "0", 1));
    }
    desk.dbconn.Execute("update configdata_master set delaytime=20000");
    desk.dbconn.Execute("update settings set value='0' where name='retryrounds'");
    desk.OpenField({.faultsElsewhere = silence});
    desk.StartTicking();
    desk.clock.Run(3600000);
    for (const auto location : locations) {
        EXPECT_EQ(Attempts(location), 3) << location;
        EXPECT_EQ(desk.Master(location).Long("sampleddate"), 9);
    }
    EXPECT_FALSE(desk.scheduler.Busy());
}

TEST_F(SchedulerTest, OneMailAMinuteBehindItsStations) {
    desk.dbconn.Execute("insert into email_settings values('a@x','','','','')");
    Add("08:00");
    Add("08:00");
    Add("08:00", "NO", "100");
    Add("08:05", "Weekly", "5");  // selected and not due: the mail goes out all the same
    desk.StartTicking();
    desk.clock.Run(15 * 60000);
    EXPECT_EQ(desk.mail.sent.size(), 2U);
}

TEST_F(SchedulerTest, ABoxOfARunAndABrokenTableStopNobody) {
    const auto first = Add("08:00");
    desk.dbconn.Execute("delete from modbus_para");
    desk.dbconn.Execute("drop table sched_ParaList");
    const auto second = Add("08:01");
    desk.StartTicking();
    desk.clock.Run(5 * 60000);
    EXPECT_THAT(desk.feedback.boxes, testing::Contains("Value is not defined in Modbus Parameter Table"));
    EXPECT_EQ(desk.Master(first).Long("sampleddate"), 9);
    EXPECT_EQ(desk.Master(second).Long("sampleddate"), 9);
}

// The station that is next, as a screen shows it.
TEST_F(SchedulerTest, TheEarliestIsNextAndAMinuteCountsUntilItIsServed) {
    const auto next = [this](const core::DateTime& now, bool minuteServed = true) {
        const auto station = collection::NextDue(desk.dbconn, now, minuteServed);
        return station ? core::DateText(station->at) + " " + core::TimeText(station->at) : "";
    };
    Add("00:00", "NO", "100");
    Add("08:00", "Hourly");
    EXPECT_EQ(next({2026, 3, 9, 7, 0, 0}), "");
    Add("2026-01-01 06:15", "Monthly", "31");
    EXPECT_EQ(next({2026, 3, 31, 6, 15, 0}), "31/05/2026 06:15:00");
    EXPECT_EQ(next({2026, 12, 31, 7, 0, 0}), "31/01/2027 06:15:00");
    Add("08:00", "Weekly", "1");
    EXPECT_EQ(next({2026, 3, 9, 8, 0, 0}), "15/03/2026 08:00:00");
    Add("08:00");
    Add("07:30");
    EXPECT_EQ(next({2026, 3, 9, 7, 29, 59}), "09/03/2026 07:30:00");
    EXPECT_EQ(next({2026, 3, 9, 7, 30, 20}, false), "09/03/2026 07:30:00");
    EXPECT_EQ(next({2026, 3, 9, 7, 30, 20}, true), "09/03/2026 08:00:00");
    EXPECT_EQ(next({2026, 3, 9, 23, 59, 59}), "10/03/2026 07:30:00");
}

}  // namespace
