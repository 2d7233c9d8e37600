#include "session/Session.h"

#include <utility>

#include "core/MAIN_Module.h"

namespace session {

Session::Session(const reading::Workplace& place, SessionView& view, std::int64_t locationID)
    : shown_(std::make_shared<LiveState>(place, view, locationID)) {}

Session::~Session() {
    shown_->view.Detach();
    if (const auto call = call_.lock()) {
        call->End("The operator has left the station");
    }
}

bool Session::IsAga3() const {
    return shown_->station.isCW ? shown_->station.ModelText(shown_->streamno) == "AGA3" : shown_->look.aga3_7;
}

bool Session::IsOffLine() const {
    const auto call = call_.lock();
    return call == nullptr || !call->HoldsLine();
}

bool Session::WritePending() const {
    const auto call = call_.lock();
    return call != nullptr && call->Writes().WritePending();
}

bool Session::TimePending() const {
    const auto call = call_.lock();
    return call != nullptr && call->Writes().TimePending();
}

protocols::RequestCounts Session::Requests() const {
    const auto call = call_.lock();
    return call != nullptr ? call->Requests() : shown_->requests;
}

void Session::Connect() {
    if (shown_->state != State::Idle) {
        return;
    }
    if (auto call = LiveCall::TakeLine(shown_)) {
        call_ = call;
        LiveCall::Start(std::move(call));
    }
}

void Session::GetData() {
    const auto call = call_.lock();
    if (call != nullptr && shown_->state == State::Connected) {
        call->GetData();
    }
}

void Session::Disconnect() {
    const auto call = call_.lock();
    if (call != nullptr && shown_->state != State::Disconnecting) {
        call->Disconnect();
    }
}

void Session::ChooseStream(int streamno) {
    const auto call = call_.lock();
    const int chosen = call != nullptr ? call->ChosenStream() : shown_->streamno;
    if (streamno < 1 || streamno > shown_->station.No_Stream || streamno == chosen) {
        return;
    }
    if (call != nullptr) {
        call->ChooseStream(streamno);
    } else {
        shown_->TakeStream(streamno);
        shown_->view.Drawn();
    }
}

std::string Session::Check(const RowPlace& place, const std::string& text) const {
    return CheckWrite(shown_->Context(), shown_->set, place, text).refusal;
}

std::string Session::AskWrite(const RowPlace& place, const std::string& text) {
    return AskMultipleWrite({{place, text}});
}

std::string Session::AskMultipleWrite(const std::vector<Entry>& entries) {
    const auto call = call_.lock();
    if (call == nullptr || !PollingActive()) {
        return "Not connected";
    }
    if (call->Writes().WritePending()) {
        return requestPending;
    }
    const std::string refusal = call->Writes().Ask(entries);
    call->Wake();
    return refusal;
}

void Session::AskTime() {
    const auto call = call_.lock();
    if (call != nullptr && PollingActive() && !call->Writes().TimePending()) {
        call->Writes().AskTime();
        call->Wake();
    }
}

bool Session::Lend(core::Feedback& feedback, GuestWork work) {
    const auto call = call_.lock();
    return call != nullptr && HasLine() && call->Lend(feedback, std::move(work));
}

}  // namespace session
