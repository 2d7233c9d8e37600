#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// Between the bits on the wire and numbers, as the flow computers' masters have always read them. BSAP uses it too.
namespace protocols {

// Eight characters "0" or "1", the highest bit first.
std::string ByteToBits(unsigned char byte);

// The sum of the weights of the ones; the weight halves at each position. The first weight is 128 for a byte or an
// exponent and 0.5 for a fraction. Any other character than "1" counts as "0".
double BitsToNumber(std::string_view bits, double firstWeight);

// 2 to the absolute value of `exponent`; 0 from 31 on, where it leaves 32 bits.
std::int32_t PowerOfTwo(int exponent);

// A single-precision number from its 32 bits, as the stations' readers expect it, which is not all of IEEE 754:
//  - magnitudes from 2^31 on, infinities and NaN are 0, and so are those below 2^-30;
//  - with a zero exponent the leading one still counts: 1 plus the fraction, also for the word 80000000, which is -1;
//    only the word without any bit set is 0.
double BitsToFloat(std::uint32_t word);

// The same of a number as it came over the line, where a negative zero, 80000000, is 0: a flow that went to zero from
// below is no -1. Whatever decodes a reply uses this one.
double WireFloat(std::uint32_t word);

// Whether that 0 stands for a number which is too large for it: from 2^31 on, infinities and NaN.
bool IsOutOfRange(std::uint32_t word);

// The same from a text of "0" and "1", the sign first. Missing characters count as "0"; those behind 32 are ignored.
double BitsToFloat(std::string_view bits);

// The same from hexadecimal digits, the highest first. Other characters and missing ones count as "0"; those behind
// the eighth are ignored.
double HexToFloat(std::string_view digits);
std::uint32_t HexToWord(std::string_view digits);

// Single precision with the fraction truncated, the byte with sign and exponent first. What single precision cannot
// hold: magnitudes below its smallest normal number and NaN give four zeros, those from 2^128 on its largest number.
std::array<unsigned char, 4> FloatToBytes(double value);

}  // namespace protocols
