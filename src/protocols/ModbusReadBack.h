#pragma once

#include <optional>

#include "protocols/ModbusTransact.h"

namespace protocols {

// Reads one register or coil as it was written by ModbusWrite, with the same numbers. Nothing when the station gives no
// value.
std::optional<double> ModbusReadBack(Conversation& talk, ModbusDatum datum, int reg, const TransactOptions& options);

// The same number in the single precision of a register pair, however small it is.
bool IsSameFloat(double a, double b);

}  // namespace protocols
