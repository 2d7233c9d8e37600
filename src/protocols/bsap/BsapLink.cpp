#include "protocols/bsap/BsapLink.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "core/Database.h"
#include "core/Text.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapAnswer.h"
#include "protocols/bsap/BsapConstants.h"
#include "protocols/bsap/BsapFrame.h"
#include "protocols/bsap/BsapReply.h"

namespace protocols {

namespace {

constexpr int noStatus = -1000;

Bsap Messages(Conversation& talk) {
    return {talk.counters, talk.bsap, talk.station.isCW};
}

void LogBytes(Conversation& talk, const std::string& title, const std::string& bytes) {
    talk.logs.WriteLogLine(title);
    talk.logs.WriteLogLine(core::HexLine(bytes));
}

// Any frame of the station is the reply to a message of which nothing but that is asked.
WholeReply WholeAnswer(const Conversation& talk, const std::string& frame) {
    const BsapAsked asked = BsapAsked::By(frame, talk.station.isCW, talk.station.slaveaddress);
    return {[asked](std::string_view received) { return !AnswersIn(received, asked).empty(); }};
}

// A request on its way to its answer.
class Question {
  public:
    Question(Conversation& talk, const std::string& frame)
        : talk_(talk), asked_(BsapAsked::By(frame, talk.station.isCW, talk.station.slaveaddress)) {
        // A poll that stands for a request is answered in the short layout.
        asked_.isCW |= asked_.sequence.empty();
        asked_.leading = talk.bsap.leading;
    }

    // Takes what came. As long as it is only another's, ours may be behind it.
    void Hear(const std::string& received) {
        constexpr int mostWaits = 4;
        Sift(received);
        for (int waits = 0; waits < mostWaits && onlyAnothers_ && !talk_.Ended(); ++waits) {
            const std::string later = Await(talk_, talk_.CommTimeout(), Whole());
            if (later.empty()) {
                return;
            }
            Sift(later);
        }
    }

    // The same of what came to a poll.
    void HearPolled(const std::string& received) {
        asked_.serials += LowByte(talk_.counters.bsapseq);
        Hear(received);
    }

    // What comes in the rest of a wait that an acknowledgement ended.
    void HearRest() {
        WholeReply whole = Whole();
        whole.tellsLate |= talk_.cautious == 0;  // a station that says no more in it has answered all the same
        const std::string later = Await(talk_, talk_.CommTimeout(), whole);
        if (!later.empty()) {
            Hear(later);
        }
    }

    // A message of the link is whole too: the answer is then polled for.
    WholeReply Whole() const {
        const auto isWhole = [this](std::string_view received) {
            BsapAsked asked = asked_;
            asked.serials += LowByte(talk_.counters.bsapseq);  // a poll that is on its way
            const std::vector<BsapAnswer> all = AnswersIn(received, asked);
            return std::any_of(all.begin(), all.end(), [&](const BsapAnswer& answer) {
                return answer.isLink || WhoseIs(answer, asked, talk_.counters, talk_.bsap.echoes) != Whose::Anothers;
            });
        };
        return {isWhole, 0, talk_.bsap.echoes};
    }

    // By what of it the need of a poll is told: the answer, else the acknowledgement; bytes without a frame as they
    // are.
    std::string First() const { return reply.answer ? reply.answer->text : first_; }
    bool IsToldToWait() const { return isToldToWait_; }
    bool MayStillCome() const { return isToldToWait_ || onlyAnothers_; }

    StationReply reply;

  private:
    void Sift(const std::string& received) {
        reply.received = received;
        isToldToWait_ = false;
        onlyAnothers_ = false;
        std::vector<BsapAnswer> ours;
        std::vector<BsapAnswer> notTold;
        const std::vector<BsapAnswer> all = AnswersIn(received, asked_);
        first_ = all.empty() ? received : std::string();
        for (const BsapAnswer& answer : all) {
            if (answer.isLink) {
                isToldToWait_ = true;
                first_ = answer.text;
                continue;
            }
            const Whose whose = WhoseIs(answer, asked_, talk_.counters, talk_.bsap.echoes);
            if (whose != Whose::Anothers) {
                (whose == Whose::Ours ? ours : notTold).push_back(answer);
            }
        }
        // Of two that do not tell, either may be the late answer to an earlier request.
        if (!ours.empty() || notTold.size() == 1) {
            reply.answer = ours.empty() ? notTold.front() : ours.front();
            reply.givesBack = !ours.empty();
        }
        reply.acknowledged = isToldToWait_;
        onlyAnothers_ = !all.empty() && !isToldToWait_ && ours.empty() && notTold.empty();
    }

