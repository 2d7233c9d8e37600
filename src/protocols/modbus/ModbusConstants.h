#pragma once

#include <cstddef>
#include <string_view>

// What the Modbus protocol fixes.
namespace protocols::modbus {

// Function codes.
inline constexpr int readCoils = 1;
inline constexpr int readInputs = 2;
inline constexpr int readHoldingRegisters = 3;
inline constexpr int readInputRegisters = 4;
inline constexpr int writeCoil = 5;
inline constexpr int writeRegister = 6;
inline constexpr int readStatus = 7;
inline constexpr int writeCoils = 15;
inline constexpr int writeRegisters = 16;
// Set in the function code of a refusal.
inline constexpr int exceptionBit = 0x80;

inline constexpr int coilOn = 0xFF00;
inline constexpr int highestSlave = 247;
inline constexpr int highestRegister = 65535;

// Positions in a message, from 0: the same in requests, replies and both framings.
inline constexpr std::size_t functionAt = 1;
// Of a reply to a read.
inline constexpr std::size_t byteCountAt = 2;
inline constexpr std::size_t dataAt = 3;
// Of a refusal.
inline constexpr std::size_t exceptionAt = 2;
// Slave, function, register, and the datum or the quantity. A write is acknowledged by these.
inline constexpr std::size_t writeLength = 6;

// RTU framing: the message, then the CRC, low byte first.
inline constexpr std::size_t crcLength = 2;
inline constexpr std::size_t shortestRtuReply = dataAt + crcLength;

// ASCII framing: a colon, the message and its LRC as two digits a byte, CR LF.
inline constexpr char colon = ':';
inline constexpr std::size_t digitsPerByte = 2;
inline constexpr std::string_view asciiDigits = "0123456789ABCDEFabcdef";
inline constexpr std::string_view asciiEnd = "\r\n";
inline constexpr std::size_t shortestAsciiReply = 10;

}  // namespace protocols::modbus
