#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QTcpServer>
#include <QTest>
#include <vector>

#include "desk/platform/EventLoopClock.h"
#include "desk/platform/TcpLine.h"
#include "protocols/line/LineLease.h"
#include "protocols/line/Modem.h"

namespace {

// Ten seconds pass in one.
struct HastyClock final : desk::EventLoopClock {
    std::uint32_t Milliseconds() const override { return EventLoopClock::Milliseconds() * 10; }
    void Arm(std::uint32_t withinMs) override { EventLoopClock::Arm((withinMs + 9) / 10); }
};

// Takes no more connections than it has: whoever asks for another one hears nothing.
struct DeafStation {
    int listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    std::vector<int> waiting;
    sockaddr_in at{};

    DeafStation() {
        at.sin_family = AF_INET;
        at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof at;
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&at), size), 0);
        EXPECT_EQ(listen(listener, 0), 0);
        getsockname(listener, reinterpret_cast<sockaddr*>(&at), &size);
        for (int i = 0; i < 4; ++i) {
            waiting.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
            static_cast<void>(connect(waiting.back(), reinterpret_cast<sockaddr*>(&at), size));
        }
    }
    ~DeafStation() {
        waiting.push_back(listener);
        for (const int each : waiting) {
            close(each);
        }
    }
    DeafStation(const DeafStation&) = delete;
    DeafStation& operator=(const DeafStation&) = delete;
    int Port() const { return ntohs(at.sin_port); }
};

struct TcpLineTest : testing::Test {
    HastyClock clock;
    QTcpServer station;
    bool done = false;

    TcpLineTest() { station.listen(QHostAddress::LocalHost); }
    core::Address Here() const { return {"127.0.0.1", station.serverPort()}; }
    std::string HereText() const { return core::AddressText(Here()); }
    // Code that waits, on a stack of its own.
    void Converse(const std::function<void()>& talk) {
        done = false;
        clock.Start([this, talk] {
            talk();
            done = true;
        });
        ASSERT_TRUE(QTest::qWaitFor([this] { return done; }, 20000));
    }
    QTcpSocket* Accepted() {
        EXPECT_TRUE(station.hasPendingConnections() || station.waitForNewConnection(5000));
        return station.nextPendingConnection();
    }
    static void Say(QTcpSocket* peer, const std::string& bytes) {
        peer->write(bytes.data(), static_cast<qint64>(bytes.size()));
        peer->flush();
    }
};

TEST_F(TcpLineTest, AnAddressThatCannotBeReachedSaysWhy) {
    const std::string closed = HereText();
    const core::Address closedAddress = Here();
    station.close();
    const DeafStation deaf;
    const core::Address silent{"127.0.0.1", deaf.Port()};
    const std::pair<core::Address, std::string> cases[] = {
        {closedAddress, closed + ": connection refused"},
        {{"no-such-station.invalid", 4001}, "no-such-station.invalid:4001: name not found"},
        {{"224.0.0.1", 4001}, "224.0.0.1:4001: unreachable"},
        {silent, core::AddressText(silent) + ": no answer within 10 s"},
    };
    for (const auto& [address, reason] : cases) {
        desk::TcpLine line(address, clock);
        line.WhenLost([](const std::string& lost) { ADD_FAILURE() << lost; });
        int others = 0;
        Converse([&] {
            clock.Start([&] { clock.WaitMs(1, [&] { return false; }), ++others; });
            EXPECT_FALSE(line.PortOpen(true));
        });
        EXPECT_EQ(line.LastError(), reason);
        EXPECT_FALSE(line.PortOpen());
        line.Output("lost");
        EXPECT_EQ(line.Input(), "");
        EXPECT_EQ(line.InBufferCount() + line.OutBufferCount(), 0U);
        EXPECT_TRUE(QTest::qWaitFor([&] { return others == 1; }, 1000));
    }
}

// Stop, a close and a line that is taken by another conversation end an opening that hears nothing.
TEST_F(TcpLineTest, AnOpeningEndsWhenItIsToldTo) {
    const DeafStation deaf;
    desk::TcpLine line({"127.0.0.1", deaf.Port()}, clock);
    for (const auto& end : {std::function<void()>([&] { line.StopOpening(); }), {[&] { line.PortOpen(false); }}}) {
        const auto begun = clock.Milliseconds();
        clock.Start([&] {
            clock.WaitMs(500);
            end();
        });
        Converse([&] { EXPECT_FALSE(line.PortOpen(true)); });
        EXPECT_LT(clock.Milliseconds() - begun, 5000U);
        EXPECT_EQ(clock.Conversations(), 0U);
    }
    int ended = 0;
    clock.Start([&] {
        EXPECT_FALSE(line.PortOpen(true));
        EXPECT_FALSE(std::exchange(ended, 1));
    });
    Converse([&] {
        const auto begun = clock.Milliseconds();
        EXPECT_FALSE(line.PortOpen(true));
        EXPECT_GE(clock.Milliseconds() - begun, 10000U) << "to its own limit";
        EXPECT_EQ(ended, 1) << "in place of the first";
        EXPECT_NE(line.LastError().find("no answer within 10 s"), std::string::npos) << line.LastError();
    });
}

