#include "desk/platform/EventLoopClock.h"

#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

namespace desk {

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

void EventLoopClock::Wake() {
    for (QEventLoop* loop : loops_) {
        loop->quit();
    }
}

void EventLoopClock::Turn(std::uint32_t atMostMs) {
    QEventLoop loop;
    loops_.push_back(&loop);
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(static_cast<int>(atMostMs));
    loop.exec();
    loops_.pop_back();
}

}  // namespace desk
