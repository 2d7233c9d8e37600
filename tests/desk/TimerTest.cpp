#include <QDateTime>
#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include "desk/core/EventLoopClock.h"
#include "desk/core/Minutes.h"

TEST(NextTick, ComesAMinuteLaterAtTheSameSecond) {
    struct Case {
        const char* what;
        qint64 previous, now, next;
    };
    for (const Case& c : {
             Case{"on time", 90000, 90003, 150000},
             Case{"a little early", 90000, 89998, 150000},
             Case{"the tick took long", 90000, 140000, 150000},
             Case{"held up past the next", 90000, 151000, 210000},
             Case{"held up for an hour", 90000, 90000 + 3600500, 90000 + 3660000},
             Case{"the clock was set back", 3690000, 100000, 150000},
             Case{"set back by days, to the second", 90000 + 86400000, 90000, 150000},
         }) {
        EXPECT_EQ(desk::NextTick(c.previous, c.now), c.next) << c.what;
    }
}

TEST(EventLoopClock, WaitsAsLongAsItIsTold) {
    desk::EventLoopClock clock;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 10; ++i) {
        clock.WaitMs(20);
    }
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GE(ms, 200);
}

TEST(EventLoopClock, TimersAndOtherWaitsRunInsideAWait) {
    desk::EventLoopClock clock;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++ticks;
        clock.WaitMs(5);
    });
    timer.start(10);
    clock.WaitMs(100);
    EXPECT_GE(ticks, 2);
}

TEST(EventLoopClock, WakeEndsAWaitWhoseConditionHolds) {
    desk::EventLoopClock clock;
    bool ended = false;
    QTimer::singleShot(10, [&] {
        clock.Wake();  // nothing has ended: the wait goes on
    });
    QTimer::singleShot(30, [&] {
        ended = true;
        clock.Wake();
    });
    const auto start = clock.Milliseconds();
    EXPECT_FALSE(clock.WaitMs(60000, [&] { return ended; }));
    EXPECT_LT(clock.Milliseconds() - start, 10000U);
    EXPECT_TRUE(ended);
}
