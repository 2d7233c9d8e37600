#pragma once

#include <exception>
#include <functional>
#include <map>
#include <optional>

#include "core/Clock.h"

namespace fieldsim {

// A clock on which a day of waits takes milliseconds. A wait outside of a conversation moves the time on, stopping at
// every timer on its way.
class VirtualClock final : public core::Clock {
  public:
    // `counter` is the first reading of the millisecond counter, so that its wrap can be put anywhere.
    explicit VirtualClock(const core::DateTime& start, std::uint32_t counter = 0)
        : startSeconds_(core::ToSeconds(start)), counter_(counter) {}

    core::DateTime Now() const override;
    std::uint32_t Milliseconds() const override { return counter_ + static_cast<std::uint32_t>(elapsed_); }
    void Wake() override;

    // Milliseconds since the start, without wrap.
    std::uint64_t Elapsed() const { return elapsed_; }

    // Calls `due` every `intervalMs`, for the first time one interval from now, also inside waits.
    void Every(std::uint32_t intervalMs, std::function<void()> due);
    // Calls `due` once, `afterMs` from now.
    void After(std::uint32_t afterMs, std::function<void()> due);

    // Somebody sets the clock, or summer time begins or ends: the time of day jumps, and nothing else.
    void Step(std::int64_t seconds) { startSeconds_ += seconds; }

    // The power is cut: every conversation ends where it waits, by an exception that nothing on its way catches.
    void EndWaits(std::exception_ptr cut) { ThrowIntoWaits(std::move(cut)); }

    // Runs until all conversations have ended, or nothing is left that could happen.
    void Finish();

    // Runs until that many milliseconds have passed.
    void Run(std::uint64_t milliseconds);
    // Runs until it holds, for that many milliseconds at most. Tells whether it does.
    bool RunUntil(const std::function<bool()>& holds, std::uint64_t milliseconds);
    // No conversation goes on by itself within half an hour: all are over, or wait for an operator.
    bool Quiet() const { return !armed_ || *armed_ >= elapsed_ + 1'800'000; }

  protected:
    void Arm(std::uint32_t withinMs) override;
    void Turn(std::uint32_t atMostMs) override;

  private:
    struct Timer {
        std::uint32_t intervalMs;  // 0: once
        std::function<void()> due;
    };

    std::int64_t startSeconds_;
    std::uint32_t counter_;
    std::uint64_t elapsed_ = 0;
    bool awake_ = false;
    std::optional<std::uint64_t> armed_;  // when conversations go on
    std::multimap<std::uint64_t, Timer> timers_;
};

}  // namespace fieldsim
