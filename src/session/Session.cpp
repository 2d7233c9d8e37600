#include "session/Session.h"

#include <stdexcept>
#include <utility>

#include "collection/Scheduler.h"
#include "core/Database.h"
#include "core/Text.h"
#include "protocols/Modem.h"
#include "session/LineUp.h"
#include "session/LivePoll.h"
#include "session/ServeWrite.h"
#include "session/Speaks.h"

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

Session::Session(const collection::Workplace& place, const collection::Scheduler& scheduler, SessionView& view,
                 std::int64_t locationID)
    : view_(view),
      place_{place.dbconn, place.shared, place.clock, view, place.logs, place.line, place.counters},
      scheduler_(scheduler),
      station_(StationOf(place.dbconn, locationID)),
      look_(LookOf(place.dbconn, locationID)) {
    LoadSet();
}

Session::~Session() = default;

bool Session::IsAga3() const {
    return station_.isCW ? station_.ModelText(streamno_) == "AGA3" : look_.aga3_7;
}

void Session::LoadSet() {
    set_.Load(place_.dbconn, station_.locationID, streamno_, Speaks(station_, "Modbus"));
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
    auto lease = scheduler_.Busy() ? nullptr : place_.line.TakeIfFree();
    if (lease == nullptr) {
        view_.Box(lineInUse);
        return false;
    }
    station_ = StationOf(place_.dbconn, station_.locationID);
    lease->WhenEnded([this] { LineEnded(); });
    talk_ = std::make_unique<protocols::Conversation>(protocols::Conversation{
        lease, place_.clock, view_, place_.logs, place_.counters, station_, place_.shared.currentuser, streamno_});
    talk_->modbus.rtu32bit = station_.rtuBitsMode;
    talk_->wanted = [this] { return !writing_ && (!pending_.empty() || timeRequest_ || pendingStream_ || guest_); };
    endReason_.clear();
    collstatus_ = true;
    polled_ = marked_ = disconnectPressed_ = called_ = false;
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
    while (collstatus_ && !talk_->Ended()) {
        ServeRequests();
        if (talk_->Ended()) {
            return;
        }
        const collection::ReadOutcome outcome = poll_->Read();
        if (talk_->Ended()) {
            return;
        }
        Refresh();
        Store();
        place_.clock.WaitMs(0);
        if (outcome == collection::ReadOutcome::Failed && !talk_->Ended()) {
            Fail("Remote Station not Responding");
        }
    }
}

void Session::Refresh() {
    // The alarm limits of the CW models stand elsewhere: their live values have no colours.
    if (!station_.isCW) {
        alarms_ = watch_.Judge(set_);
    }
    valuesAt_ = place_.clock.Now();
    view_.Refreshed();
}

