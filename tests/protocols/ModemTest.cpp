#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fieldsim/HayesModem.h"
#include "protocols/FieldTalk.h"
#include "protocols/line/Modem.h"

using namespace protocols;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* ok = "\r\nOK\r\n";
constexpr const char* dialCommand = "atx3dt0265-12\r";

struct ModemTest : testing::Test, support::ScriptedTalk {
    int attemptcount = 0;

    void SetUp() override { line.PortOpen(true); }
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
    EXPECT_EQ(attemptcount, 0);
    EXPECT_EQ(Errors(), std::vector<std::string>(2, "Check if Modem is plugged-in and power is on[7]"));
    EXPECT_THAT(desk.feedback.boxes, IsEmpty());
}

TEST_F(ModemTest, AFailedDialIsHungUpAndDialledAgain) {
    line.replies = {ok, "NO CARRIER", "", "", "CONNECT"};
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::Connected);
    EXPECT_THAT(line.sent, ElementsAre("at\r", dialCommand, "+++", "ath\r", dialCommand));
    EXPECT_EQ(attemptcount, 2);
    EXPECT_EQ(line.opened, 2);
    EXPECT_THAT(desk.feedback.status, Contains("Redial Count:1"));
    // The first dial with its hang-up and pause, then the second.
    EXPECT_EQ(desk.clock.Elapsed(), 1000U + (1000 + 50 + 2000) + 1500 + 1000 + (1000 + 50 + 2000));
}

TEST_F(ModemTest, TheThirdFailureEndsItWhoeverCounted) {
    const struct {
        int counted;  // by the scheduler before
        std::vector<std::string> results;
    } cases[] = {{0, {"NO ANSWER", "ERROR", "NO CARRIER"}},
                 {2, {"\r\nCONNECT\r\nNO CARRIER\r\n"}},  // both in one reply is a failure
                 {1, {"ERROR", "ERROR"}}};
    for (const auto& [counted, results] : cases) {
        std::filesystem::remove(desk.shared.rtuErrPath);
        line.PortOpen(true);
        line.sent.clear();
        line.replies = {ok};
        for (const std::string& result : results) {
            line.replies.insert(line.replies.end(), {result, "", ""});
        }
        attemptcount = counted;
        EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::NotReached);
        EXPECT_EQ(attemptcount, 3);
        EXPECT_EQ(line.sent.size(), 1 + 3 * results.size());
        EXPECT_EQ(line.sent.back(), "ath\r");
        EXPECT_FALSE(line.PortOpen());
        EXPECT_THAT(Errors(), ElementsAre("No Dialtone/Line Engaged/Remote Modem not Responding[7]"));
    }
}

TEST_F(ModemTest, EachResultOfAModem) {
    const std::pair<const char*, DialOutcome> results[] = {
        {"CONNECT", DialOutcome::Connected},       {"CONNECT 9600/V34", DialOutcome::Connected},
        {"NO CARRIER", DialOutcome::NotReached},   {"NO ANSWER", DialOutcome::NotReached},
        {"BUSY", DialOutcome::NotReached},         {"NO DIALTONE", DialOutcome::NotReached},
        {"NO DIAL TONE", DialOutcome::NotReached}, {"ERROR", DialOutcome::NotReached},
    };
    for (const DialOptions& options : {scheduledDial, onlineDial}) {
        for (const auto& [result, outcome] : results) {
            SCOPED_TRACE(result);
            support::ScriptedTalk other;
            other.line.PortOpen(true);
            other.line.answer = [&result = result](const std::string& sent) {
                return sent == "at\r"        ? std::string(ok)
                       : sent == dialCommand ? "\r\n" + std::string(result) + "\r\n"
                                             : "";
            };
            int dials = 0;
            EXPECT_EQ(Dial(other.talk, dials, options), outcome);
            EXPECT_EQ(dials, outcome == DialOutcome::Connected ? 1 : 3);
            EXPECT_LT(other.desk.clock.Elapsed(), 30000U);
            // An operator is told in a box; a scheduled run in its log and its status.
            const std::string told = "No Dialtone/Line Engaged/Remote Modem not Responding";
            const bool fails = outcome != DialOutcome::Connected;
            EXPECT_EQ(other.desk.feedback.boxes, std::vector<std::string>(fails && !options.unattended ? 1 : 0, told));
            EXPECT_EQ(other.Errors(), std::vector<std::string>(fails && options.unattended ? 1 : 0, told + "[7]"));
            EXPECT_EQ(other.desk.feedback.status.back() == told, fails && options.unattended);
        }
    }
}

