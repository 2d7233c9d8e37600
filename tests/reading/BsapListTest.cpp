#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fieldsim/BsapFrame.h"
#include "fieldsim/Device.h"
#include "protocols/FieldTalk.h"
#include "reading/BsapList.h"
#include "support/Hex.h"

using namespace reading;
using support::Bytes;
using support::Hex;

namespace {

// 1.5, and 9, whose bytes hold a 10.
const std::string onePointFive = Bytes("00 00 C0 3F");
const std::string nine = Bytes("00 00 10 41");

std::string Analog(const std::string& value, int msd = 0, int code = 2, std::string unit = "KG") {
    unit.resize(6, '\0');
    return static_cast<char>(code) + value + unit + static_cast<char>(msd % 256) + static_cast<char>(msd / 256);
}

std::string Logical(int value, int msd = 0, int code = 0) {
    return std::string{static_cast<char>(code), static_cast<char>(value)} + std::string(6, ' ') +
           static_cast<char>(msd % 256) + static_cast<char>(msd / 256);
}

std::string Times(int count, const std::string& record) {
    std::string records;
    for (int i = 0; i < count; ++i) {
        records += record;
    }
    return records;
}

// The reply with these records; `next` is where the list goes on.
std::string LongReply(int next, const std::string& records, const char* head = "00 05 00 0B 00 00 A0 00 00 00 00") {
    return fieldsim::BsapFrame(Bytes(head) + static_cast<char>(next % 256) + static_cast<char>(next / 256) + records);
}

std::string ShortReply(int next, const std::string& records) {
    return LongReply(next, records, "00 05 0B 00 00 A0 00 00 00 00");
}

const std::string acknowledgement = fieldsim::BsapFrame(Bytes("00 05 00 86 01 00 05"));

class BsapListTest : public testing::Test, public support::ScriptedTalk {
  public:
    BsapListTest() {
        talk.station.slaveaddress = 1;
        talk.bsap.loadversion1 = 0x12;
        talk.bsap.loadversion2 = 0x34;
        line.PortOpen(true);
    }

    BsapList Read(std::deque<std::string> replies, core::ValueKind kind = core::ValueKind::Float) {
        line.sent.clear();
        line.replies = std::move(replies);
        return getdata_BSAP(talk, kind == core::ValueKind::Float ? 54 : 55, kind, names);
    }

    std::vector<ListEntry> names;
};

// The values by position, from 1.
std::vector<double> Values(const BsapList& list) {
    std::vector<double> values;
    for (std::size_t n = 1; n < list.signals.size(); ++n) {
        values.push_back(list.signals[n].value);
    }
    return values;
}

// The part of a list request that says where it goes on.
std::string Asked(const std::string& frame) {
    return Hex(frame.substr(9, frame.size() - 13));
}

}  // namespace

TEST_F(BsapListTest, SeveralRepliesInBothLayouts) {
    for (const bool isCW : {false, true}) {
        talk.station.isCW = isCW;
        const auto reply = [isCW](int next, const std::string& records) {
            return isCW ? ShortReply(next, records) : LongReply(next, records);
        };
        names = {{}, {"Static", ""}, {}, {"Alarm", ""}, {"Not there", ""}};
        const BsapList list = Read({reply(0x0102, Analog(onePointFive, 300) + Analog(nine, 16, 50, "M\xB3/HR")),
                                    reply(0, Logical(5, 513, 68))});
        EXPECT_TRUE(list.collstatus);
        EXPECT_EQ(Values(list), (std::vector<double>{1.5, 9, 1}));
        EXPECT_EQ(list.signals[1].MSD, 300);
        EXPECT_EQ(list.signals[1].unit, "KG");
        EXPECT_EQ(list.signals[2].MSD, 16);
        EXPECT_EQ(list.signals[2].unit, "M³/HR");
        EXPECT_EQ(list.signals[3].MSD, 513);
        EXPECT_EQ(list.signals[3].unit, "");
        EXPECT_EQ(list.resultline, "#Static=1.5?KG#Alarm=1?");
        ASSERT_EQ(line.sent.size(), 2U);
        EXPECT_EQ(Asked(line.sent[0]), isCW ? "0C 01 F0 12 34 FF 36 00 00" : "0C 01 F0 12 34 FF 36");
        EXPECT_EQ(Asked(line.sent[1]), "0D 01 F0 12 34 FF 36 02 01");
    }
}

