#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <tuple>
#include <vector>

#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapFrame.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using support::Hex;

namespace {

using Build = std::function<std::string(Bsap&)>;

// The counters as they are to stand in the frame: the application sequence of a request, 0 for a local message.
std::string Frame(int bsapseq, int appseq, const Build& build, BsapState state = {}, bool isCW = false) {
    state.loadversion1 = 0x12;
    state.loadversion2 = 0x34;
    const int before = std::max(appseq - 2, 0);
    BsapCounters counters{bsapseq - 1, before % 256, before / 256};
    Bsap message(counters, state, isCW);
    std::string frame = Hex(build(message));
    EXPECT_EQ(counters.bsapseq, bsapseq) << frame;
    EXPECT_EQ(counters.appseqhigh * 256 + counters.appseqlow, appseq) << frame;
    return frame;
}

BsapState WithNames() {
    BsapState state;
    state.listnames = true;
    return state;
}

BsapState WithoutUnits() {
    BsapState state;
    state.listunits = false;
    return state;
}

BsapState NextFrom15() {
    BsapState state;
    state.listnext1 = 15;
    return state;
}

Build SignOnWith(const char* password) {
    return [password](Bsap& bsap) { return bsap.SignOn_RTU(1, password); };
}

Build List(int number, bool first) {
    return [=](Bsap& bsap) { return bsap.get_LIST(1, number, first); };
}

Build Write(double value, int signal, ValueKind kind) {
    return [=](Bsap& bsap) { return bsap.Write_value(1, value, signal, kind); };
}

Build WriteByName(double value, ValueKind kind) {
    return [=](Bsap& bsap) { return bsap.write_by_name(1, "A.1", value, kind); };
}

Build Search(int kind, int first, int second) {
    return [=](Bsap& bsap) { return bsap.get_signal_search(1, "FL.", kind, first, second); };
}

Build Names(int count) {
    return [count](Bsap& bsap) {
        return bsap.get_by_name(1, count, std::vector<std::string>{"A.1", "1.5", "KG", "B.2", "0", ""});
    };
}

std::string Poll(Bsap& bsap) {
    return bsap.POLL_RTU(1);
}
std::string Acknowledge(Bsap& bsap) {
    return bsap.POLL_RTU_1(1);
}
std::string Version(Bsap& bsap) {
    return bsap.GetVersion_RTU(1);
}

}  // namespace

TEST(BsapFrame, LocalMessages) {
    const std::tuple<int, Build, const char*> cases[] = {
        {1, Poll, "10 02 01 01 85 10 10 10 03 2C B5"},
        {16, Poll, "10 02 01 10 10 85 10 10 10 03 36 6A"},
        {105, Poll, "10 02 01 69 85 10 10 10 03 10 C9"},  // a check byte of 10 goes once
        {151, Poll, "10 02 01 97 85 10 10 10 03 79 10"},
        {255, Poll, "10 02 01 FF 85 10 10 10 03 45 6C"},
        {1, [](Bsap& bsap) { return bsap.POLL_RTU(300); }, "10 02 2C 01 85 10 10 10 03 C9 A9"},
        {5, Acknowledge, "10 02 01 05 8B 05 10 03 F2 3C"},
        {16, Acknowledge, "10 02 01 10 10 8B 10 10 10 03 2D 7A"},
        // An address of 10 is doubled too; the check counts it once.
        {5, [](Bsap& bsap) { return bsap.POLL_RTU(16); }, "10 02 10 10 05 85 10 10 10 03 C4 78"},
        {3, [](Bsap& bsap) { return bsap.POLL_RTU_1(16); }, "10 02 10 10 03 8B 03 10 03 BC 9C"},
    };
    for (const auto& [bsapseq, build, frame] : cases) {
        EXPECT_EQ(Frame(bsapseq, 0, build), frame);
    }
}

