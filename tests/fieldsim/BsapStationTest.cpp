#include <gtest/gtest.h>

#include <bit>
#include <set>

#include "core/Text.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/Checks.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;

const char* const kPoll = "10 02 01 01 85 10 10 10 03 2C B5";
const char* const kPoll16 = "10 02 01 10 10 85 10 10 10 03 36 6A";
const char* const kAcknowledge = "10 02 01 05 8B 05 10 03 F2 3C";
const char* const kSignOn = "10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E";
const char* const kSignOnEmpty = "10 02 01 02 A0 02 00 0B 00 70 05 01 00 10 03 8E 41";
const char* const kVersion = "10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6";
const char* const kFirst = "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D";
const char* const kFirstCw = "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 00 00 10 03 BA AF";
const char* const kNextFrom15 = "10 02 01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00 10 03 CC 77";

// 20 analogs with the value of their position and a half, of every type code; three logicals.
SignalLists Lists() {
    std::vector<Signal> analogs;
    const int codes[] = {-1, 6, 50, 9};
    for (int position = 1; position <= 20; ++position) {
        analogs.push_back(
            {position, "A" + std::to_string(position), "KG/CM2", Kind::Float, position + 0.5, codes[position % 4]});
    }
    analogs.erase(analogs.begin() + 2);  // nothing at position 3
    const std::vector<Signal> logicals = {
        {1, "L1", "", Kind::Logical, 1}, {2, "L2", "ON", Kind::Logical, 0, 4}, {3, "L3", "", Kind::Logical, 1, 68}};
    return {{54, std::make_shared<SignalList>(analogs)}, {55, std::make_shared<SignalList>(logicals)}};
}

struct Asker {
    BsapStation station;
    std::uint64_t at = 1000;

    explicit Asker(BsapOptions options = AlwaysReady()) : station(1, Lists(), std::move(options)) {}

    static BsapOptions AlwaysReady() {
        BsapOptions options;
        options.notReadyOneIn = 0;
        return options;
    }

    std::string Raw(const std::string& bytes) {
        at += 1000;
        std::string answer;
        for (const Answer& part : station.Receive(bytes, {{2026, 3, 9, 8, 0, 0}, at})) {
            answer += part.bytes;
        }
        return answer;
    }
    // The reply with its pairs undone, as a master reads a list.
    std::string operator()(const char* hex) { return core::ReplaceAll(Raw(Bytes(hex)), "\x10\x10", "\x10"); }
};

// The byte at a position from 1.
int At(const std::string& reply, std::size_t position) {
    return position <= reply.size() ? ByteAt(reply, position - 1) : -1;
}

bool IsAcknowledgement(const std::string& reply) {
    return reply.size() >= 11 && reply.size() <= 17;
}

TEST(BsapStation, PollReplyHasAddressAndStatusInTheirPlaces) {
    for (const bool shortLayout : {false, true}) {
        BsapOptions options = Asker::AlwaysReady();
        options.shortLayout = shortLayout;
        options.status = 2;
        Asker ask(options);
        for (const char* frame : {kPoll, kPoll16, kAcknowledge, kSignOn}) {
            const std::string reply = ask(frame);
            EXPECT_TRUE(IsAcknowledgement(reply)) << Hex(reply);
            EXPECT_EQ(At(reply, shortLayout ? 6 : 7), 1) << frame;
            EXPECT_EQ(At(reply, shortLayout ? 7 : 8), 2) << frame;
        }
        EXPECT_EQ(ask.station.SignOns(), 1);
    }
}

TEST(BsapStation, VersionReplyHasTheLoadVersionInItsPlace) {
    for (const bool shortLayout : {false, true}) {
        BsapOptions options = Asker::AlwaysReady();
        options.shortLayout = shortLayout;
        Asker ask(options);
        const std::string reply = ask.Raw(Bytes(kVersion));
        EXPECT_GT(reply.size(), 17U);
        EXPECT_EQ(At(reply, shortLayout ? 13 : 14), 0x12);
        EXPECT_EQ(At(reply, shortLayout ? 14 : 15), 0x34);
    }
}

