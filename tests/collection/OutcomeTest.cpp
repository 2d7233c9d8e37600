#include <gmock/gmock.h>

#include "collection/DayLine.h"
#include "collection/Schedule.h"
#include "collection/Scheduler.h"
#include "support/CollectionDesk.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t minute = 60000;

struct PowerCut {};

// Something happens while a station is being collected.
class InTheTurnOf final : public collection::RunWatcher {
  public:
    InTheTurnOf(fieldsim::VirtualClock& clock, std::int64_t location, std::function<void()> happens)
        : clock_(clock), location_(location), happens_(std::move(happens)) {}
    void Collecting(std::int64_t location) override {
        if (location == location_) {
            clock_.After(1500, happens_);
        }
    }
    void Collected(std::int64_t) override {}

  private:
    fieldsim::VirtualClock& clock_;
    std::int64_t location_;
    std::function<void()> happens_;
};

// A desk whose program is started, ended and cut off, with its ticks half a minute behind the full minute. Each story
// ends with the rows that it leaves, worked out by hand.
struct OutcomeTest : testing::Test {
    support::CollectionDesk desk{{2026, 3, 9, 7, 0, 0}};  // a Monday
    std::unique_ptr<collection::Scheduler> program;
    std::int64_t farm = 0;
    std::int64_t mill = 0;

    OutcomeTest() {
        desk.clock.Run(30000);
        desk.clock.Every(minute, [this] {
            if (program) {
                program->Tick();
            }
        });
        desk.clock.Run(30000);
    }
    void Start() { program = std::make_unique<collection::Scheduler>(desk.place, desk.reportMail); }
    void End() {
        program->Leave();
        while (program->Busy()) {
            desk.clock.Run(100);
        }
        program.reset();
    }
    // Runs up to a moment of the clock as it goes now.
    void RunTo(const core::DateTime& moment) {
        const std::int64_t seconds = core::ToSeconds(moment) - core::ToSeconds(desk.clock.Now());
        ASSERT_GE(seconds, 0);
        desk.clock.Run(static_cast<std::uint64_t>(seconds) * 1000);
    }
    // Set to the same time of day in which the ticks fall.
    void SetClock(const core::DateTime& moment) {
        desk.clock.Step(core::ToSeconds(moment) - core::ToSeconds(desk.clock.Now()));
    }
    std::int64_t Add(const std::string& consumer, const std::string& contracthour, int port = 1, int address = 1,
                     const std::string& duration = "Daily", const std::string& day = "0") {
        demo::DemoStation station{consumer, "TeleFlow", "Modbus", "RTU", port, address};
        station.contracthour = contracthour;
        station.duration = duration;
        station.day = day;
        return demo::AddStation(desk.dbconn, station);
    }
    void AddFarmAndMill(const std::string& farmHour, const std::string& millHour) {
        farm = Add("Farm", farmHour, 1, 1);
        mill = Add("Mill", millHour, 1, 2);
        desk.OpenField();
    }
    // "Farm 09 08:00: 09 08:00 schedule, 1, collected": gas day, contract hour, begun, how, attempts, result.
    std::vector<std::string> Rows() {
        return desk.dbconn.Texts(
            "select m.consumer || ' ' || ifnull(substr(o.gasday,9), '-') || ' ' || ifnull(substr(o.due,12,5), '-') || "
            "': ' || substr(o.begun,9,8) || ' ' || o.how || ', ' || o.attempts || ', ' || o.result from outcome o join "
            "configdata_master m using (locationID) where o.doubtful is null order by o.rowid");
    }
    std::string LineNow(std::int64_t location) {
        return collection::LineNow(desk.dbconn, location, desk.clock.Now(), program->StandOf(location)).text;
    }
    collection::DayState StateNow(std::int64_t location) {
        return collection::LineNow(desk.dbconn, location, desk.clock.Now(), program->StandOf(location)).state;
    }
    void NoRetries() { desk.dbconn.Execute("update settings set value='0' where name='retryrounds'"); }
};

