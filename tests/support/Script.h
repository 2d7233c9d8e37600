#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace support {

// What an operator does while a command is still waiting: one step after the other, each as soon as the screen is as
// it waits for. Turned by a timer of the clock that the test runs on.
class Script {
  public:
    struct Step {
        std::string what;
        std::function<bool()> when;
        std::function<void()> then;
    };

    explicit Script(std::vector<Step> steps) : steps_(std::move(steps)) {}

    void Turn() {
        if (at_ < steps_.size() && !inStep_ && steps_[at_].when()) {
            inStep_ = true;
            const auto& then = steps_[at_].then;
            ++at_;
            then();
            inStep_ = false;
        }
    }

    // The step that was never reached; empty: all were made.
    std::string Missing() const { return at_ < steps_.size() ? steps_[at_].what : std::string(); }

  private:
    std::vector<Step> steps_;
    std::size_t at_ = 0;
    bool inStep_ = false;
};

}  // namespace support