TEST(BsapStation, ListComesInPagesOfRecords) {
    for (const bool shortLayout : {false, true}) {
        BsapOptions options = Asker::AlwaysReady();
        options.shortLayout = shortLayout;
        Asker ask(options);
        const std::size_t back = shortLayout ? 1 : 0;
        const std::string first = ask(shortLayout ? kFirstCw : kFirst);
        EXPECT_EQ(first.size(), 15 - back + 15 * 13 + 4);
        EXPECT_EQ(At(first, 14 - back), 15);
        EXPECT_EQ(At(first, 15 - back), 0);
        // Position 1: alarm, 1.5 = 3FC00000, units, 54 * 512 + 1 = 6C01. Position 3 has no signal and still a record.
        EXPECT_EQ(Hex(first.substr(15 - back, 13)), "06 00 00 C0 3F 4B 47 2F 43 4D 32 01 6C");
        EXPECT_EQ(Hex(first.substr(15 - back + 26, 13)), "02 00 00 00 00 00 00 00 00 00 00 03 6C");
        const std::string last = ask(kNextFrom15);
        EXPECT_EQ(last.size(), 15 - back + 5 * 13 + 4);
        EXPECT_EQ(At(last, 14 - back), 0);
        EXPECT_EQ(At(last, 15 - back), 0);
        // 16.5 = 41840000; the first byte of its MSD address is a 10 that the line doubles.
        EXPECT_EQ(Hex(last.substr(15 - back, 13)), "02 00 00 84 41 4B 47 2F 43 4D 32 10 6C");
        EXPECT_EQ(Hex(last.substr(last.size() - 4, 2)), "10 03");
        EXPECT_EQ(ask.station.Lists().at(54)->Served("A16").back().value, 16.5);
    }
}

TEST(BsapStation, LogicalRecordsHaveOneByteOfValue) {
    Asker ask;
    const std::string body = Bytes("01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 37");
    const std::string reply = ask.Raw(BsapFrame(body));
    EXPECT_EQ(Hex(reply.substr(15, 30)),
              "00 01 00 00 00 00 00 00 01 6E 04 00 4F 4E 00 00 00 00 02 6E 44 01 00 00 00 00 00 00 03 6E");
    std::string shortForm = body;
    shortForm[9] = '\xD0';
    EXPECT_EQ(Hex(ask.Raw(BsapFrame(shortForm)).substr(15, 12)), "00 01 01 6E 04 00 02 6E 44 01 03 6E");
}

TEST(BsapStation, AcknowledgesFirstAndAnswersOnThePoll) {
    BsapOptions options = Asker::AlwaysReady();
    options.answers = DataAnswer::AcknowledgeFirst;
    Asker ask(options);
    EXPECT_TRUE(IsAcknowledgement(ask(kFirst)));
    EXPECT_EQ(At(ask(kPoll), 14), 15);
    EXPECT_EQ(At(ask(kPoll16), 14), 15);  // until the master has acknowledged it
    EXPECT_TRUE(IsAcknowledgement(ask(kAcknowledge)));
    EXPECT_TRUE(IsAcknowledgement(ask(kPoll)));
}

TEST(BsapStation, ServesNothingThatIsNotAskedRightly) {
    BsapOptions options = Asker::AlwaysReady();
    options.password = "482913";
    Asker ask(options);
    EXPECT_EQ(At(ask(kVersion), 14), 0);
    EXPECT_TRUE(IsAcknowledgement(ask(kSignOnEmpty)));
    EXPECT_TRUE(IsAcknowledgement(ask(kFirst)));
    ask(kSignOn);
    EXPECT_EQ(At(ask(kVersion), 14), 0x12);
    EXPECT_EQ(At(ask(kFirst), 14), 15);
    EXPECT_TRUE(IsAcknowledgement(ask(kFirstCw)));  // two zeros that only a CW expects
    for (const char* body : {"01 04 A0 00 06 0B 00 0C 01 F0 12 35 FF 36", "01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 38",
                             "01 04 A0 00 06 0B 00 0D 01 F0 12 34 FF 36 14 00"}) {
        EXPECT_TRUE(IsAcknowledgement(ask.Raw(BsapFrame(Bytes(body))))) << body;
    }
    EXPECT_EQ(ask.Raw(BsapFrame(Bytes("02 01 85 10"))), "");
    EXPECT_EQ(ask("10 02 01 01 85 10 10 10 03 2C B4"), "");
    ask.station.Options().silentLists.insert(54);
    EXPECT_EQ(ask(kFirst), "");
}