TEST_F(BsapListTest, LogicalListHasItsWords) {
    names = {{}, {"Tap Type", ""}, {"Tap Type", ""}, {"", ""}, {"Valve", ""}};
    const BsapList list =
        Read({LongReply(0, Logical(1) + Logical(0) + Logical(1) + Logical(5))}, core::ValueKind::Logical);
    EXPECT_EQ(list.resultline, "#Tap Type=PIPE#Tap Type=FLANGE#Valve=1");
    EXPECT_EQ(Asked(line.sent[0]), "0C 01 F0 12 34 FF 37");
    EXPECT_EQ(desk.feedback.status, std::vector<std::string>{"Collecting Data....."});
}

TEST_F(BsapListTest, AcknowledgedFirstAndLogged) {
    Read({LongReply(0x0102, Analog(nine))});  // and then silence: the next list begins at its beginning
    const auto before = desk.clock.Elapsed();
    desk.shared.logGenflag = true;
    const BsapList list =
        Read({acknowledgement, LongReply(0x0102, Analog(onePointFive)), "ok", LongReply(0, Analog(nine))});
    EXPECT_EQ(Values(list), (std::vector<double>{1.5, 9}));
    EXPECT_EQ(line.sent.size(), 4U);  // request, poll, acknowledge, request
    EXPECT_EQ(Asked(line.sent[0]), "0C 01 F0 12 34 FF 36");
    EXPECT_EQ(desk.clock.Elapsed() - before, 4 * 2000U);
    const std::string log = support::FileText(desk.shared.logpath);
    EXPECT_EQ(log.substr(0, 26), "\rGet List 54 Response\n\r10 ");
    EXPECT_NE(log.find("\rGet List UP_ACK Response\n\r6F 6B \n"), std::string::npos);
}

TEST_F(BsapListTest, FourBadRepliesInARowEndIt) {
    const std::string empty = LongReply(0, "");  // 19 bytes
    EXPECT_TRUE(Read({empty}).collstatus);
    const std::string bad = fieldsim::BsapFrame(std::string(12, '\1'));  // 18 bytes
    const BsapList list = Read({LongReply(1, Analog(nine)), bad, bad, bad, LongReply(2, Analog(nine)), bad, bad, bad,
                                bad, LongReply(0, Analog(nine))});
    EXPECT_FALSE(list.collstatus);
    EXPECT_EQ(line.sent.size(), 1U + 4 + 4);
    EXPECT_EQ(Values(list), (std::vector<double>{9, 9}));
    EXPECT_EQ(desk.feedback.status.back(), "Error Occured in Communication");

    talk.bsap.usepoll = true;  // whose replies are longer
    EXPECT_FALSE(Read({empty}).collstatus);
    EXPECT_EQ(line.sent.size(), 4U);
    EXPECT_TRUE(Read({LongReply(0, Logical(1))}).collstatus);
}

