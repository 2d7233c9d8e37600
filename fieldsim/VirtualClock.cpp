#include "fieldsim/VirtualClock.h"

#include <algorithm>

namespace fieldsim {

core::DateTime VirtualClock::Now() const {
    return core::FromSeconds(startSeconds_ + static_cast<std::int64_t>(elapsed_ / 1000));
}

void VirtualClock::Every(std::uint32_t intervalMs, std::function<void()> due) {
    timers_.emplace(elapsed_ + intervalMs, Timer{intervalMs, std::move(due)});
}

void VirtualClock::After(std::uint32_t afterMs, std::function<void()> due) {
    timers_.emplace(elapsed_ + afterMs, Timer{0, std::move(due)});
}

void VirtualClock::Wake() {
    awake_ = true;
    Clock::Wake();
}

void VirtualClock::Arm(std::uint32_t withinMs) {
    const std::uint64_t at = elapsed_ + withinMs;
    if (armed_ && *armed_ <= at) {
        return;
    }
    armed_ = at;
    timers_.emplace(at, Timer{0, [this, at] {
                                  if (armed_ == at) {
                                      armed_.reset();
                                      Resume();
                                  }
                              }});
}

void VirtualClock::Finish() {
    while (Conversations() > 0 && !timers_.empty()) {
        const std::uint64_t next = timers_.begin()->first;
        Turn(next > elapsed_ ? static_cast<std::uint32_t>(next - elapsed_) : 0);
    }
}

void VirtualClock::Run(std::uint64_t milliseconds) {
    const std::uint64_t end = elapsed_ + milliseconds;
    while (elapsed_ < end) {
        Turn(static_cast<std::uint32_t>(std::min<std::uint64_t>(end - elapsed_, 1U << 30)));
    }
}

bool VirtualClock::RunUntil(const std::function<bool()>& holds, std::uint64_t milliseconds) {
    const std::uint64_t end = elapsed_ + milliseconds;
    while (!holds() && elapsed_ < end) {
        const std::uint64_t next = timers_.empty() ? end : std::clamp(timers_.begin()->first, elapsed_, end);
        Turn(static_cast<std::uint32_t>(std::min<std::uint64_t>(next - elapsed_, 1U << 30)));
    }
    return holds();
}

void VirtualClock::Turn(std::uint32_t atMostMs) {
    awake_ = false;
    const std::uint64_t end = elapsed_ + atMostMs;
    // A timer may wait itself and so move the time past `end`, or wake the wait in hand.
    while (!awake_ && elapsed_ <= end && !timers_.empty() && timers_.begin()->first <= end) {
        auto node = timers_.extract(timers_.begin());
        elapsed_ = std::max(elapsed_, node.key());
        if (node.mapped().intervalMs != 0) {
            timers_.emplace(node.key() + node.mapped().intervalMs, node.mapped());
        }
        node.mapped().due();
    }
    if (!awake_) {
        elapsed_ = std::max(elapsed_, end);
    }
}

}  // namespace fieldsim
