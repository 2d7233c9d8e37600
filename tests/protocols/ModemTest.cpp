#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fieldsim/HayesModem.h"
#include "protocols/FieldTalk.h"
#include "protocols/line/Modem.h"
#include "support/OddDevices.h"

using namespace protocols;
using testing::Contains;
using testing::ElementsAre;

namespace {

constexpr const char* ok = "\r\nOK\r\n";
constexpr const char* dialCommand = "atx3dt0265-12\r";
constexpr const char* noDialtone = "No Dialtone/Line Engaged/Remote Modem not Responding";

struct ModemTest : testing::Test, support::ScriptedTalk {
    int attemptcount = 0;

    void SetUp() override { line.PortOpen(true); }
};

// A line that takes its time for each byte, and loses at its closing what is not sent yet.
struct SlowLine final : support::ScriptedLine {
    explicit SlowLine(fieldsim::VirtualClock& clock) : clock_(clock) {}

    std::uint64_t msPerByte = 33;  // 300 baud
    std::size_t lost = 0;

    std::size_t OutBufferCount() override { return sentAt_ > clock_.Elapsed() ? 1 : 0; }  // or more
    void Output(const std::string& bytes) override {
        sentAt_ = std::max(sentAt_, clock_.Elapsed()) + bytes.size() * msPerByte;
        ScriptedLine::Output(bytes);
    }
    bool PortOpen() const override { return ScriptedLine::PortOpen(); }
    bool PortOpen(bool open) override {
        lost += OutBufferCount();
        sentAt_ = 0;
        return ScriptedLine::PortOpen(open);
    }

  private:
    fieldsim::VirtualClock& clock_;
    std::uint64_t sentAt_ = 0;
};

}  // namespace

TEST_F(ModemTest, ConnectsAtTheFirstDial) {
    line.replies = {ok, "\r\nCONNECT 9600\r\n"};
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::Connected);
    EXPECT_THAT(line.sent, ElementsAre("at\r", dialCommand));
    EXPECT_EQ(attemptcount, 1);
    EXPECT_THAT(desk.feedback.status,
                ElementsAre("Redial Count:0", "Dialing 0265-12", "Response From Modem:\r\nCONNECT 9600\r\n",
                            "connected to Location "));
    EXPECT_EQ(desk.clock.Elapsed(), 1000U + 1000 + 50 + 1000 + 1000);
    EXPECT_TRUE(line.PortOpen());
    EXPECT_EQ(desk.RtuErr(), "");
}

TEST_F(ModemTest, ASilentModemIsNotDialled) {
    for (const char* answer : {"", "at\r\r\nERROR\r\n"}) {
        line.PortOpen(true);
        line.sent.clear();
        line.replies = {answer};
        EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::NoModem);
        EXPECT_THAT(line.sent, ElementsAre("at\r"));
        EXPECT_FALSE(line.PortOpen());
    }
    EXPECT_EQ(Errors(), std::vector<std::string>(2, "Check if Modem is plugged-in and power is on[7]"));
}

TEST_F(ModemTest, AFailedDialIsHungUpAndDialledAgain) {
    line.replies = {ok, "NO CARRIER", "", "", "CONNECT"};
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::Connected);
    EXPECT_THAT(line.sent, ElementsAre("at\r", dialCommand, "+++", "ath\r", dialCommand));
    EXPECT_EQ(line.opened, 2);
    EXPECT_THAT(desk.feedback.status, Contains("Redial Count:1"));
    // The first dial with its hang-up and pause, then the second.
    EXPECT_EQ(desk.clock.Elapsed(), 1000U + (1000 + 50 + 2000) + 1500 + 1000 + (1000 + 50 + 2000));

    line.sent.clear();
    line.replies = {ok, "NO CARRIER"};
    desk.clock.After(3000, [this] { line.canOpen = false; });
    EXPECT_EQ(Dial(talk, attemptcount = 0), DialOutcome::NoPort);
    EXPECT_THAT(Errors(), ElementsAre("No such device[7]"));
}

// Each failure as a modem words it, from a dial count that the scheduler may have begun.
TEST_F(ModemTest, TheThirdFailureEndsItWhoeverCounted) {
    const std::pair<int, std::vector<std::string>> cases[] = {
        {0, {"NO ANSWER", "ERROR", "NO CARRIER"}},
        {0, {"BUSY", "NO DIALTONE", "NO DIAL TONE"}},
        {2, {"\r\nCONNECT\r\nNO CARRIER\r\n"}},  // both in one reply is a failure
        {1, {"ERROR", "ERROR"}},
    };
    for (const DialOptions& options : {scheduledDial, onlineDial}) {
        for (const auto& [counted, results] : cases) {
            std::filesystem::remove(desk.shared.rtuErrPath);
            desk.feedback = {};
            line.PortOpen(true);
            line.sent.clear();
            line.replies = {ok};
            for (const std::string& result : results) {
                line.replies.insert(line.replies.end(), {result, "", ""});
            }
            attemptcount = counted;
            EXPECT_EQ(Dial(talk, attemptcount, options), DialOutcome::NotReached);
            EXPECT_EQ(attemptcount, 3);
            EXPECT_EQ(line.sent.size(), 1 + 3 * results.size());
            EXPECT_EQ(line.sent.back(), "ath\r");
            EXPECT_FALSE(line.PortOpen());
            // An operator is told in a box; a scheduled run in its log and its status.
            EXPECT_EQ(desk.feedback.boxes, std::vector<std::string>(options.unattended ? 0 : 1, noDialtone));
            EXPECT_EQ(Errors(), std::vector<std::string>(options.unattended ? 1 : 0, std::string(noDialtone) + "[7]"));
            EXPECT_EQ(desk.feedback.status.back() == noDialtone, options.unattended);
        }
    }
}

