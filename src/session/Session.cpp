#include "session/Session.h"

#include <stdexcept>
#include <utility>

#include "collection/Outcome.h"
#include "collection/Scheduler.h"
#include "core/Database.h"
#include "core/Settings.h"
#include "protocols/line/Modem.h"
#include "session/LineUp.h"
#include "session/LivePoll.h"
#include "stations/SampledMark.h"

namespace session {

namespace {

core::Station StationOf(core::Database& dbconn, std::int64_t locationID) {
    auto station = core::ReadOnlineStation(dbconn, locationID);
    if (!station) {
        throw std::runtime_error("This station is no longer in the register");
    }
    return *station;
}

StationLook LookOf(core::Database& dbconn, std::int64_t locationID) {
    const auto row = dbconn.First(
        "select aga3_7, aga8_fpv, Gross_Detail, drs from configdata_master where locationID = ?", {locationID});
    StationLook look;
    if (row) {
        look.aga3_7 = row->Bool("aga3_7");
        look.aga8_fpv = row->Bool("aga8_fpv");
        look.Gross_Detail = row->Bool("Gross_Detail");
        look.drs = static_cast<int>(row->Long("drs"));
    }
    return look;
}

}  // namespace

Session::Session(const reading::Workplace& place, const collection::Scheduler& scheduler, SessionView& view,
                 std::int64_t locationID)
    : view_(view),
      feedback_(view),
      place_(place.With(view)),
      scheduler_(scheduler),
      station_(StationOf(place.dbconn, locationID)),
      look_(LookOf(place.dbconn, locationID)) {
    TakeStream(streamno_);
}

Session::~Session() = default;

bool Session::IsAga3() const {
    return station_.isCW ? station_.ModelText(streamno_) == "AGA3" : look_.aga3_7;
}

void Session::TakeStream(int streamno) {
    set_.Load(place_.dbconn, station_.locationID, streamno, station_.protocol == core::Protocol::Modbus);
    streamno_ = streamno;
    watch_.Forget();
    alarms_.clear();
    valuesAt_.reset();
}

void Session::TurnTo(State state) {
    state_ = state;
    view_.StateChanged();
}

// A command whose waits turn the event loop. What it throws ends the session.
void Session::Run(void (Session::*command)()) {
    running_ = true;
    try {
        (this->*command)();
    } catch (const std::exception& failure) {
        place_.logs.WriteRtuErr(failure.what());
        Fail(failure.what());
    }
    running_ = false;
    if (!collstatus_ || talk_->Ended()) {
        Finish();
    }
}

void Session::Fail(const std::string& reason) {
    collstatus_ = false;
    if (endReason_.empty()) {
        endReason_ = reason;
    }
}

// Connecting ---------------------------------------------------------------------------------------------------------

void Session::Connect() {
    if (state_ == State::Idle && !running_ && TakeLine()) {
        Run(&Session::LineUp);
    }
}

// While stations are collected the line is theirs, also between two of them: a session that began inside that run
// would hold it up for as long as the operator stays.
bool Session::TakeLine() {
    auto lease = place_.lines.Of(station_).TakeIfFree();
    if (lease == nullptr) {
        view_.Box(lineInUse);
        return false;
    }
    station_ = StationOf(place_.dbconn, station_.locationID);
    // What an earlier connection read says nothing of this one: the program of the station, or its map, may be another.
    TakeStream(streamno_);
    if (station_.protocol == core::Protocol::Bsap) {
        set_.ForEach([](ParameterRow& row) { row.MSD = 0; });
    }
    lease->WhenEnded([this] { LineEnded(); });
    talk_ = std::make_unique<protocols::Conversation>(place_.With(feedback_).Begin(lease, station_));
    talk_->streamno = streamno_;
    talk_->wanted = [this] {
        const bool turns = pendingStream_ && sent_.empty() && !timeSent_;
        return !writing_ && (!pending_.empty() || timeRequest_ || turns || guest_);
    };
    endReason_.clear();
    collstatus_ = true;
    polled_ = marked_ = disconnectPressed_ = called_ = false;
    view_.Drawn();
    return true;
}

void Session::LineUp() {
    TurnTo(State::Connecting);
    view_.Progress(0, 0);
    const LineUpOutcome outcome = BringLineUp(*talk_);
    called_ = outcome.called;
    if (!outcome.up || talk_->Ended()) {
        Fail(outcome.failure);
        return;
    }
    poll_ =
        std::make_unique<LivePoll>(place_, *talk_, set_, [this](int done, int total) { view_.Progress(done, total); });
    TurnTo(State::Connected);
    view_.Status("Connected");
}

// Polling ------------------------------------------------------------------------------------------------------------

void Session::GetData() {
    if (state_ == State::Connected && !running_) {
        Run(&Session::Loop);
    }
}

void Session::Loop() {
    TurnTo(State::Polling);
    talk_->station.MB_CONFIG = StationOf(place_.dbconn, station_.locationID).MB_CONFIG;
    if (!poll_->Prepare()) {
        Fail("No Modbus Address Found");
        view_.Box(endReason_);
        return;
    }
    polled_ = true;
    failedPolls_ = 0;
    survived_ = core::ReadSetting(place_.dbconn, core::Setting::FailedPolls);
    while (collstatus_ && !talk_->Ended()) {
        ServeRequests();
        if (talk_->Ended()) {
            return;
        }
        const core::DateTime begun = place_.clock.Now();
        reading::ReadOutcome outcome = reading::ReadOutcome::Failed;
        const auto boxes = feedback_.KeepBoxes([&] { outcome = poll_->Read(); });
        if (talk_->Ended()) {
            return;
        }
        Refresh(outcome != reading::ReadOutcome::Failed);
        Store();
        const bool survives = Survives(outcome);
        ShowBoxes(boxes, survives && outcome == reading::ReadOutcome::Failed);
        Judge(outcome, begun);
        place_.clock.WaitMs(0);
        if (!survives && !talk_->Ended()) {
            Fail("Remote Station not Responding");
        }
    }
}

// One poll that fails is weather; the operator sees how many have.
bool Session::Survives(reading::ReadOutcome outcome) {
    if (outcome == reading::ReadOutcome::Whole && std::exchange(failedPolls_, 0) > 0) {
        view_.Request("");
    }
    if (outcome == reading::ReadOutcome::Failed && ++failedPolls_ <= survived_) {
        view_.Request("Failed polls in a row: " + std::to_string(failedPolls_) + ". The session ends at " +
                      std::to_string(survived_ + 1) + ".");
    }
    return failedPolls_ <= survived_;
}

// The last box of a failed poll says that it failed. While the session goes on, the count in the status says so, and
// no box stays behind.
void Session::ShowBoxes(std::vector<std::string> boxes, bool blip) {
    if (blip && !boxes.empty()) {
        boxes.pop_back();
    }
    for (const std::string& text : boxes) {
        view_.Box(text);
    }
}

void Session::Refresh(bool received) {
    // The alarm limits of the CW models stand elsewhere: their live values have no colours.
    if (!station_.isCW) {
        alarms_ = watch_.Judge(set_);
    }
    if (received) {
        valuesAt_ = place_.clock.Now();
    }
    view_.Refreshed();
}

// A disk that is full does not end the session: the values stand on the screen, and are stored with the next poll.
void Session::Store() {
    if (station_.protocol == core::Protocol::Quantum) {
        return;
    }
    view_.Storing(true);
    core::Guarded(place_.logs, [this] { poll_->Store(); });
    view_.Storing(false);
}

void Session::ServeRequests() {
    if (!pending_.empty()) {
        ServeWrites();
    }
    if (timeRequest_ && !talk_->Ended()) {
        ServeTime();
    }
    // A write and the clock have their answer first: it comes under the names of this stream.
    if (pendingStream_ && sent_.empty() && !timeSent_ && !talk_->Ended()) {
        ServeStream();
    }
    if (guest_ && !talk_->Ended()) {
        ServeGuest();
    }
}

// A stream that cannot be taken leaves the one in hand as it was.
void Session::ServeStream() {
    const int wanted = *std::exchange(pendingStream_, std::nullopt);
    const int before = streamno_;
    const ParameterSet set = set_;
    const auto alarms = alarms_;
    const auto valuesAt = valuesAt_;
    std::string failure;
    try {
        TakeStream(wanted);
        talk_->streamno = streamno_;
        failure = poll_->Prepare() ? "" : "No Modbus Address Found";
    } catch (const std::exception& thrown) {
        failure = thrown.what();
    }
    if (!failure.empty()) {
        streamno_ = talk_->streamno = before;
        set_ = set;
        alarms_ = alarms;
        valuesAt_ = valuesAt;
        poll_->Prepare();
        place_.logs.WriteRtuErr("Stream " + std::to_string(wanted) + ": " + failure);
        view_.Box("Stream " + std::to_string(wanted) + " cannot be shown: " + failure);
    }
    view_.Drawn();
}

void Session::ChooseStream(int streamno) {
    if (streamno < 1 || streamno > station_.No_Stream || streamno == pendingStream_.value_or(streamno_)) {
        return;
    }
    pendingStream_ = streamno;
    if (state_ == State::Idle) {
        pendingStream_.reset();
        TakeStream(streamno);
        view_.Drawn();
    } else if (state_ == State::Connected) {
        ServeStream();
    }
}

// The end ------------------------------------------------------------------------------------------------------------

void Session::Disconnect() {
    if (state_ == State::Idle || state_ == State::Disconnecting) {
        return;
    }
    disconnectPressed_ = true;
    core::Guarded(place_.logs, [this] {
        place_.logs.WriteAudit(place_.logs.Stamp() + ": User " + place_.shared.currentuser + " disconnected from RTU " +
                               station_.consumer + ".");
    });
    if (running_) {
        place_.lines.Of(station_).EndConversation("The operator has disconnected");
        TurnTo(State::Disconnecting);
    } else {
        Finish();
    }
}

// Called inside whatever ends the conversation, which goes on at once: nothing waits here.
void Session::LineEnded() {
    if (talk_->line->Held()) {
        if (!running_) {
            view_.FinishLater();
        }
        return;
    }
    Fail(talk_->line->Reason());
    DropRequests(endReason_);
    if (polled_) {
        MarkSampled(false);
    }
    view_.Status(endReason_);
    if (lentTo_ != nullptr) {
        lentTo_->Status(endReason_);
    }
    if (running_) {
        TurnTo(State::Disconnecting);
    } else {
        Finish();
    }
}

void Session::Finish() {
    if (running_ || talk_ == nullptr) {
        return;
    }
    running_ = true;
    TurnTo(State::Disconnecting);
    const std::string reason = !endReason_.empty() ? endReason_ : talk_->line->Reason();
    DropRequests(reason.empty() ? "The operator has disconnected" : reason);
    if (polled_) {
        MarkSampled(disconnectPressed_);
    }
    TakeLineDown(*talk_, called_, polled_ ? protocols::disconnectGuardMs : protocols::redialGuardMs);
    requests_ = talk_->requests;
    poll_.reset();
    talk_.reset();
    running_ = false;
    collstatus_ = false;
    view_.Status("Disconnected");
    TurnTo(State::Idle);
    view_.Ended(disconnectPressed_ ? std::string() : reason, polled_);
}

void Session::MarkSampled(bool sampled) {
    if (std::exchange(marked_, true)) {
        return;
    }
    core::Guarded(place_.logs,
                  [&] { stations::MarkSampled(place_.dbconn, place_.clock.Now(), station_.locationID, sampled); });
}

}  // namespace session