TEST_F(OutcomeTest, ByScheduleAndByHand) {
    AddFarmAndMill("08:00", "14:30");
    const auto meadow = Add("Meadow", "00:00", 1, 3, "NO", "100");
    desk.OpenField();
    Start();
    RunTo({2026, 3, 9, 7, 30, 0});
    EXPECT_EQ(LineNow(farm), "due 08:00");
    EXPECT_EQ(LineNow(meadow), "no schedule");
    const auto ofDay = [&](std::int64_t location) {
        return collection::LineOfDay(desk.dbconn, location, desk.clock.Now(), desk.clock.Now()).text;
    };
    EXPECT_EQ(ofDay(meadow), "no schedule");
    EXPECT_EQ(ofDay(mill), "due 14:30");
    EXPECT_EQ(StateNow(meadow), collection::DayState::NoSchedule);
    RunTo({2026, 3, 9, 9, 14, 0});
    EXPECT_THAT(LineNow(farm), testing::MatchesRegex("08:0[01] by schedule"));
    EXPECT_EQ(LineNow(mill), "due 14:30");
    EXPECT_TRUE(program->CollectNow(meadow));
    EXPECT_TRUE(program->CollectNow(mill));
    EXPECT_FALSE(program->CollectNow(mill));  // it waits already
    EXPECT_FALSE(program->CollectNow(99));
    EXPECT_TRUE(program->Queued(meadow));
    EXPECT_EQ(LineNow(meadow), "queued");
    RunTo({2026, 3, 9, 14, 0, 0});
    EXPECT_THAT(LineNow(meadow), testing::MatchesRegex("09:1[45] by hand"));
    EXPECT_TRUE(desk.Master(mill).Bool("sampledtoday"));
    RunTo({2026, 3, 10, 7, 0, 0});
    EXPECT_EQ(LineNow(farm), "due 08:00");
    // By hand for the contract hour that has passed: yesterday's at half past two.
    EXPECT_THAT(
        Rows(),
        ElementsAre("Farm 09 08:00: 09 08:00 schedule, 1, collected", "Meadow 09 -: 09 09:14 hand, 1, collected",
                    "Mill 08 14:30: 09 09:14 hand, 1, collected", "Mill 09 14:30: 09 14:30 schedule, 1, collected"));
    const auto row = desk.dbconn.First("select * from outcome").value();
    EXPECT_EQ(row.Text("line"), "COM1");
    EXPECT_EQ(row.Long("received"), row.Long("asked"));
    EXPECT_GT(row.Long("asked"), 200);
    EXPECT_GE(row.Text("ended"), row.Text("begun"));
}

// The latest hour of each station, the day's and the week's; what nobody missed is left alone.
TEST_F(OutcomeTest, WhatPassedWhileTheProgramWasOffIsServedLateOnce) {
    AddFarmAndMill("08:00", "20:00");
    Add("Meadow", "08:00", 1, 3, "Weekly", "2");
    Add("Lodge", "00:00", 1, 4, "NO", "100");
    desk.OpenField();
    desk.dbconn.Execute("insert into email_settings values('a@x','','','','')");
    Start();
    RunTo({2026, 3, 9, 7, 40, 0});
    End();
    RunTo({2026, 3, 10, 9, 10, 0});
    Start();
    RunTo({2026, 3, 10, 9, 30, 0});
    Add("New", "09:20", 1, 5);  // its hour had passed before it had one
    desk.OpenField();
    End();
    RunTo({2026, 3, 10, 9, 31, 0});
    Start();
    RunTo({2026, 3, 10, 10, 10, 0});
    EXPECT_THAT(Rows(),
                ElementsAre("Farm 10 08:00: 10 09:10 late, 1, collected", "Mill 09 20:00: 10 09:10 late, 1, collected",
                            "Meadow 09 08:00: 10 09:10 late, 1, collected"));
    EXPECT_EQ(desk.mail.sent.size(), 1U);
    EXPECT_THAT(LineNow(farm), HasSubstr(" late"));
}

TEST_F(OutcomeTest, AFirstStartHasNoPast) {
    AddFarmAndMill("08:00", "20:00");
    RunTo({2026, 3, 9, 12, 0, 0});
    Start();
    RunTo({2026, 3, 9, 12, 5, 0});
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_EQ(LineNow(farm), "due 10/03 08:00");
    // What is missing can be had by hand, and what a run of an earlier version marked is not.
    desk.dbconn.Execute("update configdata_master set sampledtoday=true where locationID=?", {mill});
    EXPECT_EQ(program->CollectMissing(), 1);
    RunTo({2026, 3, 9, 12, 10, 0});
    EXPECT_THAT(Rows(), ElementsAre("Farm 09 08:00: 09 12:05 hand, 1, collected"));
    EXPECT_EQ(program->CollectMissing(), 0);
}

