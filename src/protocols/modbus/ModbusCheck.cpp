#include "protocols/modbus/ModbusCheck.h"

#include <array>
#include <charconv>

namespace protocols {

namespace {

constexpr std::array<std::uint16_t, 256> CrcTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned crc = byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? crc >> 1U ^ 0xA001U : crc >> 1U;
        }
        table[byte] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

constexpr std::array<std::uint16_t, 256> crcTable = CrcTable();

}  // namespace

std::uint16_t ModbusCrc(std::string_view bytes) {
    unsigned crc = 0xFFFF;
    for (const char c : bytes) {
        crc = crc >> 8U ^ crcTable[(crc ^ static_cast<unsigned char>(c)) & 0xFFU];
    }
    return static_cast<std::uint16_t>(crc);
}

int ModbusLrc(std::string_view pairs) {
    int sum = 0;
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        sum = (sum + HexNumber(pairs.substr(i, 2))) % 256;
    }
    return 255 - sum + 1;
}

int HexNumber(std::string_view digits) {
    unsigned number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return static_cast<int>(number);
}

}  // namespace protocols
