#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <QTimer>
#include <array>
#include <functional>

#include "collection/CollectionRun.h"
#include "desk/platform/EventLoopClock.h"
#include "desk/platform/SerialLine.h"
#include "protocols/line/Modem.h"
#include "session/OwnCall.h"
#include "support/PortDesk.h"
#include "support/SessionDesk.h"

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
    clock.WaitMs(50);
    EXPECT_EQ(line.InBufferCount(), all.size());
    EXPECT_EQ(line.Input(), all);
    EXPECT_EQ(line.InBufferCount(), 0U);
}

TEST_F(SerialLineTest, WhatHasArrivedIsSeenWithoutAnEventLoop) {
    ASSERT_TRUE(line.PortOpen(true));
    EXPECT_EQ(line.Input(), "");
    FarWrites("answer");
    pollfd arrived{near, POLLIN, 0};
    ASSERT_EQ(poll(&arrived, 1, 5000), 1);
    EXPECT_EQ(line.InBufferCount(), 6U);
    EXPECT_EQ(line.Input(), "answer");
}

TEST_F(SerialLineTest, APortClosedInsideAWaitGivesNothingMore) {
    ASSERT_TRUE(line.PortOpen(true));
    QTimer::singleShot(5, [this] {
        FarWrites("late");
        line.PortOpen(false);
    });
    clock.WaitMs(50);
    EXPECT_EQ(line.Input(), "");
    EXPECT_FALSE(line.PortOpen());
}

TEST_F(SerialLineTest, WhatWasSentBeforeThePortWasOpenedIsNotReadAsAnAnswer) {
    ASSERT_TRUE(line.PortOpen(true));
    FarWrites("old");
    clock.WaitMs(20);
    ASSERT_TRUE(line.PortOpen(true));  // opened anew
    FarWrites("new");
    clock.WaitMs(50);
    EXPECT_EQ(line.Input(), "new");
    FarWrites("stale");
    clock.WaitMs(20);
    line.ClearInBuffer();
    EXPECT_EQ(line.Input(), "");
}

TEST_F(SerialLineTest, AClosedPortTakesAndGivesNothing) {
    line.Output("lost");
    EXPECT_EQ(line.Input(), "");
    EXPECT_EQ(line.InBufferCount(), 0U);
    EXPECT_FALSE(line.PortOpen());
    EXPECT_TRUE(line.PortOpen(false));
}

TEST_F(SerialLineTest, APortThatCannotBeOpenedSaysWhy) {
    line.CommPort(4);
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_EQ(line.LastError(), "No device is entered for port 4");
    line.CommPort(3);
    line.Settings("fast");
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_EQ(line.LastError(), "Comport settings \"fast\" are not valid");
    line.Settings("9600,N,8,1.5");
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_EQ(line.LastError(), "1.5 stop bits cannot be set on this system; choose 1 or 2");
    line.Settings("9600,n,8,1");
    device = "/dev/no-such-port";
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_NE(line.LastError().find("/dev/no-such-port"), std::string::npos);
}

// The driver takes the bytes at once; the chip sends them one after the other.
TEST_F(SerialLineTest, BytesCountAsSentWhenTheyAreOnTheWire) {
    line.Settings("300,N,8,1");
    ASSERT_TRUE(line.PortOpen(true));
    line.Output("ath\r");
    EXPECT_GT(line.OutBufferCount(), 0U);
    const auto before = clock.Milliseconds();
    protocols::Drain(line, clock);
    EXPECT_GE(clock.Milliseconds() - before, 4U * 10 * 1000 / 300);
    EXPECT_EQ(line.OutBufferCount(), 0U);
    EXPECT_EQ(FarReads(), "ath\r");
}

TEST_F(SerialLineTest, APulledPlugClosesThePort) {
    std::string lost;
    line.WhenLost([&](const std::string& reason) { lost = reason; });
    ASSERT_TRUE(line.PortOpen(true));
    Pull();
    clock.WaitMs(50);
    EXPECT_FALSE(line.PortOpen());
    EXPECT_NE(line.LastError().find("the device is gone"), std::string::npos);
    EXPECT_EQ(lost, line.LastError());
    line.Output("x");
    clock.WaitMs(20);
    EXPECT_EQ(line.OutBufferCount(), 0U);
}

TEST_F(SerialLineTest, APulledPlugIsNoticedByAReadToo) {
    ASSERT_TRUE(line.PortOpen(true));
    Pull();
    EXPECT_EQ(line.Input(), "");
    EXPECT_FALSE(line.PortOpen());
    EXPECT_EQ(line.InBufferCount(), 0U);
}

// A device that disappears shortly after a conversation began.
TEST(SerialLine, AConversationEndsWithTheReasonThatItsDeviceIsGone) {
    support::PortDesk desk("");
    const auto locationID = desk.AddStation();
    std::string gone;
    support::RecordingView view;
    const std::pair<const char*, std::function<void()>> conversations[] = {
        {"a session",
         [&] {
             session::Session session(desk.place, desk.scheduler, view, locationID);
             session.Connect();
             ASSERT_EQ(session.GetState(), session::State::Connected);
             session.GetData();
             EXPECT_EQ(view.ends, std::vector<std::string>{gone});
             EXPECT_TRUE(view.boxes.empty());
         }},
        {"a collection",
         [&] {
             reading::RunState state;
             collection::collectiong_Data(desk.place, locationID, state);
             EXPECT_TRUE(state.runfailed);
             EXPECT_NE(desk.scratch.RtuErr().find(gone + " [" + std::to_string(locationID) + "]"), std::string::npos)
                 << desk.scratch.RtuErr();
             EXPECT_EQ(desk.scratch.RtuErr().find("No Response"), std::string::npos);
             EXPECT_EQ(desk.feedback.status.back(), gone);
         }},
        {"a call before it is through",
         [&] {
             desk.dbconn.Execute("update configdata_master set phoneno='5550142'");
             const auto station = core::ReadStation(desk.dbconn, locationID).value();
             EXPECT_FALSE(session::OwnCall(desk.place, desk.scheduler, station, {}, [](auto&) { FAIL(); }));
             EXPECT_EQ(desk.feedback.boxes, std::vector<std::string>{gone});
         }},
    };
    for (const auto& [what, converse] : conversations) {
        SCOPED_TRACE(what);
        PseudoTerminal terminal;
        desk.path = terminal.device;
        gone = terminal.device.substr(std::string("/dev/").size()) + ": the device is gone";
        QObject here;
        QTimer::singleShot(150, &here, [&terminal] { terminal.Pull(); });
        converse();
        EXPECT_FALSE(desk.line.InUse());
    }
}

TEST(ParsePortSettings, TakesWhatStationsHaveAndNothingElse) {
    const auto odd = desk::ParsePortSettings("19200,O,7,2");
    ASSERT_TRUE(odd);
    EXPECT_EQ(odd->baudRate, 19200);
    EXPECT_EQ(odd->parity, QSerialPort::OddParity);
    EXPECT_EQ(odd->dataBits, QSerialPort::Data7);
    EXPECT_EQ(odd->stopBits, QSerialPort::TwoStop);
    EXPECT_EQ(desk::ParsePortSettings(" 9600, e, 8, 1.5 ")->stopBits, QSerialPort::OneAndHalfStop);
    for (const char* text : {"", "9600", "9600,N,8", "9600,N,8,1,1", "-1,N,8,1", "x,N,8,1", "9600,X,8,1", "9600,N,9,1",
                             "9600,N,8,3", "99999999999,N,8,1"}) {
        EXPECT_FALSE(desk::ParsePortSettings(text)) << text;
    }
}

}  // namespace
