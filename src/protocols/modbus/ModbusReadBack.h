#pragma once

#include <optional>

#include "protocols/modbus/ModbusTransact.h"

namespace protocols {

// Reads one register or coil as it was written by ModbusWrite, with the same numbers. Nothing when the station gives no
// value.
std::optional<double> ModbusReadBack(Conversation& talk, core::ValueKind datum, int reg,
                                     const TransactOptions& options);

// What was read is what was written, as far as single precision and the six places of a reading go.
bool IsShown(double read, double written);

}  // namespace protocols
