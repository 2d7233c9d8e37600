#include "protocols/modbus/ModbusReadBack.h"

#include <algorithm>
#include <cmath>

#include "core/Text.h"
#include "protocols/modbus/ModbusConstants.h"

namespace protocols {

std::optional<double> ModbusReadBack(Conversation& talk, core::ValueKind datum, int reg,
                                     const TransactOptions& options) {
    const bool isFloat = datum == core::ValueKind::Float;
    TransactOptions own = options;
    own.onlyItsOwn = isFloat;
    talk.modbus.floatread = isFloat;
    const int count = isFloat && !talk.modbus.rtu32bit ? 2 : 1;
    const int command = datum == core::ValueKind::Logical ? modbus::readCoils : modbus::readHoldingRegisters;
    const ModbusReply reply = ModbusTransact(talk, reg, count, command, own);
    return reply.kind == ModbusReply::Kind::Values ? std::optional(talk.modbus.mbvalues[1]) : std::nullopt;
}

bool IsShown(double read, double written) {
    constexpr int places = 6;
    constexpr double lastDigits = 1e-6;
    const double wanted = core::RoundTo(static_cast<double>(static_cast<float>(written)), places);
    return std::fabs(read - wanted) <= lastDigits * std::max(std::fabs(read), std::fabs(wanted));
}

}  // namespace protocols
