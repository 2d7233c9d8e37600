#pragma once

#include <cctype>
#include <string>
#include <string_view>

#include "core/Text.h"

namespace support {

// The bytes of a frame written as hex text: "10 02 01".
inline std::string Bytes(std::string_view hex) {
    std::string bytes;
    std::string digits;
    for (const char c : hex) {
        if (std::isxdigit(static_cast<unsigned char>(c)) != 0) {
            digits += c;
        }
        if (digits.size() == 2) {
            bytes += static_cast<char>(std::stoi(digits, nullptr, 16));
            digits.clear();
        }
    }
    return bytes;
}

// And back, for readable failures: "10 02 01".
inline std::string Hex(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const std::string byte = core::Trim(core::HexLine(std::string_view(&c, 1)));
        text += (text.empty() ? "" : " ") + std::string(2 - byte.size(), '0') + byte;
    }
    return text;
}

}  // namespace support
