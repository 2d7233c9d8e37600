// Conversations wait side by side on one thread.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "fieldsim/VirtualClock.h"

namespace {

struct ConversationsTest : testing::Test {
    fieldsim::VirtualClock clock{{2026, 3, 9, 8, 0, 0}, 4294967000U};  // the counter wraps after 296 ms
    std::vector<std::string> told;

    void Tell(const std::string& who) { told.push_back(who + " " + std::to_string(clock.Elapsed())); }
};

TEST_F(ConversationsTest, EachWaitsForItselfAlone) {
    for (const int step : {300, 200}) {
        clock.Start([this, step] {
            for (int i = 0; i < 2; ++i) {
                clock.WaitMs(step);
                Tell(std::to_string(step));
            }
        });
    }
    EXPECT_EQ(clock.Conversations(), 2U);
    clock.Run(1000);
    EXPECT_EQ(told, (std::vector<std::string>{"200 200", "300 300", "200 400", "300 600"}));
    EXPECT_EQ(clock.Conversations(), 0U);
}

TEST_F(ConversationsTest, AWakeEndsWhatIsToldToEndAndNothingElse) {
    bool lineTaken = false;
    clock.Start([&] {
        EXPECT_FALSE(clock.WaitMs(5000, [&] { return lineTaken; }));
        Tell("taken");
    });
    clock.Start([&] {
        EXPECT_TRUE(clock.WaitMs(700, [] { return false; }));
        Tell("other");
    });
    clock.After(100, [&] {
        lineTaken = true;
        clock.Wake();
        EXPECT_TRUE(told.empty()) << "nothing goes on below whoever takes the line";
    });
    clock.Run(6000);
    EXPECT_EQ(told, (std::vector<std::string>{"taken 100", "other 700"}));
}

TEST_F(ConversationsTest, OneThatIsBegunByAnotherBeginsWithTheNextTurn) {
    clock.Start([&] {
        clock.Start([&] { Tell("inner"); });
        Tell("outer");
    });
    EXPECT_EQ(clock.Conversations(), 1U);
    clock.Run(1);
    EXPECT_EQ(told, (std::vector<std::string>{"outer 0", "inner 0"}));
}

// A conversation that always has something to do leaves the others their turn, and time goes on.
TEST_F(ConversationsTest, AWaitOfNothingIsOneTurn) {
    bool ended = false;
    int turns = 0;
    clock.Start([&] {
        while (!ended && turns < 1000) {
            clock.WaitMs(0);
            ++turns;
        }
    });
    clock.Start([&] {
        clock.WaitMs(0);
        ended = true;
    });
    clock.Run(1);
    EXPECT_LE(turns, 2);
}

TEST_F(ConversationsTest, ExceptionsStayOnTheirOwnStack) {
    const auto fail = [&](const std::string& name, int ms) {
        try {
            clock.WaitMs(ms);
            throw std::runtime_error(name);
        } catch (const std::runtime_error& failure) {
            Tell(failure.what());
        }
        clock.WaitMs(ms);
        EXPECT_EQ(std::uncaught_exceptions(), 0);
        Tell(name);
    };
    clock.Start([&] { fail("a", 10); });
    clock.Start([&] { fail("b", 15); });
    try {
        throw std::logic_error("the thread's own");
    } catch (const std::logic_error&) {
        clock.Start([&] { fail("c", 12); });
        EXPECT_NE(std::current_exception(), nullptr);
    }
    clock.Run(100);
    EXPECT_EQ(told, (std::vector<std::string>{"a 10", "c 12", "b 15", "a 20", "c 24", "b 30"}));

    // What a conversation does not catch reaches whoever turns the loop.
    clock.Start([&] {
        clock.WaitMs(5);
        throw std::runtime_error("not caught");
    });
    EXPECT_THROW(clock.Run(10), std::runtime_error);
    EXPECT_EQ(clock.Conversations(), 0U);
}

#ifndef NDEBUG
TEST_F(ConversationsTest, NoWaitInsideOfATransactionOrACatchBlock) {
    const char* inside = nullptr;
    clock.ForbidWaits([&] { return inside; });
    clock.Start([&] {
        clock.WaitMs(1);
        inside = "a transaction";
        EXPECT_THROW(clock.WaitMs(1), std::logic_error);
        inside = nullptr;
        try {
            throw std::runtime_error("failed");
        } catch (const std::runtime_error&) {
            EXPECT_THROW(clock.WaitMs(1), std::logic_error);
        }
        Tell("done");
    });
    clock.Run(10);
    EXPECT_EQ(told, (std::vector<std::string>{"done 1"}));
}
#endif

}  // namespace
