#include <gtest/gtest.h>

#include "fieldsim/SimLine.h"

namespace fieldsim {
namespace {

// Answers every request with it, after a delay.
struct Echo final : Device {
    std::uint32_t delayMs = 100;
    int closed = 0;
    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override {
        return {{std::string(bytes) + "@" + std::to_string(now.milliseconds), delayMs}};
    }
    void LineClosed() override { ++closed; }
};

struct SimLineTest : testing::Test {
    VirtualClock clock{{2026, 3, 9, 8, 0, 0}};
    SimLine line{clock};
    Echo one;
    Echo two;

    void SetUp() override {
        line.Attach(1, one);
        line.Attach(2, two);
    }
    bool Open(int port) {
        line.CommPort(port);
        return line.PortOpen(true);
    }
};

TEST_F(SimLineTest, AnAnswerIsThereWhenItsTimeHasCome) {
    ASSERT_TRUE(Open(1));
    line.Output("ab");
    clock.WaitMs(99);
    EXPECT_EQ(line.InBufferCount(), 0U);
    clock.WaitMs(1);
    EXPECT_EQ(line.InBufferCount(), 4U);
    EXPECT_EQ(line.Input(), "ab@0");
    EXPECT_EQ(line.Input(), "");
    line.Output("c");
    clock.WaitMs(100);
    line.ClearInBuffer();
    EXPECT_EQ(line.Input(), "");
    EXPECT_EQ(line.BytesSent(), 3U);
    EXPECT_EQ(line.BytesRead(), 4U);
}

TEST_F(SimLineTest, ClosedAndRefusedPortsDoNothing) {
    line.Output("lost");
    EXPECT_EQ(line.BytesSent(), 0U);
    EXPECT_FALSE(Open(3));
    EXPECT_EQ(line.LastError(), "No such device");
    line.Refuse(2);
    EXPECT_FALSE(Open(2));
    EXPECT_FALSE(line.PortOpen());
    line.Refuse(2, false);
    EXPECT_TRUE(Open(2));
}

TEST_F(SimLineTest, ALateAnswerMeetsWhoeverReadsThePortThen) {
    one.delayMs = 5000;
    ASSERT_TRUE(Open(1));
    line.Output("late");
    line.PortOpen(false);
    EXPECT_EQ(one.closed, 1);
    ASSERT_TRUE(Open(2));
    clock.WaitMs(1000);
    EXPECT_EQ(line.Input(), "");
    line.PortOpen(false);
    ASSERT_TRUE(Open(1));
    clock.WaitMs(4000);
    EXPECT_EQ(line.Input(), "late@0");
    line.Output("gone");
    line.PortOpen(false);
    clock.WaitMs(6000);
    ASSERT_TRUE(Open(1));
    EXPECT_EQ(line.Input(), "");
}

}  // namespace
}  // namespace fieldsim