// Each of these, taken for the second reply, would put later values under other names.
TEST_F(BsapListTest, OddRepliesAreAskedForAgain) {
    const std::string first = LongReply(2, Times(2, Analog(onePointFive)));
    const std::string second = LongReply(4, Times(2, Analog(nine)));
    const std::string last = LongReply(0, Analog(onePointFive));
    // Values that must not be among those read.
    const std::string other = Analog(Bytes("00 00 20 40"));
    const std::string spoilt = LongReply(4, Times(2, other));
    std::string lostByte = spoilt;
    lostByte.erase(20, 1);
    const std::pair<const char*, std::string> cases[] = {
        {"a repeat of the first", first},
        {"cut at a record", LongReply(4, Times(3, other)).substr(0, spoilt.size())},
        {"cut in a record", spoilt.substr(0, spoilt.size() - 7)},
        {"two in one", spoilt + spoilt},
        {"without a byte of a record", lostByte},
        {"a whole frame that ends within a record", LongReply(4, other + other.substr(0, 9))},
    };
    for (const auto& [name, odd] : cases) {
        SCOPED_TRACE(name);
        const BsapList list = Read({first, odd, second, last});
        EXPECT_TRUE(list.collstatus);
        EXPECT_EQ(Values(list), (std::vector<double>{1.5, 1.5, 9, 9, 1.5}));
        EXPECT_EQ(line.sent.size(), 4U);
    }
}

// The check is not escaped: where it is 10 10, its two bytes are no pair, and the last record keeps its last byte.
TEST_F(BsapListTest, WhatStandsAroundAReplyCostsNothing) {
    const std::string reply = LongReply(0, Analog(onePointFive, 3775));
    ASSERT_EQ(Hex(reply.substr(reply.size() - 4)), "10 03 10 10");
    for (const std::string& received :
         {reply, "\xFF" + reply, reply + "\xFF", Bytes("10 02 01 05 A0 00 08 0B 00 0D 01 10 03 CC 77") + reply}) {
        const BsapList list = Read({received});
        EXPECT_EQ(line.sent.size(), 1U);
        ASSERT_EQ(Values(list), std::vector<double>{1.5});
        EXPECT_EQ(list.signals[1].MSD, 3775);
    }
}

// A station that takes longer than a commtimeout answers each request while a later one is out.
TEST(BsapListLate, RepliesAreNotTakenForThoseToLaterRequests) {
    struct Station final : fieldsim::Device {
        std::uint32_t lateMs = 0;
        int asked = 0;
        std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment&) override {
            ++asked;
            const std::string request = Asked(std::string(bytes));
            if (request == "0C 01 F0 00 00 FF 37") {
                return {{LongReply(0, Times(3, Logical(1))), lateMs}};
            }
            if (request == "0C 01 F0 00 00 FF 36") {
                return {{LongReply(1, Analog(onePointFive)), lateMs}};
            }
            const bool second = request == "0D 01 F0 00 00 FF 36 01 00";
            return {{second ? LongReply(2, Analog(nine)) : LongReply(0, Times(2, Analog(onePointFive))), lateMs}};
        }
    };
    const std::pair<std::uint32_t, int> cases[] = {{1500, 1}, {2500, 2}, {4500, 3}, {6500, 4}};
    for (const auto& [lateMs, sendsPerReply] : cases) {
        SCOPED_TRACE(lateMs);
        Station station;
        station.lateMs = lateMs;
        support::SimulatedTalk desk;
        desk.ports.Attach(1, station);
        desk.line.PortOpen(true);
        EXPECT_EQ(Values(getdata_BSAP(desk.talk, 55, core::ValueKind::Logical, {})), (std::vector<double>{1, 1, 1}));
        EXPECT_EQ(Values(getdata_BSAP(desk.talk, 54, core::ValueKind::Float, {})),
                  (std::vector<double>{1.5, 9, 1.5, 1.5}));
        EXPECT_EQ(station.asked, 4 * sendsPerReply);
    }
}

