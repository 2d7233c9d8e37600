#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The check values of the field's protocols, as a device computes them. Each works on plain bytes.
namespace fieldsim {

// CRC-16 of Modbus RTU: polynomial 0xA001 reflected, start 0xFFFF. On the line the low byte goes first.
std::uint16_t ModbusCrc16(std::string_view bytes);

// LRC of Modbus ASCII: the two's complement of the sum of the (binary) bytes.
std::uint8_t ModbusLrc8(std::string_view bytes);

// CRC-16 of a BSAP frame: polynomial 0x8408 reflected, start 0xFFFF, no final inversion, over the body without its
// doubled escapes and the ETX. On the line the low byte goes first.
std::uint16_t BsapCrc16(std::string_view body);

// The checksum of a Quantum frame over all bytes in front of it.
std::uint8_t QuantumSum(std::string_view bytes);

// The two bytes of a check, low byte first.
std::string LowHigh(std::uint16_t check);

inline std::uint8_t ByteAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

inline int WordAt(std::string_view bytes, std::size_t index) {
    return ByteAt(bytes, index) * 256 + ByteAt(bytes, index + 1);
}

}  // namespace fieldsim
