// The alarm states of a live value: each limit, each latch, both sides.

#include <gtest/gtest.h>

#include <vector>

#include "session/AlarmLimits.h"

namespace session {
namespace {

// lo 20 and lo-lo 10 with a deadband of 2, hi 80 and hi-hi 90 with one of 3.
AlarmBlock Live(double value, double loDeadband = 2) {
    return {value, 20, loDeadband, 10, 80, 3, 90};
}

TEST(CheckAlarm, EveryLatchOnBothSides) {
    const struct {
        const char* what;
        std::vector<double> values;  // one poll after the other
        std::vector<int> states;
    } cases[] = {
        {"normal", {50, 20, 79.999}, {0, 0, 0}},
        {"hi is reached at its limit", {80, 50}, {3, 0}},
        {"hi is held down to its limit less the deadband", {81, 77.001, 77, 79}, {3, 3, 0, 0}},
        {"hi-hi is exceeded above its limit", {90, 90.001}, {3, 4}},
        {"hi-hi is held, then hi takes over", {91, 87.001, 87, 86}, {4, 4, 3, 3}},
        {"out of hi-hi the hi latch is not set of itself", {91, 79}, {4, 0}},
        {"hi holds behind hi-hi once it was reached", {85, 91, 85, 78, 77}, {3, 4, 3, 3, 0}},
        {"lo follows its limit", {20, 19.999, 20}, {0, 2, 0}},
        {"lo-lo follows its limit", {10, 9.999, 10}, {2, 1, 2}},
        {"a positive deadband holds no low state", {5, 11, 19, 21, 19}, {1, 2, 2, 0, 2}},
        {"from one end to the other", {95, 5, 95, 50}, {4, 1, 4, 0}},
    };
    for (const auto& test : cases) {
        AlarmLatches latches;
        for (std::size_t i = 0; i < test.values.size(); ++i) {
            EXPECT_EQ(static_cast<int>(check_alarm(Live(test.values[i]), latches)), test.states[i])
                << test.what << ", value " << test.values[i];
        }
    }
    // The low band lies where the limit less the deadband lies: only a negative deadband reaches above the limit.
    AlarmLatches latches;
    EXPECT_EQ(check_alarm(Live(9, -2), latches), AlarmState::LoLo);
    EXPECT_EQ(check_alarm(Live(11, -2), latches), AlarmState::LoLo);
    EXPECT_EQ(check_alarm(Live(12, -2), latches), AlarmState::Lo);
    EXPECT_EQ(check_alarm(Live(21, -2), latches), AlarmState::Lo);
    EXPECT_EQ(check_alarm(Live(22, -2), latches), AlarmState::Normal);
}

TEST(AlarmWatch, JudgesTheBlocksThatEndWithAKnownLimitEachWithItsOwnLatches) {
    ParameterSet set;
    auto& rows = set.Of(*GroupOf("ALARM"));
    const auto block = [&](const char* name, double value) {
        const AlarmBlock b = Live(value);
        for (const double v : {b.value, b.lo, b.loDeadband, b.loLo, b.hi, b.hiDeadband, b.hiHi}) {
            rows.push_back({});
            TakeValue(rows.back(), v, {2026, 3, 9, 8, 0, 0});
        }
        rows.back().Description = name;
    };
    rows.push_back({});  // a row in front: blocks count from their last row
    block("Flowrate Hi-Hi", 91);
    block("Level Hi-Hi", 91);  // not one of the known
    block("Main Battery Hi-Hi", 19);
    AlarmWatch watch;
    const auto states = [&] {
        std::vector<std::pair<std::size_t, int>> all;
        for (const auto& live : watch.Judge(set)) {
            all.emplace_back(live.place.row, static_cast<int>(live.state));
        }
        return all;
    };
    using States = std::vector<std::pair<std::size_t, int>>;
    EXPECT_EQ(states(), (States{{1, 4}, {15, 2}}));
    rows[1].lastvalue = 88;  // still held, whatever the other block did in between
    EXPECT_EQ(states(), (States{{1, 4}, {15, 2}}));
    watch.Forget();
    EXPECT_EQ(states(), (States{{1, 3}, {15, 2}}));
    for (const auto& [value, state] : {std::pair(91, 4), {87, 3}, {77, 0}, {19, 2}, {9, 1}}) {  // each of its limits
        rows[1].lastvalue = value;
        EXPECT_EQ(states(), (States{{1, state}, {15, 2}})) << value;
    }
    rows[4].quality = core::Quality::OutOfRange;  // without one of its limits a value is not judged
    EXPECT_EQ(states(), (States{{15, 2}}));
    // A limit that stands too high up closes no block.
    rows.erase(rows.begin(), rows.begin() + 2);
    rows.resize(6);
    EXPECT_EQ(states(), States{});
}

}  // namespace
}  // namespace session
