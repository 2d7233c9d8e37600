#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/Text.h"

using namespace core;

TEST(Val, ReadsTheLeadingNumberAndNothingElse) {
    const std::pair<const char*, double> cases[] = {
        {"12", 12}, {" -1.5 bar", -1.5}, {"+3", 3},  {"1E-2x", 0.01}, {".5", 0.5}, {"", 0},     {"abc", 0},
        {"-", 0},   {"--1", 0},          {"inf", 0}, {"1e999", 0},    {"7,5", 7},  {"0x10", 0},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(Val(text), value) << text;
    }
}

TEST(EnteredNumber, IsANumberAndNothingElse) {
    const std::pair<const char*, double> numbers[] = {{"95.5", 95.5}, {" -1e-3 ", -0.001}, {"0", 0.0}, {".5", 0.5}};
    for (const auto& [text, value] : numbers) {
        EXPECT_EQ(EnteredNumber(text), value) << text;
    }
    for (const char* text : {"abc", "1,5", "1 2", "5%", "", "nan", "inf", "1e300", "0x10", "1.5."}) {
        EXPECT_EQ(EnteredNumber(text), std::nullopt) << text;
    }
}

TEST(NumberText, IsWhatAnOperatorWouldWrite) {
    const std::pair<double, const char*> cases[] = {{100, "100"}, {-1.5, "-1.5"},     {0.1 + 0.2, "0.3"},
                                                    {-0.0, "0"},  {0.0001, "0.0001"}, {123456789.25, "123456789.25"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(NumberText(value), text);
    }
}

TEST(RoundTo, KeepsFourPlacesAndNeverBreaksAHugeValue) {
    EXPECT_EQ(RoundTo(1.23456, 4), 1.2346);
    EXPECT_EQ(RoundTo(2.5, 0), 2.0);  // ties to even
    EXPECT_EQ(RoundTo(-0.00001, 4), 0.0);
    EXPECT_FALSE(std::signbit(RoundTo(-0.00001, 4)));
    EXPECT_EQ(RoundTo(std::numeric_limits<double>::infinity(), 4), std::numeric_limits<double>::infinity());
}

TEST(CodePage, EveryByteComesBackAsItWas) {
    std::string all;
    for (int code = 1; code < 256; ++code) {
        all += static_cast<char>(code);
    }
    EXPECT_EQ(ToCodePage(FromCodePage(all)), all);
    EXPECT_EQ(FromCodePage("\x80 \xB0"
                           "C"),
              "€ °C");
    EXPECT_EQ(ToCodePage("日"), std::nullopt);
    EXPECT_EQ(ToCodePage("\xC3"), std::nullopt);              // cut short
    EXPECT_EQ(ToCodePage("\xF0\x9F\x98\x80"), std::nullopt);  // four bytes
}

TEST(Text, HelpersOfTheLogsAndTheLists) {
    EXPECT_EQ(HexLine(std::string("\x00\x0A\xFF", 3)), "0 A FF ");
    EXPECT_EQ(Trim(std::string("\0 kg \0\0", 7)), "kg");
    EXPECT_EQ(ReplaceAll("a10b10", "10", "1"), "a1b1");
    EXPECT_EQ(ReplaceAll("\x10\x10\x10", "\x10\x10", "\x10"), "\x10\x10");
    EXPECT_TRUE(SameText("CWEFM-aga3", "cwefm-AGA3"));
    EXPECT_FALSE(SameText("AGA3", "AGA33"));
    EXPECT_TRUE(SameSingle(16777216, 16777217));
    EXPECT_TRUE(SameSingle(0.1, 0.1000005));
    EXPECT_FALSE(SameSingle(0.1, 0.10001));
}
