#include "desk/platform/Minutes.h"

#include <QDateTime>
#include <algorithm>

namespace desk {

namespace {

constexpr qint64 minute = 60000;
constexpr qint64 latestPhase = 58000;
constexpr qint64 look = 5000;  // how often the clock is looked at, in case it is set

}  // namespace

qint64 NextTick(qint64 phase, qint64 served, qint64 now) {
    qint64 next = now - now % minute + phase;
    while (next <= now || next / minute == served / minute) {
        next += minute;
    }
    return next;
}

qint64 PhaseOf(qint64 now) {
    return std::min(now % minute, latestPhase);
}

Minutes::Minutes(std::function<void()> tick) : tick_(std::move(tick)) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &Minutes::Elapsed);
}

void Minutes::Start() {
    served_ = QDateTime::currentMSecsSinceEpoch();
    phase_ = PhaseOf(served_);
    Arm(served_);
}

void Minutes::Arm(qint64 now) {
    next_ = NextTick(phase_, served_, now);
    timer_.start(static_cast<int>(std::min(next_ - now, look)));
}

void Minutes::Elapsed() {
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const bool due = now >= next_;
    if (due) {
        served_ = now;
    }
    // Armed before the tick: it may take longer than a minute, and the next one has to come inside it.
    Arm(now);
    if (due) {
        tick_();
    }
}

}  // namespace desk
