#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "desk/kit/Boxes.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/Minutes.h"

TEST(NextTick, ComesOnceAMinuteAtTheSameSecond) {
    struct Case {
        const char* what;
        qint64 phase, served, now, next;
    };
    for (const Case& c : {
             Case{"just started", 30000, 90000, 90000, 150000},
             Case{"on time", 30000, 90003, 90003, 150000},
             Case{"looked at in between", 30000, 90003, 140000, 150000},
             Case{"held up within its minute", 30000, 119000, 119000, 150000},
             Case{"held up into the next minute: no second tick there", 59000, 180500, 180500, 299000},
             Case{"held up for an hour", 30000, 3690500, 3690500, 3750000},
             Case{"set back by an hour", 30000, 3690000, 100000, 150000},
             Case{"set back a little, before the tick that was", 30000, 330000, 315000, 390000},
             Case{"set back a little, over the edge", 2000, 302000, 298000, 362000},
             Case{"set forward", 30000, 90000, 700000, 750000},
         }) {
        EXPECT_EQ(desk::NextTick(c.phase, c.served, c.now), c.next) << c.what;
    }
}

TEST(PhaseOf, KeepsClearOfTheEdgeOfTheMinute) {
    EXPECT_EQ(desk::PhaseOf(600000), 0);
    EXPECT_EQ(desk::PhaseOf(631234), 31234);
    EXPECT_EQ(desk::PhaseOf(659990), 58000);
    // From there the first tick is in the minute after the start all the same.
    EXPECT_EQ(desk::NextTick(58000, 659990, 659990), 718000);
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

TEST(ShowBox, HoldsUpNoRunWhileItStands) {
    desk::EventLoopClock clock;
    QWidget form;
    form.show();
    QTimer::singleShot(5, [&] { desk::ShowBox(&form, "Invalid <b>UserName</b>", "Login"); });
    const auto start = clock.Milliseconds();
    // A box with a loop of its own would keep this wait until somebody comes.
    QTimer::singleShot(20000, &form, [] { QApplication::closeAllWindows(); });
    clock.WaitMs(100);
    EXPECT_LT(clock.Milliseconds() - start, 10000U);
    auto* box = form.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->text(), "Invalid <b>UserName</b>");
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
}