TEST_F(OutcomeTest, BothNightsOfSummerTime) {
    AddFarmAndMill("02:30", "03:00");
    SetClock({2026, 3, 29, 1, 50, 0});
    Start();
    RunTo({2026, 3, 29, 2, 0, 0});
    SetClock({2026, 3, 29, 3, 0, 0});
    RunTo({2026, 3, 29, 4, 0, 0});
    End();
    SetClock({2026, 10, 25, 1, 50, 0});
    desk.dbconn.Execute("delete from schedule_state");
    Start();
    RunTo({2026, 10, 25, 3, 0, 0});
    SetClock({2026, 10, 25, 2, 0, 0});
    RunTo({2026, 10, 26, 4, 0, 0});
    EXPECT_THAT(Rows(), testing::UnorderedElementsAre("Mill 29 03:00: 29 03:00 schedule, 1, collected",
                                                      "Farm 29 02:30: 29 03:00 late, 1, collected",
                                                      "Farm 25 02:30: 25 02:30 schedule, 1, collected",
                                                      "Mill 25 03:00: 25 03:00 schedule, 1, collected",
                                                      "Farm 26 02:30: 26 02:30 schedule, 1, collected",
                                                      "Mill 26 03:00: 26 03:00 schedule, 1, collected"));
}

// A clock that ran three days ahead claims days that are yet to come.
TEST_F(OutcomeTest, DaysThatAWrongClockServedAreServedAgain) {
    AddFarmAndMill("08:00", "23:00");
    SetClock({2026, 3, 11, 7, 0, 0});
    Start();
    RunTo({2026, 3, 12, 9, 0, 0});
    SetClock({2026, 3, 10, 9, 0, 0});
    RunTo({2026, 3, 12, 9, 0, 0});
    EXPECT_THAT(
        Rows(),
        ElementsAre("Farm 10 08:00: 10 09:00 late, 1, collected", "Mill 09 23:00: 10 09:00 late, 1, collected",
                    "Mill 10 23:00: 10 23:00 schedule, 1, collected", "Farm 11 08:00: 11 08:00 schedule, 1, collected",
                    "Mill 11 23:00: 11 23:00 schedule, 1, collected",
                    "Farm 12 08:00: 12 08:00 schedule, 1, collected"));
    EXPECT_EQ(desk.Count("gasday where doubtful is null"), 6);
    EXPECT_EQ(desk.Count("outcome where doubtful"), 3) << "they are kept";
}

// A machine that starts without the time, and is given it later.
TEST_F(OutcomeTest, AClockThatIsWrongForAWhileTakesNoDayAway) {
    AddFarmAndMill("08:00", "23:00");
    Start();
    RunTo({2026, 3, 9, 9, 0, 0});
    const auto farmsDay = [&] {
        return desk.dbconn.Texts(
            "select gasday || ' ' || dayflow || ' ' || readat from gasday where locationID=? and gasday='2026-03-09' "
            "and doubtful is null",
            {farm});
    };
    const auto before = farmsDay();
    ASSERT_EQ(before.size(), 1U);
    SetClock({1970, 1, 1, 0, 0, 10});
    RunTo({1970, 1, 1, 0, 30, 0});
    EXPECT_FALSE(collection::OutcomeOf(desk.dbconn, farm, "2026-03-09")) << "as long as that day is ahead";
    SetClock({2026, 3, 9, 9, 31, 0});
    RunTo({2026, 3, 9, 10, 0, 0});
    EXPECT_EQ(farmsDay(), before);
    EXPECT_EQ(desk.Count("outcome where locationID=? and gasday='2026-03-09' and doubtful is null", {farm}), 1);
}

// What waited or was in hand when the power failed has no outcome, and is served when it is back.
TEST_F(OutcomeTest, APowerCutInTheMiddleOfAQueueLosesNobody) {
    AddFarmAndMill("08:00", "08:00");
    Add("Meadow", "08:00", 1, 3);
    desk.OpenField();
    Start();
    RunTo({2026, 3, 9, 8, 0, 0});
    InTheTurnOf turn(desk.clock, mill, [] { throw PowerCut(); });
    program->Watch(&turn);
    EXPECT_THROW(desk.clock.Run(10 * minute), PowerCut);
    desk.clock.EndWaits(std::make_exception_ptr(PowerCut()));
    program.reset();
    EXPECT_THAT(Rows(), ElementsAre("Farm 09 08:00: 09 08:00 schedule, 1, collected"));
    RunTo({2026, 3, 9, 8, 20, 0});
    Start();
    RunTo({2026, 3, 9, 8, 40, 0});
    EXPECT_THAT(Rows(), ElementsAre("Farm 09 08:00: 09 08:00 schedule, 1, collected",
                                    "Mill 09 08:00: 09 08:20 late, 1, collected",
                                    "Meadow 09 08:00: 09 08:20 late, 1, collected"));
}

