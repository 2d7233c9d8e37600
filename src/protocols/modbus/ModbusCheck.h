#pragma once

#include <cstdint>
#include <string_view>

namespace protocols {

// How a frame in ASCII framing is checked.
enum class AsciiCheck {
    Required,  // the LRC of a request has one digit to three, as the stations of this system have always been sent it
    Standard,  // it has two, and those of replies are looked at
};

// CRC-16 of the Modbus serial line: start FFFF, polynomial A001. Its low byte goes over the line first.
std::uint16_t ModbusCrc(std::string_view bytes);

// The check of ASCII framing over text of hexadecimal pairs, without the colon: 256 less the sum of the pairs modulo
// 256. So 1 to 256, and 256 where the Modbus protocol has 0.
int ModbusLrc(std::string_view pairs);

// The number of leading hexadecimal digits; other characters end it, and without any digit it is 0.
int HexNumber(std::string_view digits);

}  // namespace protocols
