#include "protocols/ModbusReadBack.h"

#include <algorithm>
#include <cmath>

namespace protocols {

std::optional<double> ModbusReadBack(Conversation& talk, ModbusDatum datum, int reg, const TransactOptions& options) {
    constexpr int readCoils = 1;
    constexpr int readHoldingRegisters = 3;
    const bool isFloat = datum == ModbusDatum::Float;
    TransactOptions own = options;
    own.onlyItsOwn = isFloat;
    talk.modbus.floatread = isFloat;
    const int count = isFloat && !talk.modbus.rtu32bit ? 2 : 1;
    const int command = datum == ModbusDatum::Coil ? readCoils : readHoldingRegisters;
    const ModbusReply reply = ModbusTransact(talk, reg, count, command, own);
    return reply.kind == ModbusReply::Kind::Values ? std::optional(talk.modbus.mbvalues[1]) : std::nullopt;
}

bool IsSameFloat(double a, double b) {
    constexpr double lastDigits = 1e-6;
    return std::fabs(a - b) <= lastDigits * std::max(std::fabs(a), std::fabs(b));
}

}  // namespace protocols
