#include "desk/core/Minutes.h"

#include <QDateTime>
#include <algorithm>

namespace desk {

namespace {

constexpr qint64 minute = 60000;
constexpr qint64 tolerance = 1000;  // of a timer that fires a little early

}  // namespace

qint64 NextTick(qint64 previous, qint64 now) {
    const qint64 next = previous + minute;
    if (next > now && next - now <= minute + tolerance) {
        return next;
    }
    const qint64 second = previous % minute;
    const qint64 sameSecond = now - now % minute + second;
    return sameSecond > now ? sameSecond : sameSecond + minute;
}

Minutes::Minutes(std::function<void()> tick) : tick_(std::move(tick)) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &Minutes::Elapsed);
}

void Minutes::Start() {
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    next_ = now + minute;
    Arm(now);
}

void Minutes::Arm(qint64 now) {
    // Looked at again from time to time, in case the clock is set meanwhile.
    timer_.start(static_cast<int>(std::clamp<qint64>(next_ - now, 1, minute + tolerance)));
}

void Minutes::Elapsed() {
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const bool due = now >= next_;
    if (due || next_ - now > minute + tolerance) {
        next_ = NextTick(next_, now);
    }
    // Armed before the tick: it may take longer than a minute, and the next one has to come inside it.
    Arm(now);
    if (due) {
        tick_();
    }
}

}  // namespace desk
