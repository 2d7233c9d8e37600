#pragma once

#include <string>

#include "core/Feedback.h"

namespace session {

// How a session reaches its screen. Its status texts, boxes and lamps come by the same way.
class SessionView : public core::Feedback {
  public:
    virtual void StateChanged() = 0;
    // The line about the operator's request, lblreq; empty: nothing is pending.
    virtual void Request(const std::string& text) = 0;
    virtual void Progress(int done, int total) = 0;
    // The values of a poll go into the database, or have gone.
    virtual void Storing(bool storing) = 0;
    // Other rows stand in the set.
    virtual void Drawn() = 0;
    // The rows of the set have new values or marks.
    virtual void Refreshed() = 0;
    // The session is over, or its line was taken away. `reason` is empty when the operator ended it; `polled`: values
    // were read in it.
    virtual void Ended(const std::string& reason, bool polled) = 0;
};

// Passes all of it on, until the screen is gone.
class ViewRelay final : public SessionView {
  public:
    explicit ViewRelay(SessionView& screen) : screen_(&screen) {}
    void Detach() { screen_ = nullptr; }

    void Status(const std::string& text) override {
        Tell([&](SessionView& screen) { screen.Status(text); });
    }
    void Box(const std::string& text) override {
        Tell([&](SessionView& screen) { screen.Box(text); });
    }
    void Lamp(const std::string& lamp, const std::string& bytes) override {
        Tell([&](SessionView& screen) { screen.Lamp(lamp, bytes); });
    }
    void StateChanged() override {
        Tell([](SessionView& screen) { screen.StateChanged(); });
    }
    void Request(const std::string& text) override {
        Tell([&](SessionView& screen) { screen.Request(text); });
    }
    void Progress(int done, int total) override {
        Tell([&](SessionView& screen) { screen.Progress(done, total); });
    }
    void Storing(bool storing) override {
        Tell([&](SessionView& screen) { screen.Storing(storing); });
    }
    void Drawn() override {
        Tell([](SessionView& screen) { screen.Drawn(); });
    }
    void Refreshed() override {
        Tell([](SessionView& screen) { screen.Refreshed(); });
    }
    void Ended(const std::string& reason, bool polled) override {
        Tell([&](SessionView& screen) { screen.Ended(reason, polled); });
    }

  private:
    template <typename What>
    void Tell(const What& what) {
        if (screen_ != nullptr) {
            what(*screen_);
        }
    }

    SessionView* screen_;
};

}  // namespace session
