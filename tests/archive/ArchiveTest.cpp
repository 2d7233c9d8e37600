#include <gtest/gtest.h>

#include "archive/bsap/Archive.h"
#include "archive/bsap/ArchiveRecords.h"
#include "archive/bsap/ArchiveReply.h"
#include "core/Text.h"
#include "support/Hex.h"

using namespace archive;
using protocols::longArchive;
using protocols::shortArchive;
using support::Bytes;
using support::Hex;

namespace {

// The counters before a message, so that it carries this link sequence and this application sequence.
protocols::BsapCounters Before(int bsapseq, int appseq) {
    return {bsapseq == 1 ? 255 : bsapseq - 1, (appseq - 2) % 256, (appseq - 2) / 256};
}

// Requests -----------------------------------------------------------------------------------------------------------

TEST(ArchiveRequestTest, EachRequestAsItGoesOverTheLine) {
    auto counters = Before(10, 24);
    EXPECT_EQ(Hex(BuildArchiveInfoRequest(counters, 1, 2)), "10 02 01 0A A0 18 00 0B 00 70 07 04 02 00 10 03 7A 51");
    EXPECT_EQ(Hex(BuildArchiveReadRequest(counters, 1, 2, 272, 4)),
              "10 02 01 0B A0 1A 00 0B 00 70 07 07 02 00 10 10 01 04 10 03 D8 3B");
    EXPECT_EQ(Hex(BuildArchiveDateRequest(counters, 1, 1, {2024, 2, 29, 23, 59, 0})),
              "10 02 01 0C A0 1C 00 0B 00 70 07 06 01 00 4A 43 00 00 10 03 98 A2");
    EXPECT_EQ(Hex(BuildAuditRequest(counters, 1, {3, 4}, 1, 4)),
              "10 02 01 0D A0 1E 00 0B 00 70 03 05 03 04 00 04 01 00 10 03 BE D5");
}

// A byte 10 is sent twice and counts once in the check; behind 255 the link sequence is 1.
TEST(ArchiveRequestTest, ASixteenIsDoubledWhereverItStands) {
    auto counters = Before(1, 4112);
    EXPECT_EQ(Hex(BuildArchiveFieldRequest(counters, 5, 16, 6)),
              "10 02 05 01 A0 10 10 10 10 0B 00 70 07 02 10 10 00 06 00 10 03 E1 C0");
    EXPECT_EQ(counters.bsapseq, 1);
}

TEST(ArchiveRequestTest, DaysCountFromTheEndOf1976) {
    EXPECT_EQ(ArchiveDay({1976, 12, 31, 12, 0, 0}), 0);
    EXPECT_EQ(ArchiveDay({1977, 1, 1}), 1);
    EXPECT_EQ(DateOfArchiveDay(17226), (core::DateTime{2024, 2, 29, 0, 0, 0}));
}

// Replies: the bytes stand where the tables of both layouts have them, counted from 1; EE is what nobody looks at.
// ------

const std::string longHead = "10 02 00 05 00 0B 00 00 A0 00 ";
const std::string shortHead = "10 02 00 05 0B 00 00 A0 00 ";

std::string Reply(const std::string& head, const std::string& rest) {
    return Bytes(head + rest + " 10 03 AA BB");
}

TEST(ArchiveReplyTest, FileInformationOfBothLayouts) {
    const std::string rest = "00 00 EE EE EE EE EE EE EE EE EE 2C 01 05 00 07 00";
    const auto asLong = ParseFileInformation(Reply(longHead, rest), longArchive);
    const auto asShort = ParseFileInformation(Reply(shortHead, rest), shortArchive);
    for (const auto& information : {asLong, asShort}) {
        ASSERT_TRUE(information);
        EXPECT_EQ(information->arcnewest, 300);
        EXPECT_EQ(information->arcoldest, 5);
        EXPECT_EQ(information->arcthird, 7);
    }
    EXPECT_FALSE(ParseFileInformation(Reply(longHead, "00 00 EE EE EE EE EE EE EE EE EE 2C 01 05"), longArchive));
}

const std::string definitions =
    " EE EE EE EE EE EE EE 0A 00 02 44 41 49 4C 59 20 20 20 20 EE EE EE EE EE EE EE EE EE EE EE EE"
    " 50 52 45 53 53 55 52 45 20 20 20 20 20 20 20 20 20 01 02 03 04 05 06 07 08 09 0A"
    " 54 45 4D 50 20 20 20 20 20 20 20 20 20 20 20 20 20 01 02 03 04 05 06 07 08 09 0A";

TEST(ArchiveReplyTest, FieldDefinitionsOfBothLayouts) {
    const auto asLong = ParseFieldDefinitions(Reply(longHead, "00 00" + definitions), longArchive);
    const auto asShort = ParseFieldDefinitions(Reply(shortHead, "00 00" + definitions), shortArchive);
    for (const auto& parsed : {asLong, asShort}) {
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed->status1 + parsed->status2, 0);
        EXPECT_EQ(parsed->fields, 10);
        EXPECT_EQ(parsed->archiveName, "DAILY    ");
        EXPECT_EQ(parsed->names, (std::vector<std::string>{"PRESSURE         ", "TEMP             "}));
    }
    // The second definition is cut off.
    EXPECT_FALSE(
        ParseFieldDefinitions(Reply(longHead, "00 00" + definitions.substr(0, definitions.size() - 3)), longArchive));
}