// A scheduled run goes on without a result, and fails later if nobody answers. An operator waits for one.
TEST_F(ModemTest, ADialWithoutAResult) {
    line.replies = {ok, "RINGING"};
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::Connected);
    EXPECT_EQ(desk.clock.Elapsed(), 1000U + 1000 + 30000 + 2000);
    EXPECT_THAT(desk.feedback.status,
                ElementsAre("Redial Count:0", "Dialing 0265-12", "TimeOut!!!! ", "connected to Location "));

    line.replies = {ok, "", "CONNECT 9600/V34"};
    desk.clock.After(95000, [this] { line.Output("x"); });
    EXPECT_EQ(Dial(talk, attemptcount, onlineDial), DialOutcome::Connected);
    EXPECT_EQ(desk.feedback.status.back(), "Connected to Location ");

    line.sent.clear();
    line.replies = {ok, "\r\nRINGING\r\n"};
    EXPECT_EQ(Dial(talk, attemptcount = 0, onlineDial), DialOutcome::NotReached);
    EXPECT_THAT(line.sent, ElementsAre("at\r", dialCommand, "+++", "ath\r"));
    EXPECT_THAT(desk.feedback.boxes, ElementsAre("The modem gave no result within 120 s"));
    EXPECT_FALSE(line.PortOpen());
}

TEST_F(ModemTest, AConversationToldToEndStopsAtOnceAndCanStillHangUp) {
    const std::pair<std::uint32_t, std::size_t> cases[] = {{500, 1}, {1500, 1}, {2500, 2}, {6000, 4}};
    for (const auto& [endMs, sent] : cases) {  // at the check, before the dial, at its result, at the redial
        support::ScriptedTalk other;
        other.line.PortOpen(true);
        other.line.replies = {ok, "NO CARRIER"};
        other.desk.clock.After(endMs, [&other = other] { other.field.EndConversation("Program ends"); });
        EXPECT_EQ(Dial(other.talk, attemptcount), endMs == 500 ? DialOutcome::EndedEarly : DialOutcome::Ended);
        EXPECT_EQ(other.desk.clock.Elapsed(), endMs);
        EXPECT_EQ(other.line.sent.size(), sent);
        EXPECT_EQ(other.desk.RtuErr(), "");
        if (other.line.PortOpen()) {
            HangUp(*other.talk.line, other.desk.clock, other.desk.feedback, disconnectGuardMs);
            EXPECT_EQ(other.desk.clock.Elapsed(), endMs + 2500);
            EXPECT_EQ(other.line.sent.back(), "ath\r");
        }
    }
}

// Not even inside the guard time: the command must not reach the new conversation's station.
TEST_F(ModemTest, NothingIsHungUpOnALineThatWasTakenAway) {
    std::shared_ptr<LineLease> other;
    desk.clock.After(500, [&] { other = field.TakeOver("The scheduler took the line"); });
    HangUp(*talk.line, desk.clock, desk.feedback, disconnectGuardMs);
    HangUp(*talk.line, desk.clock, desk.feedback, disconnectGuardMs);
    EXPECT_THAT(line.sent, ElementsAre("+++"));
    EXPECT_EQ(desk.clock.Elapsed(), 500U);
}

TEST(Modem, TheHangUpIsOnTheLineBeforeItsPortIsClosed) {
    support::FieldTalk<SlowLine> slow;
    slow.line.PortOpen(true);
    slow.line.replies = {ok, "BUSY", "", "", "BUSY", "", "", "BUSY"};
    int attemptcount = 0;
    EXPECT_EQ(Dial(slow.talk, attemptcount), DialOutcome::NotReached);
    EXPECT_EQ(slow.line.sent.size(), 10U);
    EXPECT_EQ(slow.line.lost, 0U);

    // One that takes nothing more, as when its modem stops it, is waited for only for a while.
    slow.line.PortOpen(true);
    slow.line.msPerByte = 1'000'000;
    const auto before = slow.desk.clock.Elapsed();
    HangUp(slow.line, slow.desk.clock, slow.desk.feedback, disconnectGuardMs);
    EXPECT_EQ(slow.desk.clock.Elapsed() - before, 2500U + 3000);
}

// With a modem that keeps guard times, and forgets the call when its port closes.
TEST(Modem, TalksToAHayesModem) {
    support::SimulatedTalk field;
    fieldsim::HayesModem modem;
    support::Silence station;
    modem.PhoneBook("0265-12", station);
    modem.Script({{"NO CARRIER", 20000}, {"NO ANSWER", 25000}, {"CONNECT 9600", 8000}});
    field.ports.Attach(1, modem);
    field.line.CommPort(1);
    ASSERT_TRUE(field.line.PortOpen(true));

    int attemptcount = 0;
    EXPECT_EQ(Dial(field.talk, attemptcount), DialOutcome::Connected);
    EXPECT_EQ(attemptcount, 3);
    EXPECT_EQ(modem.Dialled().size(), 3U);
    Exchange(field.talk, "a request");
    EXPECT_TRUE(modem.Connected());
    HangUp(*field.talk.line, field.desk.clock, field.desk.feedback, redialGuardMs);
    EXPECT_FALSE(modem.Connected());
}
