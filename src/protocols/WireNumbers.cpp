#include "protocols/WireNumbers.h"

#include <bit>
#include <cmath>
#include <cstdlib>

namespace protocols {

namespace {

constexpr int wordBits = 32;
constexpr int fractionBits = 23;
constexpr int exponentBias = 127;
constexpr int exponentLimit = 31;  // 2 to this power leaves a 32-bit integer

std::uint32_t HexDigit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return static_cast<std::uint32_t>(digit - '0');
    }
    const int letter = (digit | 0x20) - 'a';
    return letter >= 0 && letter < 6 ? static_cast<std::uint32_t>(letter + 10) : 0;
}

int ExponentField(std::uint32_t word) {
    return static_cast<int>(word >> fractionBits & 0xFF);
}

}  // namespace

std::string ByteToBits(unsigned char byte) {
    std::string bits;
    for (int bit = 7; bit >= 0; --bit) {
        bits += (byte >> bit & 1) != 0 ? '1' : '0';
    }
    return bits;
}

double BitsToNumber(std::string_view bits, double firstWeight) {
    double number = 0;
    double weight = firstWeight;
    for (const char bit : bits) {
        number += bit == '1' ? weight : 0;
        weight /= 2;
    }
    return number;
}

std::int32_t PowerOfTwo(int exponent) {
    return exponent > -exponentLimit && exponent < exponentLimit ? std::int32_t{1} << std::abs(exponent) : 0;
}

double BitsToFloat(std::uint32_t word) {
    if (word == 0) {
        return 0;
    }
    const int exponentField = ExponentField(word);
    if (exponentField == 0) {
        word |= std::uint32_t{exponentBias} << fractionBits;
    } else if (std::abs(exponentField - exponentBias) >= exponentLimit) {
        return 0;
    }
    // In this range the number is the IEEE one.
    return std::bit_cast<float>(word);
}

double WireFloat(std::uint32_t word) {
    constexpr std::uint32_t negativeZero = 0x80000000;
    return word == negativeZero ? 0 : BitsToFloat(word);
}

double BitsToFloat(std::string_view bits) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < wordBits; ++i) {
        word = word << 1 | (i < bits.size() && bits[i] == '1' ? 1U : 0U);
    }
    return BitsToFloat(word);
}

bool IsOutOfRange(std::uint32_t word) {
    return ExponentField(word) - exponentBias >= exponentLimit;
}

std::uint32_t HexToWord(std::string_view digits) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < wordBits / 4; ++i) {
        word = word << 4 | (i < digits.size() ? HexDigit(digits[i]) : 0U);
    }
    return word;
}

double HexToFloat(std::string_view digits) {
    return BitsToFloat(HexToWord(digits));
}

std::array<unsigned char, 4> FloatToBytes(double value) {
    constexpr int largestExponentField = 254;
    int exponent = 0;
    const double half = std::frexp(std::fabs(value), &exponent);  // half in [0.5, 1)
    const int exponentField = exponent + exponentBias - 1;
    if (value == 0 || std::isnan(value) || (std::isfinite(value) && exponentField < 1)) {
        return {};
    }
    std::uint32_t word = 0x7F7FFFFF;
    if (std::isfinite(value) && exponentField <= largestExponentField) {
        const auto fraction = static_cast<std::uint32_t>(std::ldexp(half * 2 - 1, fractionBits));
        word = static_cast<std::uint32_t>(exponentField) << fractionBits | fraction;
    }
    word |= value < 0 ? 0x80000000U : 0U;
    return {static_cast<unsigned char>(word >> 24U), static_cast<unsigned char>(word >> 16U),
            static_cast<unsigned char>(word >> 8U), static_cast<unsigned char>(word)};
}

}  // namespace protocols
