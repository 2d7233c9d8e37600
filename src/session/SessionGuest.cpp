// Another screen at work on the line of a session.

#include <utility>

#include "session/Session.h"

namespace session {

namespace {

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

bool Session::Lend(core::Feedback& feedback, GuestWork work) {
    if (!HasLine() || guest_ || lentTo_ != nullptr) {
        return false;
    }
    guest_.emplace(Guest{feedback, std::move(work)});
    if (!running_) {
        Run(&Session::ServeGuest);
    }
    return true;
}

// The guest has a conversation of its own on the session's line: what it sets there does not reach the session.
void Session::ServeGuest() {
    Guest guest = *std::exchange(guest_, std::nullopt);
    GuestFeedback feedback(guest.feedback, view_);
    protocols::Conversation talk = place_.With(feedback).Begin(talk_->line, talk_->station);
    talk.currentuser = talk_->currentuser;
    talk.streamno = streamno_;
    talk.modbus = talk_->modbus;
    talk.bsap = talk_->bsap;
    talk.requests = talk_->requests;
    lentTo_ = &guest.feedback;
    try {
        guest.work(&talk);
    } catch (...) {
        lentTo_ = nullptr;
        throw;
    }
    lentTo_ = nullptr;
    talk_->requests = talk.requests;
}

}  // namespace session
