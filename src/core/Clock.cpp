#include "core/Clock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

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

bool Clock::WaitMs(double milliseconds) {
    WaitMs(milliseconds, [] { return false; });
    return true;
}

bool Clock::WaitMs(double milliseconds, const std::function<bool()>& ended) {
    const auto delay = static_cast<std::uint32_t>(std::clamp(std::ceil(milliseconds), 0.0, 2147483647.0));
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

}  // namespace core