TEST_F(TcpLineTest, EveryByteGoesBothWaysUnchangedOverBothVersions) {
    std::string all;
    for (int i = 0; i < 5000; ++i) {
        all += static_cast<char>(i);
    }
    for (const auto& [host, listens] : {std::pair("127.0.0.1", QHostAddress::LocalHost),
                                        {"::1", QHostAddress::LocalHostIPv6},
                                        {"localhost", QHostAddress::LocalHost}}) {
        SCOPED_TRACE(host);
        station.close();
        ASSERT_TRUE(station.listen(listens));
        desk::TcpLine line({host, station.serverPort()}, clock);
        int received = 0;
        line.WhenReceived([&] { ++received; });
        Converse([&] { ASSERT_TRUE(line.PortOpen(true)) << line.LastError(); });
        QTcpSocket* peer = Accepted();
        line.Output(all);
        std::string arrived;
        EXPECT_TRUE(QTest::qWaitFor([&] { return (arrived += peer->readAll().toStdString()).size() >= all.size(); }));
        EXPECT_EQ(arrived, all);
        Converse([&] { protocols::Drain(line, clock); });
        EXPECT_EQ(line.OutBufferCount(), 0U);
        Say(peer, all);
        EXPECT_TRUE(QTest::qWaitFor([&] { return line.InBufferCount() == all.size(); }));
        EXPECT_GT(received, 0);
        EXPECT_EQ(line.Input(), all);

        // Seen without an event loop; not read as an answer behind a new opening.
        Say(peer, "old");
        QTest::qSleep(20);
        EXPECT_EQ(line.InBufferCount(), 3U);
        Converse([&] { ASSERT_TRUE(line.PortOpen(true)); });
        EXPECT_EQ(line.Input(), "");
        EXPECT_TRUE(line.PortOpen(false));
        EXPECT_FALSE(line.PortOpen());
    }
}

// A station that reads nothing: what was sent counts as on its way, and what it floods is held back.
TEST_F(TcpLineTest, ABusyStationHoldsNothingUp) {
    desk::TcpLine line(Here(), clock);
    Converse([&] { ASSERT_TRUE(line.PortOpen(true)); });
    QTcpSocket* peer = Accepted();
    peer->setReadBufferSize(1);
    line.Output(std::string(20'000'000, 'x'));
    QTest::qWait(50);
    EXPECT_GT(line.OutBufferCount(), 0U);
    Say(peer, std::string(20'000'000, 'y'));
    QTest::qWait(50);
    EXPECT_LE(line.InBufferCount(), 1'000'000U);
    EXPECT_GT(line.Input().size(), 0U);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !line.Input().empty(); })) << "and goes on when it was read";
}

TEST_F(TcpLineTest, AStationThatClosesEndsTheConversationWithWhatCameBefore) {
    desk::TcpLine line(Here(), clock);
    protocols::FieldLine field(line, clock);
    const std::string reason = HereText() + ": closed by the station";
    const auto lease = field.TakeIfFree();
    Converse([&] {
        ASSERT_TRUE(lease->PortOpen(true)) << lease->LastError();
        QTcpSocket* peer = Accepted();
        Say(peer, "half a rep");
        peer->close();
        clock.WaitMs(500, [&] { return lease->Ended(); });
        EXPECT_FALSE(lease->Ended()) << "before what came was read";
        EXPECT_EQ(lease->Input(), "half a rep");
        EXPECT_FALSE(lease->PortOpen());
        clock.WaitMs(5000, [&] { return lease->Ended(); });
    });
    EXPECT_TRUE(lease->Lost());
    EXPECT_EQ(lease->Reason(), reason);
}

TEST_F(TcpLineTest, ACloseBetweenTwoExchangesIsNoticedAtOnceAndTheLineOpensAgain) {
    desk::TcpLine line(Here(), clock);
    for (const bool resets : {false, true}) {
        SCOPED_TRACE(resets);
        std::string lost;
        line.WhenLost([&](const std::string& reason) { lost = reason; });
        Converse([&] { ASSERT_TRUE(line.PortOpen(true)) << line.LastError(); });
        QTcpSocket* peer = Accepted();
        if (resets) {
            line.Output("unread");  // a close over unread bytes resets the connection
            QTest::qSleep(20);
        }
        peer->abort();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !lost.empty(); }, 2000));
        EXPECT_EQ(lost, HereText() + ": closed by the station");
        EXPECT_FALSE(line.PortOpen());
    }
}

}  // namespace
