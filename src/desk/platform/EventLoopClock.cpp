#include "desk/platform/EventLoopClock.h"

#include <QDateTime>
#include <stdexcept>

namespace desk {

EventLoopClock::EventLoopClock() {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Resume(); });
}

core::DateTime EventLoopClock::Now() const {
    const QDateTime now = QDateTime::currentDateTime();
    const QDate date = now.date();
    const QTime time = now.time();
    return {date.year(), date.month(), date.day(), time.hour(), time.minute(), time.second()};
}

std::uint32_t EventLoopClock::Milliseconds() const {
    const auto passed = std::chrono::steady_clock::now() - start_;
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

void EventLoopClock::Arm(std::uint32_t withinMs) {
    if (!timer_.isActive() || timer_.remainingTime() > static_cast<int>(withinMs)) {
        timer_.start(static_cast<int>(withinMs));
    }
}

void EventLoopClock::Turn(std::uint32_t) {
    throw std::logic_error("A wait outside of a conversation");
}

}  // namespace desk