TEST_F(OutcomeTest, TheEndOfTheProgramBreaksOffAndEverybodyIsServedLate) {
    AddFarmAndMill("08:00", "08:00");
    Start();
    InTheTurnOf turn(desk.clock, farm, [this] { program->Leave(); });
    program->Watch(&turn);
    RunTo({2026, 3, 9, 8, 2, 0});
    EXPECT_FALSE(desk.ports.PortOpen() || program->Busy());
    program.reset();
    RunTo({2026, 3, 9, 8, 5, 0});
    Start();
    RunTo({2026, 3, 9, 9, 0, 0});
    EXPECT_THAT(Rows(), ElementsAre("Farm 09 08:00: 09 08:00 schedule, 1, broken off",
                                    "Farm 09 08:00: 09 08:05 late, 1, collected",
                                    "Mill 09 08:00: 09 08:05 late, 1, collected"));
    EXPECT_EQ(desk.dbconn.First("select reason from outcome").value()[std::size_t{0}].Text(), "The program ends");
}

TEST_F(OutcomeTest, AStationWithoutDataIsTriedAgainAtItsTimes) {
    mill = Add("Mill", "08:16", 1, 2);
    desk.OpenField();
    farm = Add("Farm", "08:00", 9, 1);  // nobody is behind this port
    Start();
    RunTo({2026, 3, 9, 8, 1, 0});
    EXPECT_EQ(LineNow(farm), "not reached, 3 attempts, 08:00");
    EXPECT_EQ(StateNow(farm), collection::DayState::Failed);
    RunTo({2026, 3, 9, 10, 0, 0});
    End();  // the rounds go on where they were
    RunTo({2026, 3, 9, 10, 30, 0});
    Start();
    RunTo({2026, 3, 10, 7, 0, 0});
    EXPECT_THAT(
        Rows(),
        ElementsAre("Farm 09 08:00: 09 08:00 schedule, 3, not reached", "Farm 09 08:00: 09 08:16 retry, 3, not reached",
                    "Mill 09 08:16: 09 08:16 schedule, 1, collected", "Farm 09 08:00: 09 09:17 retry, 3, not reached",
                    "Farm 09 08:00: 09 10:30 retry, 3, not reached", "Farm 09 08:00: 09 11:31 retry, 3, not reached"));
}

TEST_F(OutcomeTest, RetriesEndWithADayThatIsCollectedAndCanBeOff) {
    AddFarmAndMill("08:00", "20:00");
    desk.OpenField({.silent = {farm}});
    Start();
    RunTo({2026, 3, 9, 8, 10, 0});
    EXPECT_FALSE(desk.Master(farm).Bool("sampledtoday"));
    desk.OpenField();
    RunTo({2026, 3, 9, 12, 0, 0});
    EXPECT_TRUE(desk.Master(farm).Bool("sampledtoday"));
    NoRetries();
    desk.OpenField({.silent = {farm}});
    // A day that is collected stays so, whatever is tried afterwards.
    EXPECT_TRUE(program->CollectNow(farm));
    RunTo({2026, 3, 9, 12, 30, 0});
    EXPECT_TRUE(desk.Master(farm).Bool("sampledtoday"));
    EXPECT_THAT(LineNow(farm), HasSubstr(" by retry"));
    RunTo({2026, 3, 10, 19, 0, 0});
    EXPECT_THAT(
        Rows(),
        ElementsAre("Farm 09 08:00: 09 08:00 schedule, 3, no answer", "Farm 09 08:00: 09 08:16 retry, 1, collected",
                    "Farm 09 08:00: 09 12:00 hand, 3, no answer", "Mill 09 20:00: 09 20:00 schedule, 1, collected",
                    "Farm 10 08:00: 10 08:00 schedule, 3, no answer"));
}