TEST(BsapFrame, SignOnAndVersion) {
    const std::tuple<int, int, Build, const char*> cases[] = {
        {2, 12, SignOnWith("482913"), "10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E"},
        {2, 2, SignOnWith(""), "10 02 01 02 A0 02 00 0B 00 70 05 01 00 10 03 8E 41"},
        {2, 254, SignOnWith(""), "10 02 01 02 A0 00 0B 00 70 05 01 00 10 03 7B AB"},  // 254 read as hex is no byte
        {2, 2, [](Bsap& bsap) { return bsap.SignOn_RTU(16, ""); }, "10 02 10 10 02 A0 02 00 0B 00 70 05 01 00 10 03"},
        {3, 4, Version, "10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6"},
        {1, 65534, Version, "10 02 01 01 A0 FE FF 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 B2 B9"},
    };
    for (const auto& [bsapseq, appseq, build, frame] : cases) {
        EXPECT_EQ(Frame(bsapseq, appseq, build).substr(0, std::string(frame).size()), frame);
    }
}

TEST(BsapFrame, Lists) {
    const std::tuple<int, int, Build, BsapState, bool, const char*> cases[] = {
        {4, 6, List(54, true), {}, false, "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D"},
        {4, 6, List(54, true), {}, true, "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 00 00 10 03 BA AF"},
        {5, 8, List(54, false), NextFrom15(), false,
         "10 02 01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00 10 03 CC 77"},
        {5, 8, List(54, false), NextFrom15(), true,
         "10 02 01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00 10 03 CC 77"},
        {6, 16, List(54, true), WithNames(), false,
         "10 02 01 06 A0 00 10 10 0B 00 0C 05 F9 01 12 34 FF 36 10 03 CA 9D"},
        {1, 2, List(55, true), WithoutUnits(), false, "10 02 01 01 A0 00 02 0B 00 0C 01 D0 12 34 FF 37 10 03 B2 42"},
    };
    for (const auto& [bsapseq, appseq, build, state, isCW, frame] : cases) {
        EXPECT_EQ(Frame(bsapseq, appseq, build, state, isCW), frame);
    }
}

TEST(BsapFrame, ValuesBySignalAddress) {
    const std::tuple<int, int, Build, const char*> cases[] = {
        {7, 18, Write(100, 256, ValueKind::Analog),
         "10 02 01 07 A0 12 00 0B 00 80 12 34 FF 01 00 01 0B 00 00 C8 42 10 03 F3 A2"},
        {8, 20, Write(1, 16, ValueKind::Logical), "10 02 01 08 A0 14 00 0B 00 80 12 34 FF 01 10 10 00 09 10 03 98 5F"},
        {1, 2, Write(0, 300, ValueKind::Logical), "10 02 01 01 A0 02 00 0B 00 80 12 34 FF 01 2C 01 0A 10 03 8C AA"},
        {1, 2, Write(9, 300, ValueKind::Analog),  // 41 10 00 00: doubled, counted once
         "10 02 01 01 A0 02 00 0B 00 80 12 34 FF 01 2C 01 0B 00 00 10 10 41 10 03 A0 37"},
        {1, 2, [](Bsap& bsap) { return bsap.Write_value_str(1, "AB", 300); },
         "10 02 01 01 A0 02 00 0B 00 80 12 34 FF 01 2C 01 0D 41 42 00 10 03 88 65"},
        {1, 2,
         [](Bsap& bsap) {
             // The first is passed over, and of the three asked for there are two.
             return bsap.Write_Mul_value(1, std::vector<double>{7, 100, -1.5}, std::vector<int>{9, 256, 16}, 1, 3);
         },
         "10 02 01 01 A0 02 00 0B 00 80 12 34 FF 02 00 01 0B 00 00 C8 42 10 10 00 0B 00 00 C0 BF 10 03 77 73"},
        {9, 22, [](Bsap& bsap) { return bsap.get_by_address(1, 300); },
         "10 02 01 09 A0 00 16 0B 00 00 05 F8 01 12 34 FF 01 2C 01 10 03 E0 50"},
    };
    for (const auto& [bsapseq, appseq, build, frame] : cases) {
        EXPECT_EQ(Frame(bsapseq, appseq, build), frame);
    }
}

