#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <array>

#include "collection/CollectionRun.h"
#include "desk/kit/Boxes.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/Minutes.h"
#include "desk/platform/SerialLine.h"
#include "protocols/line/Modem.h"
#include "support/PortDesk.h"

namespace {

// A pseudo-terminal: the line opens one end, the test holds the other.
struct PseudoTerminal {
    int far = -1;
    int near = -1;
    std::string device;

    PseudoTerminal() {
        std::array<char, 128> name{};
        termios raw{};
        cfmakeraw(&raw);
        EXPECT_EQ(openpty(&far, &near, name.data(), &raw, nullptr), 0);
        device = name.data();
    }
    ~PseudoTerminal() { Pull(); }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    void Pull() {
        for (int* end : {&near, &far}) {
            if (*end >= 0) {
                close(*end);
            }
            *end = -1;
        }
    }
};

struct SerialLineTest : testing::Test, PseudoTerminal {
    desk::EventLoopClock clock;
    desk::SerialLine line{[this](int port) { return port == 3 ? device : std::string(); }};

    SerialLineTest() { line.CommPort(3); }
    std::string FarReads() const {
        std::array<char, 512> buffer{};
        const ssize_t count = read(far, buffer.data(), buffer.size());
        return {buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
    }
    void FarWrites(const std::string& bytes) const {
        ASSERT_EQ(write(far, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
};

TEST_F(SerialLineTest, EveryByteGoesBothWaysUnchanged) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    ASSERT_TRUE(line.PortOpen(true)) << line.LastError();
    line.Output(all);
    EXPECT_EQ(FarReads(), all);
    FarWrites(all);
    QTest::qWait(50);
    EXPECT_EQ(line.InBufferCount(), all.size());
    EXPECT_EQ(line.Input(), all);
    EXPECT_EQ(line.InBufferCount(), 0U);
}

TEST_F(SerialLineTest, WhatWasSentBeforeThePortWasOpenedIsNotReadAsAnAnswer) {
    ASSERT_TRUE(line.PortOpen(true));
    FarWrites("old");
    QTest::qWait(20);
    ASSERT_TRUE(line.PortOpen(true));  // opened anew
    FarWrites("new");
    QTest::qWait(50);
    EXPECT_EQ(line.Input(), "new");
    FarWrites("stale");
    QTest::qWait(20);
    line.ClearInBuffer();
    EXPECT_EQ(line.Input(), "");
}

TEST_F(SerialLineTest, APortThatCannotBeOpenedSaysWhy) {
    line.CommPort(4);
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_EQ(line.LastError(), "No device is entered for port 4");
    line.CommPort(3);
    for (const char* text : {"", "9600", "9600,N,8,1,1", "-1,N,8,1", "9600,X,8,1", "9600,N,9,1", "9600,N,8,3"}) {
        line.Settings(text);
        EXPECT_FALSE(line.PortOpen(true));
        EXPECT_EQ(line.LastError(), "Comport settings \"" + std::string(text) + "\" are not valid");
    }
    line.Settings("9600,N,8,1.5");
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_EQ(line.LastError(), "1.5 stop bits cannot be set on this system; choose 1 or 2");
    line.Settings(" 9600, n, 8, 1 ");
    device = "/dev/no-such-port";
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_NE(line.LastError().find("/dev/no-such-port"), std::string::npos);
    EXPECT_EQ(line.Input(), "");
}

// The driver takes the bytes at once; the chip sends them one after the other.
TEST_F(SerialLineTest, BytesCountAsSentWhenTheyAreOnTheWire) {
    line.Settings("300,N,8,1");
    ASSERT_TRUE(line.PortOpen(true));
    line.Output("ath\r");
    EXPECT_GT(line.OutBufferCount(), 0U);
    const auto before = clock.Milliseconds();
    support::Converse(clock, [&] { protocols::Drain(line, clock); });
    EXPECT_GE(clock.Milliseconds() - before, 4U * 10 * 1000 / 300);
    EXPECT_EQ(line.OutBufferCount(), 0U);
    EXPECT_EQ(FarReads(), "ath\r");
}

TEST_F(SerialLineTest, APulledPlugClosesThePort) {
    std::string lost;
    line.WhenLost([&](const std::string& reason) { lost = reason; });
    ASSERT_TRUE(line.PortOpen(true));
    Pull();
    QTest::qWait(50);
    EXPECT_FALSE(line.PortOpen());
    EXPECT_NE(line.LastError().find("the device is gone"), std::string::npos);
    EXPECT_EQ(lost, line.LastError());
    line.Output("x");
    QTest::qWait(20);
    EXPECT_EQ(line.OutBufferCount(), 0U);
}

// A device that disappears shortly after a conversation began.
TEST(SerialLine, AConversationEndsWithTheReasonThatItsDeviceIsGone) {
    PseudoTerminal terminal;
    support::PortDesk desk(terminal.device);
    const auto locationID = desk.AddStation();
    const std::string gone = terminal.device.substr(std::string("/dev/").size()) + ": the device is gone";
    QTimer::singleShot(150, [&terminal] { terminal.Pull(); });
    reading::RunState state;
    support::Converse(desk.clock, [&] { collection::collectiong_Data(desk.place, locationID, state); });
    EXPECT_TRUE(state.runfailed);
    EXPECT_NE(desk.scratch.RtuErr().find(gone + " [" + std::to_string(locationID) + "]"), std::string::npos)
        << desk.scratch.RtuErr();
    EXPECT_EQ(desk.scratch.RtuErr().find("No Response"), std::string::npos);
    EXPECT_EQ(desk.feedback.status.back(), gone);
    EXPECT_FALSE(desk.lines.InUse());
}

TEST(NextTick, ComesOnceAMinuteAtTheSameSecond) {
    struct Case {
        const char* what;
        qint64 phase, served, now, next;
    };
    for (const Case& c : {
             Case{"on time", 30000, 90003, 90003, 150000},
             Case{"held up into the next minute: no second tick there", 59000, 180500, 180500, 299000},
             Case{"set back by an hour", 30000, 3690000, 100000, 150000},
             Case{"set back a little, before the tick that was", 30000, 330000, 315000, 390000},
             Case{"set back a little, over the edge", 2000, 302000, 298000, 362000},
             Case{"set forward", 30000, 90000, 700000, 750000},
         }) {
        EXPECT_EQ(desk::NextTick(c.phase, c.served, c.now), c.next) << c.what;
    }
    // A second that is clear of the edge of the minute; the first tick is in the minute after the start all the same.
    EXPECT_EQ(desk::PhaseOf(631234), 31234);
    EXPECT_EQ(desk::PhaseOf(659990), 58000);
    EXPECT_EQ(desk::NextTick(58000, 659990, 659990), 718000);
}

TEST(EventLoopClock, WaitsAsLongAsItIsToldWhileTimersAndOtherWaitsRun) {
    desk::EventLoopClock clock;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++ticks;
        clock.Start([&clock] { clock.WaitMs(5); });
    });
    timer.start(10);
    const auto start = std::chrono::steady_clock::now();
    support::Converse(clock, [&] {
        for (int i = 0; i < 5; ++i) {
            clock.WaitMs(20);
        }
    });
    timer.stop();
    support::TurnUntil([&] { return clock.Conversations() == 0; });
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_GE(ticks, 2);
}

TEST(ShowBox, HoldsUpNoRunWhileItStands) {
    desk::EventLoopClock clock;
    QWidget form;
    form.show();
    QTimer::singleShot(5, [&] { desk::ShowBox(&form, "Invalid <b>UserName</b>", "Login"); });
    const auto start = clock.Milliseconds();
    // A box with a loop of its own would keep this wait until somebody comes.
    QTimer::singleShot(20000, &form, [] { QApplication::closeAllWindows(); });
    support::Converse(clock, [&] { clock.WaitMs(100); });
    EXPECT_LT(clock.Milliseconds() - start, 10000U);
    auto* box = form.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
}

}  // namespace
