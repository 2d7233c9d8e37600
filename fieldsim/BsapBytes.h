#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "fieldsim/Checks.h"

// What the parts of a BSAP station share. Numbers go over its line low byte first.
namespace fieldsim {

inline constexpr std::size_t kLongestBody = 214;  // a frame of 220 bytes, before doubling

inline std::string_view Rest(std::string_view text, std::size_t from) {
    return text.substr(std::min(from, text.size()));
}

inline std::string LowFirst(int word) {
    return LowHigh(static_cast<std::uint16_t>(word));
}

inline int LowFirstAt(std::string_view bytes, std::size_t index) {
    return ByteAt(bytes, index) + 256 * ByteAt(bytes, index + 1);
}

// A float in single precision, sign and exponent last.
inline std::string FloatLowFirst(double value) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    return LowFirst(static_cast<int>(bits & 0xFFFFU)) + LowFirst(static_cast<int>(bits >> 16U));
}

inline double FloatLowFirstAt(std::string_view bytes, std::size_t index) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(LowFirstAt(bytes, index + 2)) << 16U |
                                static_cast<std::uint32_t>(LowFirstAt(bytes, index)));
}

}  // namespace fieldsim
