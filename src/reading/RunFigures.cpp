#include "reading/RunFigures.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "core/Text.h"

namespace reading {

namespace {

// Year, month, day, hour, minute, second as the two families of stations name their clock.
constexpr std::array<std::string_view, 6> rtuClock = {"RTU Time - Year", "RTU Time - Month",  "RTU Time - Date",
                                                      "RTU Time - Hour", "RTU Time - Minute", "RTU Time - Second"};
constexpr std::array<std::string_view, 6> cwClock = {"System Time Year", "System Time Month",  "System Time Date",
                                                     "System Time Hour", "System Time Minute", "System Time Second"};

}  // namespace

void RunFigures::Note(const std::string& description, double value) {
    if (core::SameText(description, "Volume Yesterday")) {
        CurrentDayFlow = value;
    } else if (core::SameText(description, "Volume This Month")) {
        CurrentMonthFlow = value;
    } else if (core::SameText(description, "Flowing Pressure")) {
        currentprs = value;
    }
    for (std::size_t i = 0; i < clockElements_.size(); ++i) {
        if (core::SameText(description, rtuClock[i]) || core::SameText(description, cwClock[i])) {
            clockElements_[i] = value;
        }
    }
}

std::optional<core::DateTime> RunFigures::StationClock() const {
    std::array<int, 6> element{};
    for (std::size_t i = 0; i < element.size(); ++i) {
        const auto& read = clockElements_[i];
        if (!read || *read != std::floor(*read) || std::abs(*read) > 9999) {
            return std::nullopt;
        }
        element[i] = static_cast<int>(*read);
    }
    // Stations keep the year with two digits or with four.
    element[0] += element[0] < 100 ? 2000 : 0;
    const core::DateTime clock{element[0], element[1], element[2], element[3], element[4], element[5]};
    return clock.Valid() ? std::optional(clock) : std::nullopt;
}

}  // namespace reading