// Behind the leading byte there is the request's serial, and the application sequence as it came; a 10 among them is
// doubled.
TEST(BsapStation, GivesBackTheNumbersOfTheRequestBehindALeadingByte) {
    BsapOptions options = Asker::AlwaysReady();
    Asker ask(options);
    std::set<int> leading;
    for (int i = 0; i < 20; ++i) {
        const std::string reply = ask.Raw(Bytes(kPoll16));
        leading.insert(At(reply, 1));
        EXPECT_EQ(Hex(reply.substr(1, 12)), "10 02 00 10 10 86 01 00 10 10 10 03");
    }
    EXPECT_EQ(leading, (std::set<int>{0x00, 0xFF}));
    EXPECT_EQ(Hex(ask.Raw(Bytes(kFirst)).substr(1, 15)), "10 02 00 04 0B 00 06 A0 00 00 00 00 0F 00 06");
    options.shortLayout = true;
    Asker cw(options);
    EXPECT_EQ(Hex(cw.Raw(Bytes(kFirstCw)).substr(0, 15)), "10 02 00 04 0B 00 06 A0 00 00 00 00 0F 00 06");
}

TEST(BsapStation, CountsForItselfIfItIsOfThatKind) {
    Asker ask(BsapOptions::CountsForItself());
    EXPECT_EQ(Hex(ask.Raw(Bytes(kPoll16)).substr(0, 11)), "10 02 00 01 00 86 01 00 01 10 03");
    EXPECT_EQ(Hex(ask.Raw(Bytes(kFirst)).substr(0, 16)), "10 02 00 02 00 0B 00 00 A0 00 00 00 00 0F 00 06");
}

// An acknowledgement to the request and to the first poll, once in a while.
TEST(BsapStation, IsNotReadyNowAndThen) {
    Asker ask{BsapOptions{}};
    int notReady = 0;
    for (int i = 0; i < 60; ++i) {
        if (IsAcknowledgement(ask.Raw(Bytes(kFirst)))) {
            ++notReady;
            EXPECT_TRUE(IsAcknowledgement(ask.Raw(Bytes(kPoll))));
            EXPECT_EQ(At(ask(kPoll), 14), 15);
        }
    }
    EXPECT_GT(notReady, 3);
    EXPECT_LT(notReady, 30);
}

TEST(BsapStation, SignsOnWithoutTheSequenceBytesThatDidNotFit) {
    Asker ask;
    ask.Raw(BsapFrame(Bytes("01 02 A0 00 0B 00 70 05 01 00")));
    ask.Raw(BsapFrame(Bytes("01 02 A0 0B 00 70 05 01 00")));
    EXPECT_EQ(ask.station.SignOns(), 2);
}

TEST(BsapStation, FindsFramesInPiecesAndNoise) {
    Asker ask;
    const std::string frame = Bytes(kPoll16);
    EXPECT_TRUE(IsAcknowledgement(ask.Raw(Bytes("00 10 02 55 10") + frame)));
    EXPECT_TRUE(IsAcknowledgement(ask.Raw(Bytes("10") + frame)));
    const Moment now{{2026, 3, 9, 8, 0, 0}, 900000};
    for (std::size_t i = 0; i < frame.size(); ++i) {
        EXPECT_EQ(ask.station.Receive(frame.substr(i, 1), now).size(), i + 1 == frame.size() ? 1U : 0U);
    }
}

}  // namespace
}  // namespace fieldsim
