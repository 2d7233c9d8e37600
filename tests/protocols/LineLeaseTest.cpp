#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocols/FieldTalk.h"
#include "protocols/line/LineLease.h"

using namespace protocols;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct LineLeaseTest : testing::Test, support::ScriptedTalk {
    void SetUp() override { line.PortOpen(true); }
};

}  // namespace

TEST_F(LineLeaseTest, AfterATakeoverTheOldLeaseIsDeadInEveryOperation) {
    line.port = 3;
    line.settings = "9600,N,8,1";
    const auto run = field.TakeOver("The scheduler took the line");
    line.replies = {"for the run"};
    run->Output("request");

    LineLease& old = *talk.line;
    EXPECT_FALSE(old.PortOpen());
    EXPECT_FALSE(old.PortOpen(true));
    EXPECT_FALSE(old.PortOpen(false));
    old.CommPort(9);
    old.Settings("300,E,7,2");
    old.Output("write to the wrong station");
    old.ClearInBuffer();
    old.ClearOutBuffer();
    EXPECT_EQ(old.InBufferCount(), 0U);
    EXPECT_EQ(old.OutBufferCount(), 0U);
    EXPECT_EQ(old.Input(), "");
    EXPECT_EQ(old.LastError(), "The scheduler took the line");
    EXPECT_EQ(old.Reason(), "The scheduler took the line");

    EXPECT_EQ(line.port, 3);
    EXPECT_EQ(line.settings, "9600,N,8,1");
    EXPECT_THAT(line.sent, ElementsAre("request"));
    EXPECT_TRUE(run->PortOpen());
    EXPECT_EQ(run->Input(), "for the run");
    EXPECT_FALSE(run->Ended());
}

TEST_F(LineLeaseTest, AnExchangeCutShortTakesNoBytesOfTheNewConversation) {
    std::shared_ptr<LineLease> run;
    line.replies = {"", "answer to the run"};
    desk.clock.After(700, [&] {
        run = field.TakeOver("The scheduler took the line");
        run->Output("request of the run");
    });
    EXPECT_EQ(Exchange(talk, "request of the session"), "");
    EXPECT_EQ(desk.clock.Elapsed(), 700U);
    EXPECT_FALSE(talk.Wait(1000));  // nor is there another wait
    EXPECT_EQ(Exchange(talk, "another"), "");
    EXPECT_EQ(desk.clock.Elapsed(), 700U);
    EXPECT_THAT(line.sent, ElementsAre("request of the session", "request of the run"));
    EXPECT_EQ(run->Input(), "answer to the run");
}

TEST_F(LineLeaseTest, AConversationToldToEndKeepsTheLineForItsHangUp) {
    desk.clock.After(700, [&] { field.EndConversation("Program ends"); });
    EXPECT_FALSE(talk.Wait(60000));
    EXPECT_TRUE(talk.Ended());
    EXPECT_EQ(Exchange(talk, "request"), "");
    EXPECT_THAT(line.sent, IsEmpty());

    EXPECT_TRUE(talk.line->Held());
    talk.line->Output("ath\r");
    EXPECT_THAT(line.sent, ElementsAre("ath\r"));
    EXPECT_TRUE(talk.line->PortOpen(false));

    // The first reason is the one that counts.
    const auto run = field.TakeOver("The scheduler took the line");
    EXPECT_EQ(talk.line->Reason(), "Program ends");
    EXPECT_FALSE(talk.line->Held());
}

TEST_F(LineLeaseTest, ALineIsFreeWhenNobodyHoldsOrKeepsIt) {
    int released = 0;
    field.WhenReleased([&] { ++released; });
    {
        const protocols::KeptLine kept(talk.line);
        EXPECT_TRUE(field.Kept());
        field.EndConversation("Program ends");  // ends it all the same
        EXPECT_TRUE(talk.Ended());
        EXPECT_EQ(released, 0);
    }
    EXPECT_EQ(released, 1);
    EXPECT_FALSE(field.Kept());

    EXPECT_EQ(field.TakeIfFree(), nullptr);
    talk.line.reset();  // the conversation is over
    EXPECT_FALSE(field.InUse());
    const auto session = field.TakeIfFree();
    ASSERT_NE(session, nullptr);
    EXPECT_TRUE(session->Held());
    EXPECT_TRUE(field.InUse());
    EXPECT_EQ(field.TakeIfFree(), nullptr);
}
