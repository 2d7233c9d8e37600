#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "fieldsim/Checks.h"

// What the reading and the writing half of a Modbus slave share.
namespace fieldsim {

inline constexpr int kWriteCoil = 5;
inline constexpr int kWriteRegister = 6;
inline constexpr int kWriteCoils = 15;
inline constexpr int kWriteRegisters = 16;

inline constexpr int kIllegalFunction = 1;
inline constexpr int kIllegalAddress = 2;
inline constexpr int kIllegalValue = 3;

// An exception as function and code.
inline std::string ModbusExceptionPart(int function, int code) {
    return {static_cast<char>(function | 0x80), static_cast<char>(code)};
}

// A float in single precision, sign and exponent first.
inline std::string FloatBytes(double value) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    return {static_cast<char>(bits >> 24U), static_cast<char>(bits >> 16U), static_cast<char>(bits >> 8U),
            static_cast<char>(bits)};
}

inline double FloatOf(std::string_view bytes) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(WordAt(bytes, 0)) << 16U |
                                static_cast<std::uint32_t>(WordAt(bytes, 2)));
}

}  // namespace fieldsim