TEST_F(BsapListTest, EndsAtTheLastPositionAndWhenItNeverEnds) {
    int next = 0;
    line.answer = [&next](const std::string&) { return LongReply(15 * ++next, Times(15, Analog(nine))); };
    names.assign(500, {"N", ""});
    BsapList list = Read({});
    EXPECT_TRUE(list.collstatus);
    EXPECT_EQ(line.sent.size(), 27U);
    EXPECT_EQ(list.signals.size(), 401U);
    EXPECT_EQ(list.resultline.size(), 400 * std::string("#N=9?KG").size());
    line.answer = [&next](const std::string&) { return LongReply(++next, Times(16, Logical(1))); };
    list = Read({}, core::ValueKind::Logical);
    EXPECT_TRUE(list.collstatus);
    EXPECT_EQ(list.signals.size(), 81U);
    EXPECT_EQ(line.sent.size(), 5U);

    line.answer = [&next](const std::string&) { return LongReply(++next, ""); };
    EXPECT_FALSE(Read({}).collstatus);
    EXPECT_EQ(line.sent.size(), 400U);
    line.answer = [](const std::string&) { return LongReply(7, Analog(nine)); };  // for ever the same
    list = Read({});
    EXPECT_FALSE(list.collstatus);
    EXPECT_EQ(Values(list), std::vector<double>{9});
}

TEST(BsapListRecords, Kinds) {
    struct Case {
        std::string record;
        bool isTeleCorrector;
        double value;
        const char* type;
    };
    const Case cases[] = {
        {Analog(Bytes("00 00 C0 BF")), false, -1.5, "Analog(2)"},
        {Analog(Bytes("00 00 00 80")), false, 0, "Analog(2)"},  // a negative zero
        {Analog(nine, 0, 6), false, 9, "Analog Alarm(6)"},
        {Analog(nine, 0, 50), false, 9, "System Signal(50)"},
        {Analog(nine, 0, 32), false, 9, "Unknown(32)"},
        {Logical(1, 0, 32), true, 1, "Logical(32)"},
        {Logical(0), false, 0, "Logical(0)"},
        {Logical(255, 0, 4), false, 1, "Logical Alarm(4)"},
        {Logical(1, 0, 68), true, 1, "Logical(68)"},
        {Analog(Bytes("00 00 80 7F")), false, 0, "Analog(2)"},     // infinite
        {Analog(Bytes("C3 F5 48 40")), false, 3.14, "Analog(2)"},  // 3.1400001 at six decimals
        {Analog(Bytes("79 E9 F6 42")), false, 123.456001, "Analog(2)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.type);
        const ListRecords records =
            ReadRecords("head" + c.record + Analog(onePointFive) + "tail", {5, true, c.isTeleCorrector});
        ASSERT_EQ(records.signals.size(), 2U);
        EXPECT_TRUE(records.whole);
        EXPECT_DOUBLE_EQ(records.signals[0].value, c.value);
        EXPECT_EQ(SignalTypeText(records.signals[0]), c.type);
        EXPECT_EQ(records.signals[1].value, 1.5);
    }
}

// Short records stand at the same distances as long ones. Nothing is taken from the trailer.
TEST(BsapListRecords, EndWithTheReply) {
    const std::string record = Analog(onePointFive, 300);
    const std::string whole = "head" + Times(2, record) + "tail";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ListRecords records = ReadRecords(whole.substr(0, length), {5, true, false});
        const std::size_t room = length < 8 ? 0 : length - 8;
        EXPECT_EQ(records.signals.size(), room / record.size()) << length;
        EXPECT_EQ(records.whole, length >= 8 && room % record.size() == 0) << length;
    }
    const std::string analog = Bytes("02 00 00 C0 3F 2C 01");
    const std::string logical = Bytes("04 01 10 00") + std::string(6, 'x');
    const ListRecords records =
        ReadRecords("head" + analog + std::string(6, 'x') + logical + analog + "tail", {5, false, false});
    ASSERT_EQ(records.signals.size(), 3U);
    EXPECT_TRUE(records.whole);
    EXPECT_EQ(records.signals[0].MSD, 300);
    EXPECT_EQ(records.signals[0].unit, "");
    EXPECT_EQ(records.signals[1].MSD, 16);
    EXPECT_EQ(records.signals[1].value, 1);
    EXPECT_EQ(records.signals[2].value, 1.5);
}
