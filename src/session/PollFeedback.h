#pragma once

#include <string>
#include <vector>

#include "core/Feedback.h"

namespace session {

// What a session's conversation says, on its way to the screen. Of a poll the boxes are kept back: whether they are
// shown depends on how it ends.
class PollFeedback final : public core::Feedback {
  public:
    explicit PollFeedback(core::Feedback& view) : view_(view) {}

    void Status(const std::string& text) override { view_.Status(text); }
    void Box(const std::string& text) override {
        if (kept_ != nullptr) {
            kept_->push_back(text);
        } else {
            view_.Box(text);
        }
    }
    void Lamp(const std::string& lamp, const std::string& bytes) override { view_.Lamp(lamp, bytes); }

    // Does `poll` and gives the boxes that it would have shown.
    template <typename Poll>
    std::vector<std::string> KeepBoxes(const Poll& poll) {
        std::vector<std::string> kept;
        kept_ = &kept;
        try {
            poll();
        } catch (...) {
            kept_ = nullptr;
            throw;
        }
        kept_ = nullptr;
        return kept;
    }

  private:
    core::Feedback& view_;
    std::vector<std::string>* kept_ = nullptr;
};

}  // namespace session
