#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "protocols/WireNumbers.h"
#include "support/Hex.h"

using namespace protocols;

TEST(BitsToFloat, KeepsToTheRangeThatReadersExpect) {
    const std::pair<std::uint32_t, double> cases[] = {
        {0x42C80000, 100},
        {0x00000000, 0},
        {0x3F800000, 1},
        {0xBFC00000, -1.5},
        {0x4E800000, 1073741824},  // 2^30
        {0x4EFFFFFF, 2147483520},  // the largest
        {0x4F000000, 0},           // 2^31
        {0xCF000000, 0},
        {0x7F800000, 0},                 // infinity
        {0x7FC00000, 0},                 // NaN
        {0x30800000, 1.0 / 1073741824},  // 2^-30
        {0x30000000, 0},                 // 2^-31
        {0x00400000, 1.5},               // a zero exponent has its leading one all the same
        {0x00000001, 1 + std::ldexp(1.0, -23)},
        {0x80000000, -1},
    };
    for (const auto& [word, number] : cases) {
        EXPECT_EQ(BitsToFloat(word), number) << std::hex << word;
        EXPECT_FALSE(std::signbit(BitsToFloat(word)) && number == 0) << std::hex << word;
    }
}

TEST(IsOutOfRange, TellsAZeroThatStandsForTooMuch) {
    for (const std::uint32_t word : {0x4F000000U, 0xCF000000U, 0x7F800000U, 0xFF800000U, 0x7FC00000U}) {
        EXPECT_TRUE(IsOutOfRange(word) && BitsToFloat(word) == 0) << std::hex << word;
    }
    for (const std::uint32_t word : {0U, 0x4EFFFFFFU, 0xCEFFFFFFU, 0x00000001U, 0x80000000U, 0x2B8CBCCCU}) {
        EXPECT_FALSE(IsOutOfRange(word)) << std::hex << word;
    }
}

TEST(BitsToFloat, ReadsTextOfBitsAndOfDigits) {
    EXPECT_EQ(BitsToFloat("01000010110010000000000000000000"), 100);
    EXPECT_EQ(BitsToFloat("0100001011001"), 100);  // cut short
    EXPECT_EQ(BitsToFloat("010000101100100000000000000000001"), 100);
    EXPECT_EQ(BitsToFloat(""), 0);
    EXPECT_EQ(HexToFloat("42C80000"), 100);
    EXPECT_EQ(HexToFloat("bfc00000"), -1.5);
    EXPECT_EQ(HexToFloat("3F8"), 1);
    EXPECT_EQ(HexToFloat("3F8x*0\r\n"), 1);
}

TEST(Bits, OfAByteAndTheirWeights) {
    EXPECT_EQ(ByteToBits(0x85), "10000101");
    EXPECT_EQ(BitsToNumber("10000101", 128), 133);
    EXPECT_EQ(BitsToNumber("101", 0.5), 0.625);
    const std::pair<int, int> powers[] = {{0, 1}, {5, 32}, {-5, 32}, {30, 1073741824}, {31, 0}, {-31, 0}};
    for (const auto& [exponent, power] : powers) {
        EXPECT_EQ(PowerOfTwo(exponent), power) << exponent;
    }
}

TEST(FloatToBytes, TruncatesAndEndsAtTheEdgesOfSinglePrecision) {
    const std::pair<double, const char*> cases[] = {
        {0, "00 00 00 00"},
        {100, "42 C8 00 00"},
        {-1.5, "BF C0 00 00"},
        {0.1, "3D CC CC CC"},  // the nearest would be CD
        {16777217, "4B 80 00 00"},
        {std::ldexp(1.0, -126), "00 80 00 00"},
        {1e-39, "00 00 00 00"},
        {1e39, "7F 7F FF FF"},
        {std::numeric_limits<double>::denorm_min(), "00 00 00 00"},
        {-std::numeric_limits<double>::infinity(), "FF 7F FF FF"},
        {std::numeric_limits<double>::quiet_NaN(), "00 00 00 00"},
    };
    for (const auto& [number, hex] : cases) {
        const auto bytes = FloatToBytes(number);
        EXPECT_EQ(support::Hex({reinterpret_cast<const char*>(bytes.data()), bytes.size()}), hex) << number;
    }
}