TEST(ArchiveReplyTest, StatusPairsHaveTheirTexts) {
    const auto status = [](const std::string& pair) {
        return StatusText(
            *ParseFieldDefinitions(Reply(shortHead, pair + " EE EE EE EE EE EE EE 00 00 00"), shortArchive));
    };
    EXPECT_EQ(status("87 81"), "Invalid File Number");
    EXPECT_EQ(status("87 82"), "Invalid Field Number");
    EXPECT_EQ(status("87 83"), "");
    EXPECT_EQ(status("00 81"), "");
}

const std::string twoRecords =
    "4A 43 30 2A 02 00 01 00 1F 85 45 41"   // 29/02/2024 12:00:00, local 2, global 1, 12.345
    "4A 43 FF 7F FF FF 00 80 00 00 00 BF";  // units 32767: 36:24:28; IDs above 32767; -0.5

TEST(ArchiveReplyTest, RecordsOfBothLayouts) {
    const std::string rest = "EE EE EE EE EE EE EE 01 02 34 12 " + twoRecords;
    const auto asLong = ParseRecordReply(Reply(longHead, rest), longArchive, 1);
    const auto asShort = ParseRecordReply(Reply(shortHead, rest), shortArchive, 1);
    for (const auto& parsed : {asLong, asShort}) {
        ASSERT_TRUE(parsed);
        EXPECT_TRUE(parsed->more);
        EXPECT_EQ(parsed->found, 0x1234);
        ASSERT_EQ(parsed->records.size(), 2U);
        EXPECT_EQ(parsed->records[0], Bytes(twoRecords.substr(0, 35)));
    }
    EXPECT_EQ(ArchiveRecordLength(5), 28U);
    // A count that the reply does not hold.
    EXPECT_FALSE(ParseRecordReply(Reply(longHead, "EE EE EE EE EE EE EE 01 03 34 12 " + twoRecords), longArchive, 1));
}

// Records ------------------------------------------------------------------------------------------------------------

TEST(ArchiveRecordsTest, ARecordOfOneField) {
    const ArchiveRecord record = DecodeArchiveRecord(Bytes(twoRecords.substr(0, 35)));
    EXPECT_EQ(ShownTime(record.at), "29/02/2024   12:0:0");
    EXPECT_EQ(record.localID, 2);
    EXPECT_EQ(record.globalID, 1);
    EXPECT_EQ(record.values, (std::vector<double>{12.35}));  // the float lies above 12.345
    // Either zero is 0; what is not quite zero has its leading one.
    const std::string zeros = "4A 43 30 2A 02 00 01 00 00 00 00 00 00 00 00 80 00 00 40 80";
    EXPECT_EQ(DecodeArchiveRecord(Bytes(zeros)).values, (std::vector<double>{0, 0, -1.5}));
}

