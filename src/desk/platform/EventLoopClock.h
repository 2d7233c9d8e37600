#pragma once

#include <QTimer>
#include <chrono>

#include "core/Clock.h"

namespace desk {

// The machine's clock. A wait leaves the event loop to windows, timers and lines; a wait outside of a conversation
// would hold it up, and throws std::logic_error.
class EventLoopClock : public core::Clock {
  public:
    EventLoopClock();

    core::DateTime Now() const override;
    std::uint32_t Milliseconds() const override;

  protected:
    void Arm(std::uint32_t withinMs) override;
    void Turn(std::uint32_t atMostMs) override;

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    QTimer timer_;  // of the conversation that goes on next
};

}  // namespace desk