    Conversation& talk_;
    BsapAsked asked_;
    std::string first_;
    bool isToldToWait_ = false;
    bool onlyAnothers_ = false;
};

class SignOnSteps {
  public:
    SignOnSteps(Conversation& talk, const SignOnOptions& options)
        : talk_(talk), options_(options), layout_(ReplyLayout(talk.station.isCW)) {}

    bool Poll() {
        Tell("Polling Rtu.....[", SignOnTexts::Polling);
        talk_.bsap.leading.reset();
        for (int sends = 1; sends <= mostSends; ++sends) {
            const std::string frame = Messages(talk_).POLL_RTU(Address());
            const std::string received = Step("Polling RTU Msg", frame, "Polling Reply from RTU", SignOnLog::PollReply);
            talk_.bsap.lastpollreply = received;
            talk_.bsap.rtustatus = noStatus;
            const auto answers = AnswersIn(received, BsapAsked::By(frame, talk_.station.isCW, Address()));
            if (const BsapAnswer* reply = PollReply(answers)) {
                givesSerialsBack_ = true;
                NoteSerials(frame, received);
                return Accept(*reply);
            }
            if (answers.empty()) {
                return false;
            }
            // The station still held an answer to a conversation that was cut off.
            UP_ACK_Routing(talk_, false);
        }
        return false;
    }

    // Whether it was accepted is not examined: that shows in the version.
    void SignIn() {
        Tell("Sign in RTU.....[", SignOnTexts::All);
        const std::string frame = Messages(talk_).SignOn_RTU(Address(), options_.password);
        NoteSerials(frame, Step("Sign On Message", frame, "Sign On Reply", SignOnLog::All));
    }

    bool ReadVersion() {
        BsapState& state = talk_.bsap;
        state.echoes = false;
        state.loadversion1 = 0;
        state.loadversion2 = 0;
        auto version = AskVersion();
        // A station that gave back the serials so far, and now other numbers: that may be a late answer to somebody
        // else. It counts when it comes again.
        if (version && !state.echoes && givesSerialsBack_) {
            const auto first = std::exchange(version, AskVersion());
            version = state.echoes || version == first ? version : std::nullopt;
        }
        if (!version) {
            return false;
        }
        std::tie(state.loadversion1, state.loadversion2) = *version;
        return state.loadversion1 != 0 || state.loadversion2 != 0;
    }

    void Report() {
        const std::string now = talk_.logs.Stamp();
        try {
            talk_.logs.WriteAudit(now + ": User " + talk_.currentuser + " connected to RTU " + talk_.station.consumer +
                                  ".");
        } catch (const core::DatabaseError& error) {
            // The station is there: its values are worth more than the line.
            talk_.logs.WriteRtuErr(error.what());
        }
        talk_.feedback.Status("Connected Since " + now);
    }

  private:
    int Address() const { return talk_.station.slaveaddress; }

    // Among several that of our station. Null: none, or answers to requests only.
    const BsapAnswer* PollReply(const std::vector<BsapAnswer>& answers) const {
        const BsapAnswer* reply = nullptr;
        for (const BsapAnswer& answer : answers) {
            const bool isOurs = answer.At(layout_.pollAddress + 1) == Address();
            if (answer.isLink && (reply == nullptr || isOurs)) {
                reply = &answer;
            }
        }
        return reply;
    }

    void NoteSerials(const std::string& frame, const std::string& received) {
        const BsapAsked asked = BsapAsked::By(frame, talk_.station.isCW, Address());
        const auto answers = AnswersIn(received, asked);
        givesSerialsBack_ &= std::any_of(answers.begin(), answers.end(), [&](const BsapAnswer& answer) {
            return asked.serials == std::string(1, static_cast<char>(answer.serial));
        });
    }

    std::optional<std::pair<int, int>> AskVersion() {
        BsapState& state = talk_.bsap;
        const std::string frame =
            state.usepoll ? Messages(talk_).POLL_RTU(Address()) : Messages(talk_).GetVersion_RTU(Address());
        const bool logs = options_.logs >= SignOnLog::All;
        if (logs) {
            LogBytes(talk_, "GetVersion Message", frame);
        }
        const StationReply reply = AskStation(talk_, frame, {logs ? "Vesrion response" : "", false});
        const std::size_t position = state.usepoll ? shortReply.loadVersion : layout_.loadVersion;
        const auto first = reply.answer ? reply.answer->At(position) : std::nullopt;
        const auto second = reply.answer ? reply.answer->At(position + 1) : std::nullopt;
        state.echoes = reply.givesBack;
        return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
    }

