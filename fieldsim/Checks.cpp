#include "fieldsim/Checks.h"

#include <array>

namespace fieldsim {

namespace {

using CrcTable = std::array<std::uint16_t, 256>;

constexpr CrcTable Table(std::uint16_t polynomial) {
    CrcTable table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned value = byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? (value >> 1U) ^ polynomial : value >> 1U;
        }
        table[byte] = static_cast<std::uint16_t>(value);
    }
    return table;
}

std::uint16_t Crc16(const CrcTable& table, std::string_view bytes) {
    unsigned crc = 0xFFFF;
    for (const char c : bytes) {
        crc = (crc >> 8U) ^ table[(crc ^ static_cast<std::uint8_t>(c)) & 0xFFU];
    }
    return static_cast<std::uint16_t>(crc);
}

}  // namespace

std::uint16_t ModbusCrc16(std::string_view bytes) {
    static constexpr CrcTable table = Table(0xA001);
    return Crc16(table, bytes);
}

std::uint8_t ModbusLrc8(std::string_view bytes) {
    unsigned sum = 0;
    for (const char c : bytes) {
        sum += static_cast<std::uint8_t>(c);
    }
    return static_cast<std::uint8_t>(0U - sum);
}

std::uint16_t BsapCrc16(std::string_view body) {
    static constexpr CrcTable table = Table(0x8408);
    return Crc16(table, std::string(body) + '\x03');
}

std::uint8_t QuantumSum(std::string_view bytes) {
    unsigned sum = 0;
    for (const char c : bytes) {
        sum += static_cast<std::uint8_t>(c) & 127U;
    }
    // Messages below 10 have a "0" in the fifth place and use all eight bits of the sum.
    const unsigned mask = bytes.size() > 4 && bytes[4] == '0' ? 255 : 127;
    return static_cast<std::uint8_t>((0U - sum) & mask);
}

std::string LowHigh(std::uint16_t check) {
    return {static_cast<char>(check & 0xFFU), static_cast<char>(check >> 8U)};
}

}  // namespace fieldsim
