#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "fieldsim/Signals.h"

namespace fieldsim {

// Values that move as those of a gas station do, told by their descriptions and units: pressures and temperatures
// wander about a level, the flow follows the day, volumes accumulate and turn over at the contract hour, the battery
// follows the sun, clock elements show the station's clock; settings, limits and compositions stay. The same seed,
// signal and time give the same value, and the volumes are the integral of the flow.
class GasBehaviour {
  public:
    // `contractHour` is the hour, 0 to 23, at which the gas day begins. With an `alarmCycle`, in seconds, the live
    // values of the alarm blocks ("Flowrate Live" and the like) rise in each cycle from below Lo-Lo to above Hi-Hi and
    // fall back again, without jumps and each at a point of its own. They go by the limits that were there from the
    // start.
    explicit GasBehaviour(std::uint32_t seed, int contractHour = 6, int alarmCycle = 0);

    double operator()(const Signal& signal, const core::DateTime& at) const;

  private:
    double Usual(const Signal& signal, const core::DateTime& at) const;
    double Alarming(const Signal& signal, std::int64_t seconds) const;
    double Clock(const std::string& name, const core::DateTime& at) const;
    double Amount(const std::string& name, std::int64_t seconds) const;
    double Flow(std::int64_t seconds) const;
    double Electric(const std::string& name, std::int64_t seconds) const;
    double Pressure(const std::string& name, const std::string& unit, std::int64_t seconds) const;
    double Temperature(const std::string& unit, std::int64_t seconds) const;
    double Setting(const Signal& signal) const;
    double Limit(const Signal& signal) const;
    double LiveLevel(const std::string& block, const std::string& unit) const;
    double State(const std::string& name, std::int64_t seconds) const;

    // Standard volume of a gas day from its start to `hours` into it; days count from 1970.
    double DayVolume(std::int64_t day, double hours) const;
    double DaysVolume(std::int64_t firstDay, std::int64_t endDay) const;
    std::int64_t GasDay(std::int64_t seconds) const;
    double HoursIntoGasDay(std::int64_t seconds) const;
    // The first gas day of the month in which a gas day lies, `monthsBack` months earlier.
    std::int64_t MonthStart(std::int64_t day, int monthsBack) const;

    // A number from 0 up to 1 that belongs to a name, and one that wanders from hour to hour between -1 and 1.
    double Share(std::string_view name) const;
    double Wander(std::string_view name, std::int64_t seconds) const;

    std::uint32_t seed_;
    int contractHour_;
    int alarmCycle_;
    double hourlyFlow_;
};

}  // namespace fieldsim
