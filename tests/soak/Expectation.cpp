#include "soak/Expectation.h"

#include <algorithm>

namespace soak {

namespace {

constexpr std::int64_t secondsADay = 86400;

std::string DayText(std::int64_t seconds) {
    return core::IsoText(core::FromSeconds(seconds)).substr(0, 10);
}

// Whether the station's contract begins on the day of a moment.
bool HasContract(const demo::DemoStation& station, std::int64_t seconds) {
    const core::DateTime day = core::FromSeconds(seconds);
    if (station.duration == "Daily") {
        return true;
    }
    const int number = std::stoi(station.day);
    return station.duration == "Weekly"    ? day.DayOfWeek() == number
           : station.duration == "Monthly" ? day.day == number
                                           : false;
}

// The last contract hour up to a moment, within five weeks.
std::optional<std::int64_t> LastDue(const demo::DemoStation& station, std::int64_t now) {
    const std::int64_t hour =
        std::stoi(station.contracthour.substr(0, 2)) * 3600 + std::stoi(station.contracthour.substr(3, 2)) * 60;
    const std::int64_t midnight = now - now % secondsADay;
    for (int back = 0; back <= 35; ++back) {
        const std::int64_t due = midnight - back * secondsADay + hour;
        if (due <= now && HasContract(station, due)) {
            return due;
        }
    }
    return std::nullopt;
}

}  // namespace

std::int64_t LocalTime::At(std::uint64_t moment) const {
    std::int64_t seconds = core::ToSeconds(start_) + static_cast<std::int64_t>(moment / 1000);
    for (const ClockStep& step : *steps_) {
        seconds += step.at <= moment ? step.seconds : 0;
    }
    return seconds;
}

bool LocalTime::Steps(std::uint64_t from, std::uint64_t until) const {
    return std::any_of(steps_->begin(), steps_->end(),
                       [&](const ClockStep& step) { return from <= step.at && step.at <= until; });
}

std::vector<Running> RunningTimes(const std::vector<Span>& off) {
    std::vector<Running> running;
    std::uint64_t from = 0;
    for (const Span& span : off) {
        running.push_back({from, span.from});
        from = span.until;
    }
    running.push_back({from, days * dayMs});
    return running;
}

std::vector<Due> DuesOf(const demo::DemoStation& station, const Running& running, const LocalTime& local,
                        std::int64_t firstTick, std::vector<std::string>& served) {
    std::vector<Due> dues;
    for (std::uint64_t tick = running.from + minuteMs; tick < running.until; tick += minuteMs) {
        const std::int64_t now = local.At(tick);
        const auto due = LastDue(station, now);
        if (!due || *due < firstTick - firstTick % 60) {
            continue;
        }
        const std::string gasday = DayText(*due);
        if (std::find(served.begin(), served.end(), gasday) == served.end()) {
            served.push_back(gasday);
            dues.push_back({gasday, now - *due >= 60, tick});
        }
    }
    return dues;
}

}  // namespace soak