TEST(ArchiveRecordsTest, AClockWithNonsenseIsShownAsReceived) {
    struct Case {
        const char* bytes;
        const char* shown;
    };
    for (const Case& c : {Case{"00 00 00 00", "31/12/1976   0:0:0"},     // day 0
                          Case{"01 00 E4 57", "01/01/1977   25:0:0"},    // hour 25
                          Case{"4A 43 FF 7F", "29/02/2024   36:24:28"},  // the highest number with a sign
                          Case{"4A 43 00 80", "29/02/2024   0:0:0"},     // above it: no time can be formed
                          Case{"FF FF 00 00", "05/06/2156   0:0:0"}}) {
        EXPECT_EQ(ShownTime(DecodeArchiveRecord(Bytes(std::string(c.bytes) + " 02 00 01 00")).at), c.shown) << c.bytes;
    }
    const ArchiveRecord high = DecodeArchiveRecord(Bytes(twoRecords.substr(35)));
    EXPECT_EQ(high.localID, 0);
    EXPECT_EQ(high.globalID, 0);
    EXPECT_EQ(high.values, (std::vector<double>{-0.5}));
}

// Flags 05, "AB", 29/02/2024 12:00:00 and 25 units of 20 ms, 40, 55.25, twelve characters, local 7, global 9, a word.
const std::string event =
    "05 41 42 00 4A 43 30 2A 19 00 00 20 42 00 00 5D 42 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 07 00 09 00 EE EE ";

TEST(AuditRecordsTest, AnEventOfThirtyFiveBytes) {
    ASSERT_EQ(Bytes(event).size(), 35U);
    const AuditEvent decoded = DecodeAuditRecord(Bytes(event), EventCodes::All);
    EXPECT_EQ(ShownTime(decoded.at), "29/02/2024   12:0:0");  // half a second goes to the even one
    EXPECT_EQ(decoded.description, "AB         40  Analog LowLow Alarm    [55.25]");
    EXPECT_EQ(decoded.localID, 7);
    EXPECT_EQ(decoded.globalID, 9);
}

// Whatever there is of a record is decoded, and what is not there is 0.
TEST(AuditRecordsTest, ARecordThatEndsAnywhereIsNoFault) {
    for (std::size_t length = 0; length < 35; ++length) {
        const AuditEvent decoded = DecodeAuditRecord(Bytes(event).substr(0, length), EventCodes::All);
        EXPECT_EQ(decoded.description.empty(), length < 4) << length;
        EXPECT_EQ(decoded.globalID, length > 31 ? 9 : 0) << length;
    }
}

TEST(AuditRecordsTest, TheEventCodesOfBothKindsOfForms) {
    struct Case {
        unsigned char flags;
        const char* all;
        const char* lowestBit;
    };
    const Case cases[] = {{0, "Signal Value Change", "Signal Value Change"},
                          {1, "Logical Alarm", "Analog Return To Normal"},
                          {2, "Logical Return To Normal", "Signal Value Change"},
                          {3, "Analog Low Alarm", "Analog Return To Normal"},
                          {4, "Analog High Alarm", "Signal Value Change"},
                          {5, "Analog LowLow Alarm", "Analog Return To Normal"},
                          {6, "Analog HighHigh Alarm", "Signal Value Change"},
                          {0xF7, "Analog Return To Normal", "Analog Return To Normal"}};
    for (const Case& c : cases) {
        const auto text = [](const char* name) { return "S         1.2346  " + std::string(name) + "    [-2]"; };
        EXPECT_EQ(AuditDescription("S", 1.23456, -2, c.flags, EventCodes::All), text(c.all));
        EXPECT_EQ(AuditDescription("S", 1.23456, -2, c.flags, EventCodes::LowestBit), text(c.lowestBit));
    }
}

// Two events, the first with flags 00 and an empty name: its NUL is the one behind the flags.
TEST(AuditReplyTest, EventsHaveNoLengthField) {
    const std::string nameless = "00 00" + event.substr(11);
    const std::string rest = "EE EE EE EE EE EE EE 02 01 03 04 02 " + nameless + event;
    const auto asLong = ParseAuditReply(Reply(longHead, rest), longArchive);
    const auto asShort = ParseAuditReply(Reply(shortHead, rest), shortArchive);
    for (const auto& parsed : {asLong, asShort}) {
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed->events, 258);
        EXPECT_EQ(parsed->cursors.a, 3);
        EXPECT_EQ(parsed->cursors.b, 4);
        ASSERT_EQ(parsed->records.size(), 2U);
        EXPECT_EQ(parsed->records[0].size(), 33U);
        EXPECT_EQ(parsed->records[1], Bytes(event));
    }
    EXPECT_FALSE(ParseAuditReply(Reply(longHead, rest.substr(0, rest.size() - 3)), longArchive));
}

}  // namespace
