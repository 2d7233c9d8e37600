#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "fieldsim/BsapFrame.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapFrame.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using support::Hex;

namespace {

using Build = std::function<std::string(Bsap&)>;

// The counters as they are to stand in the frame: the application sequence of a request, 0 of a local message.
struct Row {
    int bsapseq;
    int appseq;
    Build build;
    std::string frame;
    BsapState state{};
    bool isCW = false;
};

void ExpectFrames(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        BsapState state = row.state;
        state.loadversion1 = 0x12;
        state.loadversion2 = 0x34;
        const int before = std::max(row.appseq - 2, 0);
        BsapCounters counters{row.bsapseq - 1, before % 256, before / 256};
        Bsap message(counters, state, row.isCW);
        EXPECT_EQ(Hex(row.build(message)), row.frame);
        EXPECT_EQ(counters.bsapseq, row.bsapseq) << row.frame;
        EXPECT_EQ(counters.appseqhigh * 256 + counters.appseqlow, row.appseq) << row.frame;
    }
}

// The same of rows that have the body of a frame only.
void ExpectBodies(std::vector<Row> rows) {
    for (Row& row : rows) {
        row.frame = Hex(fieldsim::BsapFrame(Bytes(row.frame)));
    }
    ExpectFrames(rows);
}

template <typename Value>
BsapState With(Value BsapState::*what, Value value) {
    BsapState state;
    state.*what = value;
    return state;
}

template <typename Method, typename... Arguments>
Build Call(Method method, const Arguments&... arguments) {
    return [=](Bsap& bsap) { return (bsap.*method)(arguments...); };
}

}  // namespace

TEST(BsapFrame, WholeFramesOfAnotherProgram) {
    ExpectFrames({
        {1, 0, Call(&Bsap::POLL_RTU, 1), "10 02 01 01 85 10 10 10 03 2C B5"},
        {16, 0, Call(&Bsap::POLL_RTU, 1), "10 02 01 10 10 85 10 10 10 03 36 6A"},
        {105, 0, Call(&Bsap::POLL_RTU, 1), "10 02 01 69 85 10 10 10 03 10 C9"},  // a check byte of 10 goes once
        {255, 0, Call(&Bsap::POLL_RTU, 1), "10 02 01 FF 85 10 10 10 03 45 6C"},
        {1, 0, Call(&Bsap::POLL_RTU, 300), "10 02 2C 01 85 10 10 10 03 C9 A9"},
        {2, 12, Call(&Bsap::SignOn_RTU, 1, "482913"),
         "10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E"},
        {8, 20, Call(&Bsap::Write_value, 1, 1, 16, core::ValueKind::Logical),
         "10 02 01 08 A0 14 00 0B 00 80 12 34 FF 01 10 10 00 09 10 03 98 5F"},
        {5, 0, Call(&Bsap::POLL_RTU_1, 1), "10 02 01 05 8B 05 10 03 F2 3C"},
        {16, 0, Call(&Bsap::POLL_RTU_1, 1), "10 02 01 10 10 8B 10 10 10 03 2D 7A"},
        // An address of 10 is doubled too; the check counts it once.
        {5, 0, Call(&Bsap::POLL_RTU, 16), "10 02 10 10 05 85 10 10 10 03 C4 78"},
        {3, 0, Call(&Bsap::POLL_RTU_1, 16), "10 02 10 10 03 8B 03 10 03 BC 9C"},
    });
}

TEST(BsapFrame, SignOnVersionAndLists) {
    ExpectBodies({
        {2, 2, Call(&Bsap::SignOn_RTU, 1, ""), "01 02 A0 02 00 0B 00 70 05 01 00"},
        {2, 254, Call(&Bsap::SignOn_RTU, 1, ""), "01 02 A0 00 0B 00 70 05 01 00"},  // 254 read as hex is no byte
        {2, 2, Call(&Bsap::SignOn_RTU, 16, ""), "10 02 A0 02 00 0B 00 70 05 01 00"},
        {3, 4, Call(&Bsap::GetVersion_RTU, 1), "01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00"},
        {1, 65534, Call(&Bsap::GetVersion_RTU, 1), "01 01 A0 FE FF 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00"},
        {4, 6, Call(&Bsap::get_LIST, 1, 54, true), "01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36"},
        {4, 6, Call(&Bsap::get_LIST, 1, 54, true), "01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 00 00", {}, true},
        {5, 8, Call(&Bsap::get_LIST, 1, 54, false), "01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00",
         With(&BsapState::listnext1, 15)},
        {6, 16, Call(&Bsap::get_LIST, 1, 54, true), "01 06 A0 00 10 0B 00 0C 05 F9 01 12 34 FF 36",
         With(&BsapState::listnames, true)},
        {1, 2, Call(&Bsap::get_LIST, 1, 55, true), "01 01 A0 00 02 0B 00 0C 01 D0 12 34 FF 37",
         With(&BsapState::listunits, false)},
    });
}