// A disk that is full does not end the session: the values stand on the screen, and are stored with the next poll.
void Session::Store() {
    if (Speaks(station_, "Quantum")) {
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
    if (pendingStream_ && !talk_->Ended()) {
        ServeStream();
    }
    if (guest_ && !talk_->Ended()) {
        ServeGuest();
    }
}

void Session::ServeWrites() {
    writing_ = true;
    if (Speaks(station_, "Modbus")) {
        while (!pending_.empty() && !talk_->Ended()) {
            pending_write_request_mbus(*talk_, pending_.front());
            if (!talk_->Ended()) {
                pending_.erase(pending_.begin());
            }
        }
    } else if (pending_.size() == 1) {
        pending_write_request_bsap(*talk_, pending_.front());
    } else {
        pending_mul_write_request_bsap(*talk_, pending_);
    }
    // Cut off on its way: whoever ended the session finds it still in the list.
    if (!talk_->Ended()) {
        writing_ = false;
        pending_.clear();
        view_.Request("");
    }
}

void Session::ServeTime() {
    writing_ = true;
    const bool set = SetStationTime(*talk_, set_, *timeRequest_);
    writing_ = false;
    timeRequest_.reset();
    if (set) {
        place_.logs.WriteAudit(place_.logs.Stamp() + ": User " + talk_->currentuser + " set the time of RTU " +
                               station_.consumer + ".");
    }
    view_.Request("");
}

void Session::ServeStream() {
    streamno_ = *pendingStream_;
    pendingStream_.reset();
    talk_->streamno = streamno_;
    LoadSet();
    poll_->Prepare();
    view_.Drawn();
}

void Session::ChooseStream(int streamno) {
    if (streamno < 1 || streamno > station_.No_Stream || streamno == pendingStream_.value_or(streamno_)) {
        return;
    }
    pendingStream_ = streamno;
    if (state_ == State::Idle) {
        streamno_ = streamno;
        pendingStream_.reset();
        LoadSet();
        view_.Drawn();
    } else if (state_ == State::Connected) {
        ServeStream();
    }
}

// Requests -----------------------------------------------------------------------------------------------------------

WriteContext Session::Context() const {
    return {place_.dbconn, place_.logs, station_, streamno_, place_.shared.currentuser};
}

std::string Session::Check(const RowPlace& place, const std::string& text) const {
    return CheckWrite(Context(), set_, place, text).refusal;
}

std::string Session::AskWrite(const RowPlace& place, const std::string& text) {
    return AskMultipleWrite({{place, text}});
}

std::string Session::AskMultipleWrite(const std::vector<Entry>& entries) {
    if (!PollingActive() || WritePending()) {
        return WritePending() ? requestPending : "Not connected";
    }
    std::vector<WriteRequest> requests;
    for (const Entry& entry : entries) {
        const WriteCheck check = CheckWrite(Context(), set_, entry.place, entry.text);
        if (!check.request) {
            return check.refusal;
        }
        requests.push_back(*check.request);
    }
    return Enter(requests);
}

std::string Session::Enter(const std::vector<WriteRequest>& requests) {
    if (requests.empty()) {
        return {};
    }
    place_.dbconn.InTransaction([&] {
        for (const WriteRequest& request : requests) {
            EnterWrite(Context(), request);
        }
    });
    for (const WriteRequest& request : requests) {
        ParameterRow& row = set_.At(request.place);
        row.lastvalue = request.writeValue;
        row.pending = true;
    }
    pending_ = requests;
    view_.Request(requestPending);
    view_.Refreshed();
    return {};
}

void Session::AskTime() {
    if (PollingActive() && !timeRequest_) {
        timeRequest_ = place_.clock.Now();
        view_.Request(requestPending);
        view_.StateChanged();
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
        place_.line.EndConversation("The operator has disconnected");
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

// What was asked for and never went out is not sent any more, and to no other station: the map and the trail say so.
// Of what was cut off on its way nobody knows whether the station has it.
void Session::DropRequests(const std::string& reason) {
    const auto requests = std::exchange(pending_, {});
    const bool onItsWay = std::exchange(writing_, false);
    timeRequest_.reset();
    pendingStream_.reset();
    if (auto guest = std::exchange(guest_, std::nullopt)) {
        guest->work(nullptr);
    }
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const WriteRequest& request = requests[i];
        const bool sent = onItsWay && (i == 0 || !Speaks(station_, "Modbus"));
        core::Guarded(place_.logs, [&] {
            sent ? NoteCutOff(Context(), request, reason) : TakeBackWrite(Context(), request, reason);
        });
        ParameterRow& row = set_.At(request.place);
        row.lastvalue = sent ? row.lastvalue : request.oldValue;
        row.pending = sent;
        view_.Request((sent ? "Cut off while being sent: " : "Not sent: ") + request.Description + " (" + reason + ")");
    }
    if (!requests.empty()) {
        view_.Refreshed();
    }
}

void Session::MarkSampled(bool sampled) {
    if (std::exchange(marked_, true)) {
        return;
    }
    core::Guarded(place_.logs, [&] {
        place_.dbconn.Execute("update configData_master set sampledtoday =?, sampleddate =? where locationid=?",
                              {sampled, place_.clock.Now().day, station_.locationID});
    });
}

}  // namespace session
