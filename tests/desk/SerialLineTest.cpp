#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <QTimer>
#include <array>

#include "desk/core/EventLoopClock.h"
#include "desk/core/SerialLine.h"

namespace {

// A pseudo-terminal: the line opens one end, the test holds the other.
struct SerialLineTest : testing::Test {
    int far = -1;
    int near = -1;
    std::string device;
    desk::EventLoopClock clock;
    desk::SerialLine line{[this](int port) { return port == 3 ? device : std::string(); }};

    SerialLineTest() {
        std::array<char, 128> name{};
        termios raw{};
        cfmakeraw(&raw);
        EXPECT_EQ(openpty(&far, &near, name.data(), &raw, nullptr), 0);
        device = name.data();
        line.CommPort(3);
    }
    ~SerialLineTest() override {
        close(near);
        close(far);
    }
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
    line.Settings("9600,n,8,1");
    device = "/dev/no-such-port";
    EXPECT_FALSE(line.PortOpen(true));
    EXPECT_NE(line.LastError().find("/dev/no-such-port"), std::string::npos);
}

TEST_F(SerialLineTest, APulledPlugClosesThePort) {
    ASSERT_TRUE(line.PortOpen(true));
    close(near);
    close(far);
    near = far = -1;
    clock.WaitMs(50);
    EXPECT_FALSE(line.PortOpen());
    EXPECT_NE(line.LastError().find("the device is gone"), std::string::npos);
    line.Output("x");
    clock.WaitMs(20);
    EXPECT_EQ(line.OutBufferCount(), 0U);
}

TEST_F(SerialLineTest, APulledPlugIsNoticedByAReadToo) {
    ASSERT_TRUE(line.PortOpen(true));
    close(near);
    close(far);
    near = far = -1;
    EXPECT_EQ(line.Input(), "");
    EXPECT_FALSE(line.PortOpen());
    EXPECT_EQ(line.InBufferCount(), 0U);
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
