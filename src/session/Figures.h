#pragma once

#include <optional>
#include <string_view>

#include "session/ParameterSet.h"

// The figures of a station that screens show by themselves: its clock, its voltages, the key figures of the summary.
// Each is found by the name that it has in the delivered maps, here and nowhere else.
namespace session {

enum class Figure {
    MainBattery,
    BackupBattery,
    BoardTemperature,
    Year,
    Month,
    Day,
    Hour,
    Minute,
    Second,
    SetYear,
    SetMonth,
    SetDay,
    SetHour,
    SetMinute,
    SetSecond,
    SetTime,  // the switch that takes the six over
    FlowRate,
    VolumeToday,
    VolumeYesterday,
    Pressure,
    Temperature,
    DifferentialPressure,
    ZFactor,
    SpecificGravity,
    CalorificValue,
    Nitrogen,
    CarbonDioxide,
    Batch,
    PidLoop,
    FlowSetPoint,
    ValvePosition,
    ContractHour,
};

// Where a figure stands in a set. Nothing when the model has no such parameter.
std::optional<RowPlace> PlaceOf(const ParameterSet& set, Figure figure, bool isCW);

// The row itself; null when the model has none.
const ParameterRow* RowOf(const ParameterSet& set, Figure figure, bool isCW);

}  // namespace session
