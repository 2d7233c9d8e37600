#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/Clock.h"

namespace fieldsim {

class SignalList;

// The signals by which a master sets a station's clock: the six elements, and the logical signal that makes them the
// time when it is written on.
inline constexpr std::array<std::string_view, 6> kClockElements = {"Set Year", "Set Month",  "Set Date",
                                                                   "Set Hour", "Set Minute", "Set Second"};
inline constexpr std::string_view kSetClock = "Set Time & Date";

// Whether a signal of that name shows the time of its station.
bool ShowsClock(std::string_view description);

// A station's clock: the local time of the field, and once it was set, the time that it was set to, going on.
class StationClock {
  public:
    core::DateTime Says(const core::DateTime& local) const;
    // A clock that is wrong from the start.
    void GoAhead(std::int64_t seconds) { aheadSeconds_ = seconds; }
    // Takes the six elements as they stand in a list. A list without all of them, or elements that are no date and
    // time, leave the clock as it is.
    void Set(const SignalList& elements, const core::DateTime& local);

  private:
    std::int64_t aheadSeconds_ = 0;
};

}  // namespace fieldsim
