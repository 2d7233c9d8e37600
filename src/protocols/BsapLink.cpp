#include "protocols/BsapLink.h"

#include "core/Database.h"
#include "core/Text.h"
#include "protocols/Bsap.h"
#include "protocols/BsapReply.h"

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

class SignOnSteps {
  public:
    SignOnSteps(Conversation& talk, const SignOnOptions& options)
        : talk_(talk), options_(options), layout_(ReplyLayout(talk.station.isCW)) {}

    bool Poll() {
        Tell("Polling Rtu.....[", SignOnTexts::Polling);
        const std::string reply = Step("Polling RTU Msg", Messages(talk_).POLL_RTU(Address()), "Polling Reply from RTU",
                                       SignOnLog::PollReply);
        talk_.bsap.lastpollreply = reply;
        talk_.bsap.rtustatus = noStatus;
        if (reply.size() <= 1) {
            return false;
        }
        const std::string cut = reply.substr(1);
        talk_.bsap.rtustatus = ByteAtPosition(cut, layout_.pollStatus).value_or(noStatus);
        return talk_.bsap.rtustatus != noStatus && talk_.bsap.rtustatus <= 1 &&
               Replied(ByteAtPosition(cut, layout_.pollAddress).value_or(-1));
    }

    // What the station says to it is not examined: whether it was accepted shows in the version.
    void SignIn() {
        Tell("Sign in RTU.....[", SignOnTexts::All);
        Step("Sign On Message", Messages(talk_).SignOn_RTU(Address(), options_.password), "Sign On Reply",
             SignOnLog::All);
    }

    bool ReadVersion() {
        BsapState& state = talk_.bsap;
        const std::string frame =
            state.usepoll ? Messages(talk_).POLL_RTU(Address()) : Messages(talk_).GetVersion_RTU(Address());
        const std::string reply = Step("GetVersion Message", frame, "Vesrion response", SignOnLog::All);
        const std::size_t position = state.usepoll ? shortReply.loadVersion : layout_.loadVersion;
        // In a reply that ends before them these places hold its trailer, or nothing.
        const bool present = reply.size() >= position + 1 + replyTrailer;
        state.loadversion1 = present ? ByteAtPosition(reply, position).value_or(0) : 0;
        state.loadversion2 = present ? ByteAtPosition(reply, position + 1).value_or(0) : 0;
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
        std::string reply = Exchange(talk_, frame);
        if (options_.logs >= replyFrom) {
            LogBytes(talk_, replyTitle, reply);
        }
        return reply;
    }

    Conversation& talk_;
    const SignOnOptions& options_;
    const BsapReplyLayout& layout_;
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

bool Check_NeedPoll(Conversation& talk, const std::string& reply, std::string& pollReply) {
    constexpr std::size_t shortestAcknowledgement = 11;
    constexpr std::size_t shortestAnswer = 18;
    if (reply.size() < shortestAcknowledgement || reply.size() >= shortestAnswer) {
        return false;
    }
    pollReply = Exchange(talk, Messages(talk).POLL_RTU(talk.station.slaveaddress));
    return true;
}

void UP_ACK_Routing(Conversation& talk, bool logs) {
    const std::string reply = Exchange(talk, Messages(talk).POLL_RTU_1(talk.station.slaveaddress));
    if (logs) {
        LogBytes(talk, "Get List UP_ACK Response", reply);
    }
}

std::string ReadReply(Conversation& talk, const std::string& frame, const RequestLog& log) {
    std::string reply = Exchange(talk, frame);
    if (!log.title.empty()) {
        LogBytes(talk, log.title, reply);
    }
    std::string pollReply;
    if (Check_NeedPoll(talk, reply, pollReply)) {
        reply = pollReply;
        UP_ACK_Routing(talk, log.acknowledge);
    }
    return reply;
}

std::string RequestCycle(Conversation& talk, const std::string& frame, const RequestLog& log) {
    return UndoDoubling(ReadReply(talk, frame, log));
}

}  // namespace protocols
