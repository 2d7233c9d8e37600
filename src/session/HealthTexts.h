#pragma once

#include <optional>
#include <string>

#include "session/ParameterSet.h"

// What the window says beside the grids of the station's clock and its batteries.
namespace session {

// "RTU Date : d/m/y", line break, "RTU Time :h:m:s", as the station keeps them. Empty when it has no clock.
std::string DateTimeText(const ParameterSet& set, bool isCW);

// The voltages and the board's temperature, a line each; of a CW station the system voltage and the temperature only.
// "N/A" for what the model lacks.
std::string VoltageText(const ParameterSet& set, bool isCW);

// The voltage that the station runs on: the main battery's unless that is below the backup's. Nothing when the model
// has none of them.
std::optional<double> SystemVoltage(const ParameterSet& set, bool isCW);

// The text of the alarm bar; empty while the system voltage is at or above the station's limit, or was not read.
std::string VoltageAlarm(const ParameterSet& set, bool isCW, double voltlimit);

}  // namespace session
