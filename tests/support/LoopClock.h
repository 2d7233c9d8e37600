#pragma once

#include <QEventLoop>

#include "desk/platform/EventLoopClock.h"

namespace support {

// The machine's clock for tests that talk to a station outside of a conversation: their waits turn the event loop.
class LoopClock final : public desk::EventLoopClock {
  public:
    void Wake() override {
        turning_.quit();
        EventLoopClock::Wake();
    }

  protected:
    void Turn(std::uint32_t atMostMs) override {
        QTimer::singleShot(std::chrono::milliseconds(atMostMs), Qt::PreciseTimer, &turning_, &QEventLoop::quit);
        turning_.exec();
    }

  private:
    QEventLoop turning_;
};

}  // namespace support
