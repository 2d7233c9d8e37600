#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "soak/FieldOfForty.h"

// What the thirty days should leave, worked out from the plan alone: from the ticks, the clock as it was set, and the
// schedule of each station. Nothing of the program is used.
namespace soak {

// The local clock of the thirty days.
class LocalTime {
  public:
    LocalTime(const core::DateTime& start, const std::vector<ClockStep>& steps) : start_(start), steps_(&steps) {}

    // Seconds since 1970 as the clock showed them at a moment.
    std::int64_t At(std::uint64_t moment) const;
    // A step lies between two moments.
    bool Steps(std::uint64_t from, std::uint64_t until) const;

  private:
    core::DateTime start_;
    const std::vector<ClockStep>* steps_;
};

// A station's turn at a contract hour.
struct Due {
    std::string gasday;      // "2026-03-09"
    bool late = false;       // its minute had no tick
    std::uint64_t from = 0;  // the tick at which it is to be queued
};

// One time that the program ran, from its start to the power cut.
struct Running {
    std::uint64_t from = 0;
    std::uint64_t until = 0;
};

std::vector<Running> RunningTimes(const std::vector<Span>& off);

// The dues of a station in one running time, given those of its gas days that have been served so far. A day that is
// due here counts as served.
std::vector<Due> DuesOf(const demo::DemoStation& station, const Running& running, const LocalTime& local,
                        std::int64_t firstTick, std::vector<std::string>& served);

}  // namespace soak
