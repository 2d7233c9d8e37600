#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Feedback.h"
#include "protocols/line/Conversation.h"
#include "reading/BulkRead.h"
#include "session/LivePoll.h"
#include "session/LiveState.h"
#include "session/PollFeedback.h"
#include "session/WriteQueue.h"

namespace session {

// Another screen's work on the line of a session, with a conversation of its own there; null: the session ended before
// its turn.
using GuestWork = std::function<void(protocols::Conversation* talk)>;

// The call of a session: from the moment it has the line to the moment it gives it back. It is one conversation, which
// owns it and may outlive the session's screen.
class LiveCall {
  public:
    // Takes the station's line. Null: another conversation has it, or stations are being collected on it; the operator
    // was told. Throws as Session does.
    static std::shared_ptr<LiveCall> TakeLine(std::shared_ptr<LiveState> shown);
    // Begins the conversation.
    static void Start(std::shared_ptr<LiveCall> call);

    // Reads in a loop from now on.
    void GetData();
    // Ends it: what is on its way is cut off, a call is hung up. Returns at once.
    void End(const std::string& reason);
    // The same for the operator's Disconnect.
    void Disconnect();

    // Takes another stream of the station, at once or when the line has its turn.
    void ChooseStream(int streamno);
    int ChosenStream() const { return pendingStream_.value_or(shown_->streamno); }
    // See Session.
    bool Lend(core::Feedback& feedback, GuestWork work);

    // The line is still this call's.
    bool HoldsLine() const { return talk_.line->Held(); }
    WriteQueue& Writes() { return writes_; }
    const WriteQueue& Writes() const { return writes_; }
    // Has the conversation see to what was asked for.
    void Wake() { talk_.clock.Wake(); }
    const protocols::RequestCounts& Requests() const { return talk_.requests; }

  private:
    LiveCall(std::shared_ptr<LiveState> shown, std::shared_ptr<protocols::LineLease> lease);

    static void Converse(std::shared_ptr<LiveCall> call);
    void Attempt(void (LiveCall::*step)());
    void Work();
    bool BringUp();
    void Loop();
    void ServeRequests();
    void ServeStream();
    void ServeGuest();
    bool StreamsTurn() const { return pendingStream_ && !writes_.Unanswered(); }
    bool Survives(reading::ReadOutcome outcome);
    void ShowBoxes(std::vector<std::string> boxes, bool blip);
    void Store();
    void Rest(std::uint32_t begunMs);
    void TakeDown();
    void LineEnded();
    void DropRequests();
    std::string EndReason() const;
    void MarkSampled(bool sampled);
    void Fail(const std::string& reason);
    bool Over() const { return failed_ || talk_.Ended(); }

    std::shared_ptr<LiveState> shown_;
    PollFeedback feedback_;
    protocols::Conversation talk_;
    LivePoll poll_;
    WriteQueue writes_;
    bool failed_ = false;             // it cannot go on
    std::string endReason_;           // why; empty while the line says it
    bool called_ = false;             // there is a call to hang up
    bool wantsData_ = false;          // the operator wants values
    bool polled_ = false;             // the loop has begun
    bool marked_ = false;             // and the station's day is marked with it
    bool disconnectPressed_ = false;  // the operator ends it
    int failedPolls_ = 0;             // in a row
    int survived_ = 0;                // as many of them
    std::optional<int> pendingStream_;

    struct Guest {
        core::Feedback& feedback;
        GuestWork work;
    };
    std::optional<Guest> guest_;
    core::Feedback* lentTo_ = nullptr;  // the guest at work
};

}  // namespace session