TEST(BsapFrame, ValuesByName) {
    const std::pair<Build, const char*> cases[] = {
        {Names(2), "10 02 01 01 A0 00 02 0B 00 04 05 F8 01 FF 02 41 2E 31 00 42 2E 32 00 10 03 F4 58"},
        {Names(12), "10 02 01 01 A0 00 02 0B 00 04 05 F8 01 FF 02 41 2E 31 00 42 2E 32 00 10 03 F4 58"},
        {[](Bsap& bsap) { return bsap.get_by_name(1, 12, std::vector<std::string>(34, "A")); },
         "10 02 01 01 A0 00 02 0B 00 04 05 F8 01 FF 12 41 00 41 00 41 00 41 00 41 00 41 00 41 00 41 00 41 00 41 00 "
         "41 00 41 00 10 03 85 4B"},
        {[](Bsap& bsap) { return bsap.get_by_single_name(1, "A.1"); },
         "10 02 01 01 A0 00 02 0B 00 04 05 F8 01 FF 01 41 2E 31 00 10 03 87 15"},
        {WriteByName(100, ValueKind::Analog),
         "10 02 01 01 A0 00 02 0B 00 84 FF 01 41 2E 31 00 0B 00 00 C8 42 10 03 C1 F4"},
        {WriteByName(0, ValueKind::Logical), "10 02 01 01 A0 00 02 0B 00 84 FF 01 41 2E 31 00 09 10 03 78 D1"},
        {Search(1, 0, 0), "10 02 01 01 A0 00 02 0B 00 08 05 F9 01 FF 00 00 00 00 80 46 4C 2E 00 10 03 36 B0"},
        {Search(0, 5, 1), "10 02 01 01 A0 00 02 0B 00 08 05 F9 01 FF 05 01 00 00 00 46 4C 2E 00 10 03 D2 64"},
    };
    for (const auto& [build, frame] : cases) {
        EXPECT_EQ(Frame(1, 2, build), frame);
    }
    EXPECT_EQ(Frame(1, 2, Search(1, 0, 0), {}, true),
              "10 02 01 01 A0 00 02 0B 00 08 05 F9 01 FF 00 00 00 00 82 46 4C 2E 00 10 03 60 B8");
    EXPECT_EQ(Frame(1, 2, Search(0, 5, 1), {}, true),
              "10 02 01 01 A0 00 02 0B 00 08 05 F9 01 FF 05 01 00 00 20 46 4C 2E 00 10 03 B2 E1");
}

TEST(BsapFrame, SequencesGoRoundWithoutZero) {
    BsapCounters counters{255, 0xFE, 0xFF};
    const BsapState state;
    Bsap bsap(counters, state, false);
    EXPECT_EQ(Hex(bsap.SignOn_RTU(1, "")), "10 02 01 01 A0 02 00 0B 00 70 05 01 00 10 03 3D BF");
    bsap.POLL_RTU(1);
    EXPECT_EQ(counters.bsapseq, 2);
    EXPECT_EQ(counters.appseqlow, 2);  // local messages have no application sequence
    for (int i = 0; i < 127; ++i) {
        bsap.GetVersion_RTU(1);
    }
    EXPECT_EQ(counters.appseqhigh, 1);
    EXPECT_EQ(counters.appseqlow, 0);
}

TEST(BsapCheck, GoesByWhatTheScannerSees) {
    const std::pair<const char*, int> cases[] = {
        {"10 02 31 32 33 34 35 36 37 38 39 10 03", 0xB7F4},
        {"41 10 10 01 31 32 33 34 35 36 37 38 39 10 03", 0xB7F4},           // noise in front, SOH for the STX
        {"10 02 41 10 03 10 02 31 32 33 34 35 36 37 38 39 10 03", 0xB7F4},  // the last frame counts
        {"10 02 31 10 41 42", 0xFFFF},                                      // a broken escape ends the body
        {"", 0xFFFF},
    };
    for (const auto& [frame, check] : cases) {
        EXPECT_EQ(BsapCheck(Bytes(frame)), check) << frame;
    }
}