TEST_F(ModemTest, ADialWithoutAResultCountsAsConnectedAfterThirtySeconds) {
    line.replies = {ok, "RINGING"};
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::Connected);
    EXPECT_EQ(desk.clock.Elapsed(), 1000U + 1000 + 30000 + 2000);
    EXPECT_THAT(desk.feedback.status,
                ElementsAre("Redial Count:0", "Dialing 0265-12", "TimeOut!!!! ", "connected to Location "));
    EXPECT_EQ(attemptcount, 1);
}

TEST_F(ModemTest, APortThatCannotBeOpenedAgainIsAFailure) {
    line.replies = {ok, "NO CARRIER"};
    desk.clock.After(3000, [this] { line.canOpen = false; });
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::NoPort);
    EXPECT_FALSE(line.PortOpen());
    EXPECT_THAT(Errors(), ElementsAre("No such device[7]"));
}

TEST_F(ModemTest, AnOperatorsDialTakesTwoMinutesAtMostAndTellsInBoxes) {
    line.replies = {ok, ""};
    desk.clock.After(95000, [this] { line.Output("x"); });
    line.replies.emplace_back("CONNECT");
    EXPECT_EQ(Dial(talk, attemptcount, onlineDial), DialOutcome::Connected);
    EXPECT_EQ(desk.feedback.status.back(), "Connected to Location ");

    line.sent.clear();
    line.replies = {ok, "\r\nRINGING\r\n"};
    EXPECT_EQ(Dial(talk, attemptcount = 0, onlineDial), DialOutcome::NotReached);
    EXPECT_THAT(line.sent, ElementsAre("at\r", dialCommand, "+++", "ath\r"));
    EXPECT_THAT(desk.feedback.boxes, ElementsAre("The modem gave no result within 120 s"));
    EXPECT_FALSE(line.PortOpen());

    line.PortOpen(true);
    desk.feedback = {};
    line.replies = {""};
    EXPECT_EQ(Dial(talk, attemptcount, onlineDial), DialOutcome::NoModem);
    EXPECT_THAT(desk.feedback.boxes, ElementsAre("Check if Modem is plugged-in and power is on"));
    EXPECT_EQ(desk.RtuErr(), "");
}

TEST_F(ModemTest, AConversationToldToEndStopsAtOnceAndCanStillHangUp) {
    line.replies = {ok};
    desk.clock.After(12345, [this] { field.EndConversation("Program ends"); });
    EXPECT_EQ(Dial(talk, attemptcount), DialOutcome::Ended);
    EXPECT_EQ(desk.clock.Elapsed(), 12345U);
    EXPECT_EQ(desk.RtuErr(), "");

    HangUp(*talk.line, desk.clock, desk.feedback, disconnectGuardMs);
    EXPECT_EQ(desk.clock.Elapsed(), 12345U + 2500);
    EXPECT_THAT(line.sent, ElementsAre("at\r", dialCommand, "+++", "ath\r"));
    EXPECT_TRUE(line.PortOpen());
}

TEST_F(ModemTest, NothingIsDialledAfterTheEnd) {
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
    }
}

