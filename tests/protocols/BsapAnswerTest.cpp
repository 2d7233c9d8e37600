#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fieldsim/BsapFrame.h"
#include "protocols/bsap/BsapAnswer.h"
#include "protocols/bsap/BsapReply.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using support::Hex;

namespace {

BsapAsked AskedBy(const std::string& serial, const std::string& sequence, bool isCW) {
    const std::string body = "\x07" + serial + "\xA0" + sequence + Bytes("0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00");
    return BsapAsked::By(fieldsim::BsapFrame(body), isCW, 7);
}

// How a station sends its answer, and what stands around it.
struct Manner {
    const char* name;
    const char* ahead;
    bool isCW = false;
    bool inHead = false;
    const char* behind = "";
};

const Manner manners[] = {
    {"pad", "FF"},
    {"other pad", "00"},
    {"noise and pad", "10 02 41 10 FF"},
    {"pad lost", ""},
    {"pad, noise behind", "FF", false, false, "10 02 00"},
    {"in head", "", false, true},
    {"in head, noise ahead", "10 02 FF", false, true},
    {"in head, a DLE ahead and behind", "10", false, true, "10"},
    {"CW", "", true},
    {"CW, noise around", "FF 10", true, false, "00"},
};

}  // namespace

TEST(BsapAnswer, PositionsHoldWhateverBytesTheHeadHasAndWhateverStandsAroundIt) {
    for (const Manner& manner : manners) {
        for (int tens = 0; tens < 32; ++tens) {
            SCOPED_TRACE(std::string(manner.name) + ", " + std::to_string(tens));
            const auto byte = [tens](int bit, char other) { return std::string(1, tens & 1 << bit ? '\x10' : other); };
            const std::string serial = byte(0, 9);
            const std::string sequence = byte(1, 6) + byte(2, 0);
            const std::string version = byte(3, 0x12) + byte(4, 0x34);
            const std::string extra = manner.inHead ? std::string(1, '\0') : "";
            const std::string body = std::string(1, '\0') + serial + extra + "\x0B" + sequence +
                                     Bytes("A0 00 00 00 00") + version + Bytes("23 4F 4E 2E 2E 00");
            const auto answers = AnswersIn(Bytes(manner.ahead) + fieldsim::BsapFrame(body) + Bytes(manner.behind),
                                           AskedBy(serial, sequence, manner.isCW));
            ASSERT_EQ(answers.size(), 1U);
            const BsapAnswer& answer = answers[0];
            const std::size_t position = ReplyLayout(manner.isCW).loadVersion;
            EXPECT_EQ(answer.At(position), version[0]);
            EXPECT_EQ(answer.At(position + 1), version[1]);
            EXPECT_FALSE(answer.isLink);
            EXPECT_EQ(answer.serial, serial[0]);
            EXPECT_EQ(Hex(answer.sequence), Hex(sequence));
            EXPECT_FALSE(answer.At(answer.text.size() - 3));  // the trailer holds no value
            const BsapCounters none;
            EXPECT_EQ(WhoseIs(answer, AskedBy(serial, sequence, manner.isCW), none, true), Whose::Ours);
            EXPECT_EQ(WhoseIs(answer, AskedBy("\x63", sequence, manner.isCW), none, true), Whose::Anothers);
            EXPECT_EQ(WhoseIs(answer, AskedBy("\x63", sequence, manner.isCW), none, false), Whose::NotTold);
            const BsapCounters earlier{0, 0, 0, {{sequence, "\x01" + serial}}};
            EXPECT_EQ(WhoseIs(answer, AskedBy("\x63", sequence, manner.isCW), earlier, false), Whose::Anothers);
        }
    }
}

TEST(BsapAnswer, AddressAndStatusOfAPollReply) {
    for (const Manner& manner : manners) {
        for (const int address : {7, 16, 0x86}) {
            SCOPED_TRACE(std::string(manner.name) + ", " + std::to_string(address));
            const std::string extra = manner.inHead ? std::string(1, '\0') : "";
            const std::string body = Bytes("00 10") + extra + "\x86" + static_cast<char>(address) + Bytes("10 10");
            const std::string poll = fieldsim::BsapFrame(static_cast<char>(address) + Bytes("10 85 10"));
            const auto answers = AnswersIn(Bytes(manner.ahead) + fieldsim::BsapFrame(body) + Bytes(manner.behind),
                                           BsapAsked::By(poll, manner.isCW, address));
            ASSERT_EQ(answers.size(), 1U);
            EXPECT_TRUE(answers[0].isLink);
            EXPECT_EQ(answers[0].At(ReplyLayout(manner.isCW).pollAddress + 1), address);
            EXPECT_EQ(answers[0].At(ReplyLayout(manner.isCW).pollStatus + 1), 16);
        }
    }
}

// A head that says nothing of itself is read by what stands ahead of it, and not at all where that is in doubt.
TEST(BsapAnswer, AHeadWithoutMarksIsReadByItsPlaceOrNotAtAll) {
    const std::string frame = fieldsim::BsapFrame(Bytes("00 21 00 00 00 00 00 00 00 00 00 12 34 55 56 57"));
    struct Case {
        const char* ahead;
        std::optional<LeadingByte> known;
        std::optional<int> first;
    };
    const Case cases[] = {
        {"FF", {}, 0x12},
        {"", {}, 0x34},
        {"FF", LeadingByte::Ahead, 0x12},
        {"FF", LeadingByte::InHead, {}},
        {"", LeadingByte::InHead, 0x34},
        {"", LeadingByte::Ahead, {}},
    };
    for (const Case& c : cases) {
        BsapAsked asked = AskedBy("\x09", "\x06\x07", false);
        asked.leading = c.known;
        const auto answers = AnswersIn(Bytes(c.ahead) + frame, asked);
        ASSERT_EQ(answers.size(), c.first ? 1U : 0U);
        EXPECT_EQ(answers.empty() ? std::nullopt : answers[0].At(longReply.loadVersion + 1), c.first);
    }
}

TEST(BsapAnswer, OnlyWholeFramesWithARightCheckAreFound) {
    const std::string first = fieldsim::BsapFrame(Bytes("00 09 0B 06 00 A0 00 04"));
    const std::string second = fieldsim::BsapFrame(Bytes("00 0A 0B 10 00 A0 00 04"));
    const BsapAsked asked = AskedBy("\x09", std::string("\x06\x00", 2), true);
    std::string spoilt = first;
    spoilt[5] ^= 1;
    const std::pair<std::string, std::vector<int>> cases[] = {
        {first + second, {9, 10}},
        {"\xFF" + first + "\xFF" + second, {9, 10}},
        {spoilt + second, {10}},
        {first.substr(0, 7) + second, {10}},
        {first + second.substr(0, second.size() - 1), {9}},
        {Bytes("10 02 41 10 41") + first, {9}},  // a broken escape
        {first.substr(0, first.size() - 1), {}},
        {spoilt, {}},
        {"", {}},
        {Bytes("10 02 10"), {}},
        {fieldsim::BsapFrame(asked.body) + second, {10}},  // the line gives back what is sent on it
    };
    for (const auto& [received, serials] : cases) {
        std::vector<int> found;
        for (const BsapAnswer& answer : AnswersIn(received, asked)) {
            found.push_back(answer.serial);
        }
        EXPECT_EQ(found, serials) << Hex(received);
    }
}
