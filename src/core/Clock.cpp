#include "core/Clock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <utility>

namespace core {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::weekday;
using std::chrono::year_month_day;

year_month_day CalendarDay(const DateTime& at) {
    return {std::chrono::year(at.year), std::chrono::month(static_cast<unsigned>(at.month)),
            std::chrono::day(static_cast<unsigned>(at.day))};
}

template <typename... Numbers>
std::string Print(const char* format, Numbers... numbers) {
    std::array<char, 80> text{};
    const int length = std::snprintf(text.data(), text.size(), format, numbers...);
    return {text.data(), std::min(static_cast<std::size_t>(length), text.size() - 1)};
}

}  // namespace

int DateTime::DayOfWeek() const {
    return static_cast<int>(weekday(sys_days(CalendarDay(*this))).c_encoding()) + 1;
}

bool DateTime::Valid() const {
    return year >= 1 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 && CalendarDay(*this).ok() && hour >= 0 &&
           hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
}

std::string DateText(const DateTime& at) {
    return Print("%02d/%02d/%04d", at.day, at.month, at.year);
}

std::string TimeText(const DateTime& at) {
    return Print("%02d:%02d:%02d", at.hour, at.minute, at.second);
}

std::string IsoText(const DateTime& at) {
    return Print("%04d-%02d-%02d %02d:%02d:%02d", at.year, at.month, at.day, at.hour, at.minute, at.second);
}

std::optional<DateTime> MomentOf(const std::string& isoText) {
    DateTime at;
    const int read = std::sscanf(isoText.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &at.year, &at.month, &at.day, &at.hour,
                                 &at.minute, &at.second);
    return read == 6 && at.Valid() ? std::optional(at) : std::nullopt;
}

DateTime FromSeconds(std::int64_t seconds) {
    const std::chrono::sys_seconds moment{std::chrono::seconds(seconds)};
    const auto midnight = std::chrono::floor<days>(moment);
    const year_month_day date(midnight);
    const std::chrono::hh_mm_ss time(moment - midnight);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()),
            static_cast<int>(time.seconds().count())};
}

std::int64_t ToSeconds(const DateTime& at) {
    const auto midnight = std::chrono::sys_seconds(sys_days(CalendarDay(at))).time_since_epoch().count();
    return midnight + at.hour * 3600 + at.minute * 60 + at.second;
}

void Clock::Start(std::function<void()> conversation) {
    if (InConversation()) {
        begun_.push_back(std::move(conversation));
        Arm(0);
    } else {
        fibers_.Start(std::move(conversation));
    }
}

bool Clock::WaitMs(double milliseconds) {
    WaitMs(milliseconds, [] { return false; });
    return true;
}

bool Clock::WaitMs(double milliseconds, const std::function<bool()>& ended) {
    const auto delay = static_cast<std::uint32_t>(std::clamp(std::ceil(milliseconds), 0.0, 2147483647.0));
    CheckMayWait();
    if (InConversation()) {
        if (delay == 0 || !ended()) {
            parked_.push_back({fibers_.Current(), Elapsed() + delay, ++parkings_, &ended});
            Arm(delay);
            fibers_.Park();
            if (thrown_) {
                std::rethrow_exception(thrown_);
            }
        }
        return !ended();
    }
    const std::uint32_t start = Milliseconds();
    if (delay == 0) {
        Turn(0);
    }
    // The difference of two readings is right on both sides of the counter's wrap.
    for (std::uint32_t passed = 0; passed < delay; passed = Milliseconds() - start) {
        if (ended()) {
            return false;
        }
        Turn(delay - passed);
    }
    return !ended();
}

void Clock::Wake() {
    woken_ = true;
    Arm(0);
}

void Clock::Resume() {
    const std::uint64_t now = Elapsed();
    const bool woken = std::exchange(woken_, false);
    std::vector<Parked> ready;
    std::erase_if(parked_, [&](const Parked& one) {
        const bool goesOn = one.due <= now || (woken && (*one.ended)());
        if (goesOn) {
            ready.push_back(one);
        }
        return goesOn;
    });
    std::sort(ready.begin(), ready.end(), [](const Parked& one, const Parked& other) {
        return std::pair(one.due, one.number) < std::pair(other.due, other.number);
    });
    for (const Parked& one : ready) {
        fibers_.Resume(*one.fiber);
    }
    for (auto& conversation : std::exchange(begun_, {})) {
        fibers_.Start(std::move(conversation));
    }
    ArmNext();
}

void Clock::ThrowIntoWaits(std::exception_ptr failure) {
    thrown_ = std::move(failure);
    begun_.clear();
    for (const Parked& one : std::exchange(parked_, {})) {
        try {
            fibers_.Resume(*one.fiber);
        } catch (...) {
            // What was thrown in, on its way out.
        }
    }
    thrown_ = nullptr;
}

void Clock::ArmNext() {
    if (woken_ || !begun_.empty()) {
        Arm(0);
    } else if (!parked_.empty()) {
        const auto next = std::min_element(parked_.begin(), parked_.end(),
                                           [](const Parked& one, const Parked& other) { return one.due < other.due; });
        const std::uint64_t now = Elapsed();
        Arm(next->due <= now ? 0 : static_cast<std::uint32_t>(next->due - now));
    }
}

// Milliseconds without wrap. A wait is shorter than the counter's period, so none is missed.
std::uint64_t Clock::Elapsed() {
    const std::uint32_t reading = Milliseconds();
    elapsed_ += std::exchange(hasReading_, true) ? reading - lastReading_ : 0;
    lastReading_ = reading;
    return elapsed_;
}

void Clock::CheckMayWait() const {
#ifndef NDEBUG
    if (const char* reason = forbidden_ ? forbidden_() : nullptr) {
        throw std::logic_error(std::string("A wait inside of ") + reason);
    }
    if (std::current_exception() != nullptr || std::uncaught_exceptions() > 0) {
        throw std::logic_error("A wait while an exception is handled");
    }
#endif
}

}  // namespace core
