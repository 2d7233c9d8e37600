#pragma once

#include <chrono>
#include <vector>

#include "core/Clock.h"

class QEventLoop;

namespace desk {

// The machine's clock. A wait is an event loop of its own, so windows, timers and the serial port go on meanwhile.
class EventLoopClock final : public core::Clock {
  public:
    core::DateTime Now() const override;
    std::uint32_t Milliseconds() const override;
    void Wake() override;

  protected:
    void Turn(std::uint32_t atMostMs) override;

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::vector<QEventLoop*> loops_;  // of the waits in hand, the innermost last
};

}  // namespace desk