TEST(BsapFrame, ValuesByAddressAndByName) {
    const std::vector<std::string> two = {"A.1", "1.5", "KG", "B.2", "0", ""};
    const std::string byName = "01 01 A0 00 02 0B 00 04 05 F8 01 FF ";
    const std::string search = "01 01 A0 00 02 0B 00 08 05 F9 01 FF ";
    std::string twelve;
    for (int i = 0; i < 12; ++i) {
        twelve += " 41 00";
    }
    ExpectBodies({
        {7, 18, Call(&Bsap::Write_value, 1, 100, 256, core::ValueKind::Float),
         "01 07 A0 12 00 0B 00 80 12 34 FF 01 00 01 0B 00 00 C8 42"},
        {1, 2, Call(&Bsap::Write_value, 1, 0, 300, core::ValueKind::Logical),
         "01 01 A0 02 00 0B 00 80 12 34 FF 01 2C 01 0A"},
        {1, 2, Call(&Bsap::Write_value, 1, 9, 300, core::ValueKind::Float),  // 41 10 00 00: doubled, counted once
         "01 01 A0 02 00 0B 00 80 12 34 FF 01 2C 01 0B 00 00 10 41"},
        {1, 2, Call(&Bsap::Write_value_str, 1, "AB", 300), "01 01 A0 02 00 0B 00 80 12 34 FF 01 2C 01 0D 41 42 00"},
        // The first is passed over, and of the three asked for there are two.
        {1, 2, Call(&Bsap::Write_Mul_value, 1, std::vector<double>{7, 100, -1.5}, std::vector{9, 256, 16}, 1, 3),
         "01 01 A0 02 00 0B 00 80 12 34 FF 02 00 01 0B 00 00 C8 42 10 00 0B 00 00 C0 BF"},
        {9, 22, Call(&Bsap::get_by_address, 1, 300), "01 09 A0 00 16 0B 00 00 05 F8 01 12 34 FF 01 2C 01"},
        {1, 2, Call(&Bsap::get_by_name, 1, 12, two), byName + "02 41 2E 31 00 42 2E 32 00"},  // there are two
        {1, 2, Call(&Bsap::get_by_name, 1, 12, std::vector<std::string>(36, "A")), byName + "12" + twelve},
        {1, 2, Call(&Bsap::get_by_single_name, 1, "A.1"), byName + "01 41 2E 31 00"},
        {1, 2, Call(&Bsap::write_by_name, 1, "A.1", 100, core::ValueKind::Float),
         "01 01 A0 00 02 0B 00 84 FF 01 41 2E 31 00 0B 00 00 C8 42"},
        {1, 2, Call(&Bsap::write_by_name, 1, "A.1", 0, core::ValueKind::Logical),
         "01 01 A0 00 02 0B 00 84 FF 01 41 2E 31 00 09"},
        {1, 2, Call(&Bsap::get_signal_search, 1, "FL.", 1, 0, 0), search + "00 00 00 00 80 46 4C 2E 00"},
        {1, 2, Call(&Bsap::get_signal_search, 1, "FL.", 0, 5, 1), search + "05 01 00 00 00 46 4C 2E 00"},
        {1, 2, Call(&Bsap::get_signal_search, 1, "FL.", 1, 0, 0), search + "00 00 00 00 82 46 4C 2E 00", {}, true},
        {1, 2, Call(&Bsap::get_signal_search, 1, "FL.", 0, 5, 1), search + "05 01 00 00 20 46 4C 2E 00", {}, true},
    });
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
