#include <gtest/gtest.h>

#include "core/Clock.h"
#include "fieldsim/VirtualClock.h"

using fieldsim::VirtualClock;

namespace {

constexpr core::DateTime start = {2026, 3, 9, 7, 59, 30};
constexpr std::uint32_t last = 0xFFFFFFFF;

}  // namespace

TEST(WaitMs, TakesItsTimeAlsoAcrossTheWrapOfTheCounter) {
    const struct {
        std::uint32_t counter;
        double delay;
    } cases[] = {{0, 2000}, {last, 2000}, {last - 1, 1}, {last - 1999, 2000}, {last - 2000, 2000}};
    for (const auto& [counter, delay] : cases) {
        VirtualClock clock(start, counter);
        // Many timers on the way: an early return would show at one of them.
        int ticks = 0;
        clock.Every(1, [&] { ++ticks; });
        EXPECT_TRUE(clock.WaitMs(delay));
        EXPECT_EQ(clock.Elapsed(), static_cast<std::uint64_t>(delay)) << counter;
        EXPECT_EQ(clock.Milliseconds(), counter + static_cast<std::uint32_t>(delay));
        EXPECT_EQ(ticks, static_cast<int>(delay));
    }
}

TEST(WaitMs, OfNoTimeIsOneTurnAndOfAFractionOneMillisecond) {
    VirtualClock clock(start);
    EXPECT_TRUE(clock.WaitMs(0));
    EXPECT_TRUE(clock.WaitMs(-5));
    EXPECT_EQ(clock.Elapsed(), 0U);
    EXPECT_TRUE(clock.WaitMs(0.5));
    EXPECT_EQ(clock.Elapsed(), 1U);
}

TEST(WaitMs, EndsAtOnceWhenItIsWoken) {
    VirtualClock clock(start, last - 100);
    bool ended = false;
    const auto isEnded = [&] { return ended; };
    clock.After(50, [&] { clock.Wake(); });  // woken, and not yet to end
    clock.After(300, [&] {
        ended = true;
        clock.Wake();
    });
    EXPECT_TRUE(clock.WaitMs(100, isEnded));
    EXPECT_EQ(clock.Elapsed(), 100U);
    EXPECT_FALSE(clock.WaitMs(2000, isEnded));
    EXPECT_EQ(clock.Elapsed(), 300U);
    EXPECT_FALSE(clock.WaitMs(0, isEnded));
}

TEST(WaitMs, AWaitInsideAWaitDoesNotLengthenTheOuterOne) {
    VirtualClock clock(start, last - 500);
    clock.After(100, [&] { clock.WaitMs(300); });
    EXPECT_TRUE(clock.WaitMs(1000));
    EXPECT_EQ(clock.Elapsed(), 1000U);
}

TEST(Moments, AreWholeAndOfTheCalendarOrNone) {
    EXPECT_EQ(core::IsoText(core::MomentOf("2024-02-29 07:05:09").value()), "2024-02-29 07:05:09");
    EXPECT_EQ(core::IsoText(core::FromSeconds(core::ToSeconds(start))), "2026-03-09 07:59:30");
    for (const char* text : {"", "2026-03-09", "2026-02-29 00:00:00", "2026-03-09 24:00:00", "soon"}) {
        EXPECT_FALSE(core::MomentOf(text)) << text;
    }
}