// What the operators go by calls a station that was not reached sampled; its outcome does not.
TEST_F(OutcomeTest, AStationBehindAModemThatIsNotReachedIsNotCollected) {
    NoRetries();
    demo::DemoStation station{"Hill", "TeleFlow", "Modbus", "RTU", 3, 1, "5550142"};
    station.contracthour = "08:00";
    const auto hill = demo::AddStation(desk.dbconn, station);
    fieldsim::FieldOptions options;
    options.modems[3] = {{"NO CARRIER", 6000}, {"NO CARRIER", 6000}, {"NO CARRIER", 6000}};
    desk.OpenField(options);
    Start();
    RunTo({2026, 3, 9, 8, 10, 0});
    EXPECT_TRUE(desk.Master(hill).Bool("sampledtoday"));
    EXPECT_THAT(LineNow(hill), testing::MatchesRegex("not reached, 3 dials, 08:0[12]"));
    EXPECT_EQ(StateNow(hill), collection::DayState::Failed);
    EXPECT_THAT(Rows(), ElementsAre("Hill 09 08:00: 09 08:00 schedule, 3, not reached"));
    EXPECT_EQ(program->CollectMissing(), 1);
}

TEST_F(OutcomeTest, AnAttemptHasItsTimeAndThenTheNextStationIsServed) {
    NoRetries();
    desk.dbconn.Execute("update settings set value='2' where name='stationminutes'");
    AddFarmAndMill("08:00", "08:00");
    desk.dbconn.Execute("update configdata_master set delaytime=50000 where locationID=?", {farm});
    Start();
    RunTo({2026, 3, 9, 8, 10, 0});
    EXPECT_THAT(Rows(), ElementsAre("Farm 09 08:00: 09 08:00 schedule, 1, broken off",
                                    "Mill 09 08:00: 09 08:03 schedule, 1, collected"));
    EXPECT_EQ(desk.dbconn.First("select reason from outcome").value()[std::size_t{0}].Text(),
              "The 2 minutes of an attempt were up");
    EXPECT_THAT(LineNow(farm), HasSubstr("broken off, 08:03"));
    EXPECT_FALSE(desk.ports.PortOpen());
    desk.dbconn.Execute("update settings set value='0' where name='stationminutes'");  // as long as it takes
    EXPECT_TRUE(program->CollectNow(farm));
    RunTo({2026, 3, 9, 10, 0, 0});
    EXPECT_EQ(StateNow(farm), collection::DayState::Collected);
}

// Its clock being behind, each run of a midnight station finds the row of the day before in LogParam, and moves it.
TEST_F(OutcomeTest, AStationWhoseClockIsSlowLosesNoDay) {
    AddFarmAndMill("00:05", "12:00");
    desk.OpenField().Station(farm)->written->ClockGoesAhead(-600);
    Start();
    RunTo({2026, 3, 11, 1, 0, 0});
    EXPECT_EQ(desk.Count("LogParam where LocationId=?", {farm}), 1);
    EXPECT_EQ(desk.Count("gasday where locationID=? and dayflow is not null", {farm}), 2);
}

TEST_F(OutcomeTest, AStationOfTwoStreamsHasTheFlowOfBoth) {
    const auto stations = demo::OneOfEach("08:00");
    for (const auto& station : stations) {
        demo::AddStation(desk.dbconn, station);
    }
    const auto& field = desk.OpenField();
    Start();
    RunTo({2026, 3, 9, 8, 20, 0});
    const auto served = [&](std::int64_t location, int stream, const char* name) {
        return field.LastServed(location, stream, name).value();
    };
    const auto hill = collection::GasDayOf(desk.dbconn, 3, "2026-03-09").value();
    EXPECT_FLOAT_EQ(hill.dayflow.value(), served(3, 1, "Volume Yesterday"));
    EXPECT_FLOAT_EQ(hill.pressure.value(), served(3, 1, "Flowing Pressure"));
    const auto works = collection::GasDayOf(desk.dbconn, 4, "2026-03-09").value();
    EXPECT_FLOAT_EQ(works.monthflow.value(), served(4, 1, "Volume This Month") + served(4, 2, "Volume This Month"));
    EXPECT_FLOAT_EQ(works.pressure.value(), served(4, 1, "Flowing Pressure"));
    EXPECT_EQ(desk.Count("outcome where result='collected'"), 5);
    EXPECT_EQ(desk.Count("gasday where dayflow is not null and monthflow is not null and pressure is not null"), 5);

    reading::DayFigures partly{10, 20, 3};
    partly.AddStream({5, {}, 4});
    EXPECT_EQ(partly.dayflow, 15);
    EXPECT_EQ(partly.monthflow, std::nullopt);
    EXPECT_EQ(partly.pressure, 3);
}

}  // namespace