TEST_F(ModemTest, NothingIsHungUpOnALineThatWasTakenAway) {
    const auto run = field.TakeOver("The scheduler took the line");
    HangUp(*talk.line, desk.clock, desk.feedback, disconnectGuardMs);
    EXPECT_THAT(line.sent, IsEmpty());
    EXPECT_EQ(desk.clock.Elapsed(), 0U);

    // Also when that happens inside the guard time: the command must not reach the new conversation's station.
    std::shared_ptr<LineLease> other;
    desk.clock.After(500, [&] { other = field.TakeOver("The scheduler took the line"); });
    HangUp(*run, desk.clock, desk.feedback, disconnectGuardMs);
    EXPECT_THAT(line.sent, ElementsAre("+++"));
    EXPECT_EQ(desk.clock.Elapsed(), 500U);
}

// A line of so many milliseconds a byte. What is still being sent is lost when the port is closed.
class SlowLine final : public Line {
  public:
    explicit SlowLine(fieldsim::VirtualClock& clock) : clock_(clock) {}

    std::string onTheWire;

    bool PortOpen() const override { return open_; }
    bool PortOpen(bool open) override {
        Send();
        queued_.clear();
        open_ = open;
        return true;
    }
    void CommPort(int) override {}
    void Settings(const std::string&) override {}
    std::size_t InBufferCount() override {
        Send();
        return received_.size();
    }
    std::size_t OutBufferCount() override {
        Send();
        return queued_.size();
    }
    void ClearInBuffer() override { received_.clear(); }
    void ClearOutBuffer() override { queued_.clear(); }
    void Output(const std::string& bytes) override {
        Send();
        queued_ += bytes;
    }
    std::string Input() override {
        Send();
        return std::exchange(received_, {});
    }

  private:
    void Send() {
        constexpr std::uint64_t msPerByte = 33;  // 300 baud
        const auto ready = static_cast<std::size_t>((clock_.Elapsed() - sentAt_) / msPerByte);
        for (const char byte : queued_.substr(0, ready)) {
            onTheWire += byte;
            received_ += onTheWire.ends_with("at\r") ? ok : onTheWire.ends_with(dialCommand) ? "BUSY" : "";
        }
        queued_.erase(0, ready);
        sentAt_ = queued_.empty() ? clock_.Elapsed() : sentAt_ + ready * msPerByte;
    }

    fieldsim::VirtualClock& clock_;
    std::string queued_;
    std::string received_;
    std::uint64_t sentAt_ = 0;
    bool open_ = false;
};

TEST(Modem, TheHangUpIsOnTheLineBeforeItsPortIsClosed) {
    support::FieldTalk<SlowLine> slow;
    slow.line.PortOpen(true);
    int attemptcount = 0;
    EXPECT_EQ(Dial(slow.talk, attemptcount), DialOutcome::NotReached);
    const std::string dial = std::string(dialCommand) + "+++ath\r";
    EXPECT_EQ(slow.line.onTheWire, "at\r" + dial + dial + dial);

    // One that takes nothing more, as when its modem stops it, is waited for only for a while.
    struct StuckLine final : protocols::Line {
        bool PortOpen() const override { return true; }
        bool PortOpen(bool) override { return true; }
        void CommPort(int) override {}
        void Settings(const std::string&) override {}
        std::size_t InBufferCount() override { return 0; }
        std::size_t OutBufferCount() override { return 4; }
        void ClearInBuffer() override {}
        void ClearOutBuffer() override {}
        void Output(const std::string&) override {}
        std::string Input() override { return {}; }
    } stuck;
    const auto before = slow.desk.clock.Elapsed();
    HangUp(stuck, slow.desk.clock, slow.desk.feedback, disconnectGuardMs);
    EXPECT_EQ(slow.desk.clock.Elapsed() - before, 2500U + 3000);
}

// With a modem that keeps guard times, and forgets the call when its port closes.
TEST(Modem, TalksToAHayesModem) {
    support::SimulatedTalk field;
    fieldsim::HayesModem modem;
    struct Silent final : fieldsim::Device {
        std::vector<fieldsim::Answer> Receive(std::string_view, const fieldsim::Moment&) override { return {}; }
    } station;
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
