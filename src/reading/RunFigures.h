#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>

#include "core/Clock.h"
#include "reading/RunState.h"

namespace reading {

// What a run keeps of its values for the day's LogParam row: their text and the figures that reports show.
class RunFigures {
  public:
    // One value of the station under its name. Names that no report needs are passed over.
    void Note(const std::string& description, double value);

    // All values as text, for each "#", name, "=", value and what follows it.
    std::string resultline;

    std::optional<double> CurrentDayFlow;    // "Volume Yesterday"
    std::optional<double> CurrentMonthFlow;  // "Volume This Month"
    std::optional<double> currentprs;        // "Flowing Pressure"

    // The figures of the day, and none from now on: for the next stream.
    DayFigures TakeDay() {
        return {std::exchange(CurrentDayFlow, {}), std::exchange(CurrentMonthFlow, {}), std::exchange(currentprs, {})};
    }

    // The station's own clock, when all six of its elements were read and make a real date and time.
    std::optional<core::DateTime> StationClock() const;

  private:
    std::array<std::optional<double>, 6> clockElements_;
};

}  // namespace reading
