#include <gtest/gtest.h>

#include "fieldsim/BsapFrame.h"
#include "fieldsim/Checks.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;

TEST(Checks, ModbusCrcIsThatOfKnownFrames) {
    for (const char* frame : {"01 03 00 64 00 0A 84 12", "11 01 00 00 00 3E BF 4A", "01 05 00 04 FF 00 CD FB",
                              "F7 06 00 09 FF FE 8D 2E", "01 03 08 42 C8 00 00 BF C0 00 00 7C 1A", "01 83 02 C0 F1"}) {
        const std::string bytes = Bytes(frame);
        const std::string message = bytes.substr(0, bytes.size() - 2);
        EXPECT_EQ(Hex(message + LowHigh(ModbusCrc16(message))), frame);
    }
}

// Of each body the whole frame, with its doubled bytes and its check.
TEST(Checks, BsapFramesAreThoseOfKnownMessages) {
    const std::pair<const char*, const char*> known[] = {
        {"01 01 85 10", "10 02 01 01 85 10 10 10 03 2C B5"},
        {"01 10 85 10", "10 02 01 10 10 85 10 10 10 03 36 6A"},
        {"01 05 8B 05", "10 02 01 05 8B 05 10 03 F2 3C"},
        {"01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36", "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D"},
        {"01 0A A0 18 00 0B 00 70 07 04 02 00", "10 02 01 0A A0 18 00 0B 00 70 07 04 02 00 10 03 7A 51"},
    };
    for (const auto& [body, frame] : known) {
        EXPECT_EQ(Hex(BsapFrame(Bytes(body))), frame);
        BsapReader reader;
        reader.Add(Bytes(frame), 0);
        EXPECT_EQ(Hex(reader.Next().value_or("nothing")), body);
    }
}

TEST(Checks, QuantumSumIsThatOfKnownFrames) {
    EXPECT_EQ(QuantumSum(Bytes("02 30 37 41 30 32 00")), 0xF4);
    EXPECT_EQ(QuantumSum(Bytes("02 31 32 41 30 31 00")), 0xF9);
    EXPECT_EQ(QuantumSum(Bytes("02 39 39 41 30 33 00")), 0xE8);
    EXPECT_EQ(QuantumSum(Bytes("02 39 39 41 31 33 00")), 0x67);  // above message 255 only seven bits go out
}

}  // namespace
}  // namespace fieldsim
