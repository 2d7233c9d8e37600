#include "session/LiveCall.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Settings.h"
#include "protocols/line/Modem.h"
#include "session/LineUp.h"
#include "stations/SampledMark.h"

namespace session {

namespace {

// A wait for the operator. Whatever ends it wakes the clock.
constexpr double idleMs = 3600000;

// A poll of a station that answers promptly takes at least so long: nobody reads faster, and the line has its rest.
constexpr double promptPollMs = 1000;

// A guest's texts go to its own screen. The bytes are also a matter of the session's, which shows the line.
class GuestFeedback final : public core::Feedback {
  public:
    GuestFeedback(core::Feedback& guest, core::Feedback& session) : guest_(guest), session_(session) {}

    void Status(const std::string& text) override { guest_.Status(text); }
    void Box(const std::string& text) override { guest_.Box(text); }
    void Lamp(const std::string& lamp, const std::string& bytes) override {
        guest_.Lamp(lamp, bytes);
        session_.Lamp(lamp, bytes);
    }

  private:
    core::Feedback& guest_;
    core::Feedback& session_;
};

}  // namespace

std::shared_ptr<LiveCall> LiveCall::TakeLine(std::shared_ptr<LiveState> shown) {
    shown->station = shown->ReadRecord();
    auto lease = shown->place.lines.Of(shown->station).TakeIfFree();
    if (lease == nullptr) {
        shown->view.Box(lineInUse);
        return nullptr;
    }
    // What an earlier call read says nothing of this one: the program of the station, or its map, may be another.
    shown->TakeStream(shown->streamno);
    if (shown->station.protocol == core::Protocol::Bsap) {
        shown->set.ForEach([](ParameterRow& row) { row.MSD = 0; });
    }
    shown->view.Drawn();
    return std::shared_ptr<LiveCall>(new LiveCall(std::move(shown), std::move(lease)));
}

LiveCall::LiveCall(std::shared_ptr<LiveState> shown, std::shared_ptr<protocols::LineLease> lease)
    : shown_(std::move(shown)),
      feedback_(shown_->view),
      talk_(shown_->place.With(feedback_).Begin(std::move(lease), shown_->station)),
      poll_(shown_->place, talk_, shown_->set, [this](int done, int total) { shown_->view.Progress(done, total); }),
      writes_(*shown_) {
    talk_.streamno = shown_->streamno;
    talk_.wanted = [this] { return !writes_.IsWriting() && (writes_.WantsLine() || StreamsTurn() || guest_); };
    talk_.line->WhenEnded([this] { LineEnded(); });
}

void LiveCall::Start(std::shared_ptr<LiveCall> call) {
    core::Clock& clock = call->talk_.clock;
    clock.Start([call = std::move(call)]() mutable { Converse(std::move(call)); });
}

void LiveCall::Converse(std::shared_ptr<LiveCall> call) {
    call->Attempt(&LiveCall::Work);
    call->Attempt(&LiveCall::TakeDown);
    const auto shown = call->shown_;
    const bool polled = call->polled_;
    const std::string reason = call->disconnectPressed_ ? std::string() : call->EndReason();
    shown->requests = call->talk_.requests;
    call.reset();  // gives the line back
    shown->view.Status("Disconnected");
    shown->TurnTo(State::Idle);
    shown->view.Ended(reason, polled);
}

// What a step throws ends the session.
void LiveCall::Attempt(void (LiveCall::*step)()) {
    try {
        (this->*step)();
    } catch (const std::exception& failure) {
        talk_.logs.WriteRtuErr(failure.what());
        Fail(failure.what());
    }
}

void LiveCall::Fail(const std::string& reason) {
    failed_ = true;
    if (endReason_.empty()) {
        endReason_ = reason;
    }
}

void LiveCall::Work() {
    if (!BringUp()) {
        return;
    }
    while (!Over() && !wantsData_) {
        if (guest_) {
            ServeGuest();
        } else if (pendingStream_) {
            ServeStream();
        } else {
            talk_.clock.WaitMs(idleMs, [this] { return wantsData_ || guest_ || pendingStream_ || talk_.Ended(); });
        }
    }
    if (!Over()) {
        Loop();
    }
}

bool LiveCall::BringUp() {
    shown_->TurnTo(State::Connecting);
    shown_->view.Progress(0, 0);
    const LineUpOutcome outcome = BringLineUp(talk_);
    called_ = outcome.called;
    if (!outcome.up || talk_.Ended()) {
        Fail(outcome.failure);
        return false;
    }
    shown_->TurnTo(State::Connected);
    shown_->view.Status("Connected");
    return true;
}

// Polling ------------------------------------------------------------------------------------------------------------

void LiveCall::GetData() {
    wantsData_ = true;
    Wake();
}

void LiveCall::Loop() {
    shown_->TurnTo(State::Polling);
    talk_.station.MB_CONFIG = shown_->ReadRecord().MB_CONFIG;
    if (!poll_.Prepare()) {
        Fail("No Modbus Address Found");
        shown_->view.Box(endReason_);
        return;
    }
    polled_ = true;
    survived_ = core::ReadSetting(shown_->place.dbconn, core::Setting::FailedPolls);
    while (!Over()) {
        ServeRequests();
        if (talk_.Ended()) {
            return;
        }
        const core::DateTime begun = talk_.clock.Now();
        const std::uint32_t begunMs = talk_.clock.Milliseconds();
        reading::ReadOutcome outcome = reading::ReadOutcome::Failed;
        const auto boxes = feedback_.KeepBoxes([&] { outcome = poll_.Read(); });
        if (talk_.Ended()) {
            return;
        }
        shown_->Refresh(outcome != reading::ReadOutcome::Failed);
        Store();
        const bool survives = Survives(outcome);
        ShowBoxes(boxes, survives && outcome == reading::ReadOutcome::Failed);
        writes_.Judge(outcome, begun);
        Rest(begunMs);
        if (!survives && !talk_.Ended()) {
            Fail("Remote Station not Responding");
        }
    }
}

// One turn of the event loop; in prompt pacing what the poll was shorter than it may be.
void LiveCall::Rest(std::uint32_t begunMs) {
    const double spent = talk_.clock.Milliseconds() - begunMs;
    const bool isPrompt = talk_.station.pacing == core::Pacing::Prompt;
    talk_.clock.WaitMs(isPrompt ? std::max(0.0, promptPollMs - spent) : 0,
                       [this] { return talk_.Ended() || talk_.Wanted(); });
}

// One poll that fails is weather; the operator sees how many have.
bool LiveCall::Survives(reading::ReadOutcome outcome) {
    if (outcome == reading::ReadOutcome::Whole && std::exchange(failedPolls_, 0) > 0) {
        shown_->view.Request("");
    }
    if (outcome == reading::ReadOutcome::Failed && ++failedPolls_ <= survived_) {
        shown_->view.Request("Failed polls in a row: " + std::to_string(failedPolls_) + ". The session ends at " +
                             std::to_string(survived_ + 1) + ".");
    }
    return failedPolls_ <= survived_;
}

// The last box of a failed poll says that it failed. While the session goes on, the count in the status says so, and
// no box stays behind.
void LiveCall::ShowBoxes(std::vector<std::string> boxes, bool blip) {
    if (blip && !boxes.empty()) {
        boxes.pop_back();
    }
    for (const std::string& text : boxes) {
        shown_->view.Box(text);
    }
}

// A disk that is full does not end the session: the values stand on the screen, and are stored with the next poll.
void LiveCall::Store() {
    if (talk_.station.protocol == core::Protocol::Quantum) {
        return;
    }
    shown_->view.Storing(true);
    core::Guarded(talk_.logs, [this] { poll_.Store(); });
    shown_->view.Storing(false);
}

// Between two reads --------------------------------------------------------------------------------------------------

void LiveCall::ServeRequests() {
    writes_.Serve(talk_);
    if (StreamsTurn() && !talk_.Ended()) {
        ServeStream();
    }
    if (guest_ && !talk_.Ended()) {
        ServeGuest();
    }
}

void LiveCall::ChooseStream(int streamno) {
    pendingStream_ = streamno;
    if (shown_->state == State::Connected && lentTo_ == nullptr) {
        ServeStream();
    } else {
        Wake();
    }
}

// A stream that cannot be taken leaves the one in hand as it was.
void LiveCall::ServeStream() {
    const int wanted = *std::exchange(pendingStream_, std::nullopt);
    const int before = shown_->streamno;
    const ParameterSet set = shown_->set;
    const auto alarms = shown_->alarms;
    const auto valuesAt = shown_->valuesAt;
    std::string failure;
    try {
        shown_->TakeStream(wanted);
        talk_.streamno = shown_->streamno;
        failure = poll_.Prepare() ? "" : "No Modbus Address Found";
    } catch (const std::exception& thrown) {
        failure = thrown.what();
    }
    if (!failure.empty()) {
        shown_->streamno = talk_.streamno = before;
        shown_->set = set;
        shown_->alarms = alarms;
        shown_->valuesAt = valuesAt;
        poll_.Prepare();
        talk_.logs.WriteRtuErr("Stream " + std::to_string(wanted) + ": " + failure);
        shown_->view.Box("Stream " + std::to_string(wanted) + " cannot be shown: " + failure);
    }
    shown_->view.Drawn();
}

bool LiveCall::Lend(core::Feedback& feedback, GuestWork work) {
    if (guest_ || lentTo_ != nullptr) {
        return false;
    }
    guest_.emplace(Guest{feedback, std::move(work)});
    Wake();
    return true;
}

// The guest has a conversation of its own on the session's line: what it sets there does not reach the session.
void LiveCall::ServeGuest() {
    Guest guest = *std::exchange(guest_, std::nullopt);
    GuestFeedback feedback(guest.feedback, shown_->view);
    protocols::Conversation talk = shown_->place.With(feedback).Begin(talk_.line, talk_.station);
    talk.currentuser = talk_.currentuser;
    talk.streamno = shown_->streamno;
    talk.modbus = talk_.modbus;
    talk.bsap = talk_.bsap;
    talk.requests = talk_.requests;
    lentTo_ = &guest.feedback;
    core::Guarded(talk_.logs, [&] { guest.work(&talk); });
    lentTo_ = nullptr;
    talk_.requests = talk.requests;
}

// The end ------------------------------------------------------------------------------------------------------------

void LiveCall::Disconnect() {
    disconnectPressed_ = true;
    LeaveAudit(talk_.logs, shown_->place.shared.currentuser, "disconnected from RTU " + talk_.station.consumer + ".");
    End("The operator has disconnected");
    shown_->TurnTo(State::Disconnecting);
}

void LiveCall::End(const std::string& reason) {
    if (HoldsLine() && !talk_.Ended()) {
        shown_->place.lines.Of(talk_.station).EndConversation(reason);
    }
}

// Called inside whatever ends the conversation, which goes on at once: nothing waits here. A line that was taken away
// is told at once; one that is still this call's is given back when the call comes to its end.
void LiveCall::LineEnded() {
    if (HoldsLine()) {
        return;
    }
    Fail(talk_.line->Reason());
    DropRequests();
    if (polled_) {
        MarkSampled(false);
    }
    shown_->view.Status(endReason_);
    if (lentTo_ != nullptr) {
        lentTo_->Status(endReason_);
    }
    shown_->TurnTo(State::Disconnecting);
}

std::string LiveCall::EndReason() const {
    return !endReason_.empty() ? endReason_ : talk_.line->Reason();
}

void LiveCall::DropRequests() {
    pendingStream_.reset();
    if (auto guest = std::exchange(guest_, std::nullopt)) {
        guest->work(nullptr);
    }
    writes_.Drop(EndReason());
}

void LiveCall::MarkSampled(bool sampled) {
    if (!std::exchange(marked_, true)) {
        core::Guarded(talk_.logs, [&] {
            stations::MarkSampled(shown_->place.dbconn, talk_.clock.Now(), talk_.station.locationID, sampled);
        });
    }
}

void LiveCall::TakeDown() {
    shown_->TurnTo(State::Disconnecting);
    DropRequests();
    if (polled_) {
        MarkSampled(disconnectPressed_);
    }
    TakeLineDown(talk_, called_, polled_ ? protocols::disconnectGuardMs : protocols::redialGuardMs);
}

}  // namespace session
