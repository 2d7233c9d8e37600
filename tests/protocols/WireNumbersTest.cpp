#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "protocols/WireNumbers.h"
#include "support/Hex.h"

using namespace protocols;

TEST(WireNumbers, BitsToFloatKeepsToTheRangeThatReadersExpect) {
    const struct {
        std::uint32_t word;
        double number;
        bool outOfRange = false;
    } cases[] = {
        {0x42C80000, 100},
        {0x00000000, 0},
        {0xBFC00000, -1.5},
        {0x4E800000, 1073741824},  // 2^30
        {0x4EFFFFFF, 2147483520},  // the largest
        {0xCEFFFFFF, -2147483520},
        {0x4F000000, 0, true},  // 2^31
        {0xCF000000, 0, true},
        {0x7F800000, 0, true},  // infinity
        {0xFF800000, 0, true},
        {0x7FC00000, 0, true},           // NaN
        {0x30800000, 1.0 / 1073741824},  // 2^-30
        {0x30000000, 0},                 // 2^-31
        {0x00400000, 1.5},               // a zero exponent has its leading one all the same
        {0x80000000, -1},
    };
    for (const auto& [word, number, outOfRange] : cases) {
        EXPECT_EQ(BitsToFloat(word), number) << std::hex << word;
        EXPECT_FALSE(std::signbit(BitsToFloat(word)) && number == 0) << std::hex << word;
        EXPECT_EQ(IsOutOfRange(word), outOfRange) << std::hex << word;
    }
}

TEST(WireNumbers, TextsOfBitsAndOfDigits) {
    EXPECT_EQ(BitsToFloat("01000010110010000000000000000000"), 100);
    EXPECT_EQ(BitsToFloat("0100001011001"), 100);  // cut short
    EXPECT_EQ(BitsToFloat("010000101100100000000000000000001"), 100);
    EXPECT_EQ(BitsToFloat(""), 0);
    EXPECT_EQ(HexToFloat("42C80000"), 100);
    EXPECT_EQ(HexToFloat("bfc00000"), -1.5);
    EXPECT_EQ(HexToFloat("3F8x*0\r\n"), 1);
    EXPECT_EQ(ByteToBits(0x85), "10000101");
    EXPECT_EQ(BitsToNumber("10000101", 128), 133);
    EXPECT_EQ(BitsToNumber("101", 0.5), 0.625);
    EXPECT_EQ(PowerOfTwo(-5), 32);
    EXPECT_EQ(PowerOfTwo(30), 1073741824);
    EXPECT_EQ(PowerOfTwo(31), 0);
    EXPECT_EQ(PowerOfTwo(-31), 0);
}

TEST(WireNumbers, FloatToBytesTruncatesAndEndsAtTheEdgesOfSinglePrecision) {
    const std::pair<double, const char*> cases[] = {
        {100, "42 C8 00 00"},
        {-1.5, "BF C0 00 00"},
        {0.1, "3D CC CC CC"},  // the nearest would be CD
        {std::ldexp(1.0, -126), "00 80 00 00"},
        {1e-39, "00 00 00 00"},
        {1e39, "7F 7F FF FF"},
        {-std::numeric_limits<double>::infinity(), "FF 7F FF FF"},
        {std::numeric_limits<double>::quiet_NaN(), "00 00 00 00"},
    };
    for (const auto& [number, hex] : cases) {
        const auto bytes = FloatToBytes(number);
        EXPECT_EQ(support::Hex({reinterpret_cast<const char*>(bytes.data()), bytes.size()}), hex) << number;
    }
}