    // The positions of a poll reply count without its first byte.
    bool Accept(const BsapAnswer& reply) {
        talk_.bsap.rtustatus = reply.At(layout_.pollStatus + 1).value_or(noStatus);
        talk_.bsap.leading = reply.leading;
        return talk_.bsap.rtustatus != noStatus && talk_.bsap.rtustatus <= 1 &&
               Replied(reply.At(layout_.pollAddress + 1).value_or(-1));
    }

    // Behind a modem there is one station, and a CW may answer there under another address.
    bool Replied(int address) const {
        const bool dialledCW = talk_.station.isCW && !talk_.station.phoneno.empty();
        return dialledCW || address == Address();
    }

    void Tell(const std::string& text, SignOnTexts from) {
        if (options_.texts >= from) {
            talk_.feedback.Status(text + talk_.station.consumer + "]");
        }
    }

    std::string Step(const std::string& title, const std::string& frame, const std::string& replyTitle,
                     SignOnLog replyFrom) {
        if (options_.logs >= SignOnLog::All) {
            LogBytes(talk_, title, frame);
        }
        std::string reply = ExchangeBsap(talk_, frame);
        if (options_.logs >= replyFrom) {
            LogBytes(talk_, replyTitle, reply);
        }
        return reply;
    }

    Conversation& talk_;
    const SignOnOptions& options_;
    const BsapReplyLayout& layout_;
    bool givesSerialsBack_ = false;
};

}  // namespace

bool SignOn(Conversation& talk, const SignOnOptions& options) {
    SignOnSteps steps(talk, options);
    if (!steps.Poll()) {
        return false;
    }
    steps.SignIn();
    if (!steps.ReadVersion()) {
        return false;
    }
    steps.Report();
    return true;
}

bool SignOnInTries(Conversation& talk, const SignOnOptions& options, int most) {
    for (int tries = 0; tries < most && !talk.Ended(); ++tries) {
        const bool signedOn = SignOn(talk, options);
        talk.requests.Note(signedOn);
        if (signedOn) {
            return true;
        }
    }
    return false;
}

std::string ExchangeBsap(Conversation& talk, const std::string& frame) {
    return Exchange(talk, frame, WholeAnswer(talk, frame));
}

bool Check_NeedPoll(Conversation& talk, const std::string& reply, std::string& pollReply, const WholeReply& whole) {
    if (reply.size() < bsap::shortestAcknowledgement || reply.size() > bsap::longestAcknowledgement) {
        return false;
    }
    pollReply = Exchange(talk, Messages(talk).POLL_RTU(talk.station.slaveaddress), whole);
    return true;
}

void UP_ACK_Routing(Conversation& talk, bool logs) {
    const std::string frame = Messages(talk).POLL_RTU_1(talk.station.slaveaddress);
    WholeReply whole = WholeAnswer(talk, frame);
    whole.tellsLate = true;  // nothing is made of what comes, and some stations say nothing
    const std::string reply = Exchange(talk, frame, whole);
    if (logs) {
        LogBytes(talk, "Get List UP_ACK Response", reply);
    }
}

StationReply AskStation(Conversation& talk, const std::string& frame, const RequestLog& log, int most) {
    Question question(talk, frame);
    const std::string received = Exchange(talk, frame, question.Whole());
    if (!log.title.empty()) {
        LogBytes(talk, log.title, received);
    }
    question.Hear(received);
    const std::string first = question.First();
    std::string pollReply;
    // In prompt pacing the first poll goes out before its time. A station that is not ready by then gets the same time
    // and as many polls as in stated pacing.
    bool isEarly = talk.station.pacing == core::Pacing::Prompt;
    while (!talk.Ended() && Check_NeedPoll(talk, first, pollReply, question.Whole())) {
        question.HearPolled(pollReply);
        if (talk.station.pacing == core::Pacing::Prompt && question.IsToldToWait() && !question.reply.answer) {
            question.HearRest();
        }
        const bool again = !question.reply.answer && question.MayStillCome() &&
                           (isEarly || question.reply.sends < most) && !talk.Wanted() && !talk.Ended();
        // Before the next poll an acknowledgement is not acknowledged: the station might drop what it is preparing.
        if (!again || !question.IsToldToWait()) {
            UP_ACK_Routing(talk, log.acknowledge);
        }
        if (!again) {
            break;
        }
        question.reply.sends += isEarly ? 0 : 1;
        isEarly = false;
    }
    return question.reply;
}

}  // namespace protocols
