#include <gtest/gtest.h>

#include "archive/bsap/Archive.h"
#include "archive/bsap/ArchiveRecords.h"
#include "archive/bsap/ArchiveReply.h"
#include "core/Text.h"
#include "support/Hex.h"

using namespace archive;
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

// Replies ------------------------------------------------------------------------------------------------------------
// The bytes stand where the descriptions of both layouts have them; EE is what nobody looks at.

const std::string definitions =
    " EE EE EE EE EE EE EE 0A 01 02 44 41 49 4C 59 20 20 20 20 EE EE EE EE EE EE EE EE EE EE EE EE"
    " 50 52 45 53 53 55 52 45 20 20 20 20 20 20 20 20 20 01 02 03 04 05 06 07 08 09 0A"
    " 54 45 4D 50 20 20 20 20 20 20 20 20 20 20 20 20 20 01 02 03 04 05 06 07 08 09 0A";
const std::string records =
    "EE EE EE EE EE EE EE 01 02 34 12"
    " 4A 43 30 2A 02 00 01 00 1F 85 45 41"   // 29/02/2024 12:00:00, local 2, global 1, 12.345
    " 4A 43 FF 7F FF FF 00 80 00 00 00 BF";  // units 32767: 36:24:28; IDs above 32767; -0.5
const std::string oneRecord = records.substr(33, 35);
// Flags 05, "AB", 29/02/2024 12:00:00 and 25 units of 20 ms, 40, 55.25, twelve characters, local 7, global 9, a word.
const std::string event =
    " 05 41 42 00 4A 43 30 2A 19 00 00 20 42 00 00 5D 42 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 07 00 09 00 EE EE";
const std::string nameless = " 00 00" + event.substr(12);

struct Layout {
    const ArchiveLayout& positions;
    const char* head;

    // The first `length` bytes behind the head, in a frame.
    std::string Reply(const std::string& rest, std::size_t length) const {
        return Bytes(head) + Bytes(rest).substr(0, length) + Bytes("10 03 AA BB");
    }
    std::string Reply(const std::string& rest) const { return Reply(rest, rest.size()); }
};

const Layout layouts[] = {{protocols::longArchive, "10 02 00 05 00 0B 00 00 A0 00"},
                          {protocols::shortArchive, "10 02 00 05 0B 00 00 A0 00"}};

TEST(ArchiveReplyTest, WhatTheRepliesOfBothLayoutsHold) {
    for (const Layout& layout : layouts) {
        const auto numbers =
            ParseFileInformation(layout.Reply("00 00 EE EE EE EE EE EE EE EE EE 2C 01 05 02 07 03"), layout.positions);
        EXPECT_EQ(std::tuple(numbers->arcnewest, numbers->arcoldest, numbers->arcthird), std::tuple(300, 517, 775));
        const auto fields = ParseFieldDefinitions(layout.Reply("00 00" + definitions), layout.positions);
        EXPECT_FALSE(fields->Refused());
        EXPECT_EQ(fields->fields, 266);
        EXPECT_EQ(fields->archiveName, "DAILY    ");
        EXPECT_EQ(fields->names, (std::vector<std::string>{"PRESSURE         ", "TEMP             "}));
        const auto found = ParseRecordReply(layout.Reply(records), layout.positions, 1);
        EXPECT_TRUE(found->more);
        EXPECT_EQ(found->found, 0x1234);
        EXPECT_EQ(found->records[0] + found->records[1], Bytes(records.substr(33)));
        // Events have no length field. The NUL of the one without a name is that behind the flags.
        const auto audit =
            ParseAuditReply(layout.Reply("EE EE EE EE EE EE EE 02 01 03 04 02" + nameless + event), layout.positions);
        EXPECT_EQ(std::tuple(audit->events, audit->cursors.a, audit->cursors.b), std::tuple(258, 3, 4));
        EXPECT_EQ(audit->records, (std::vector<std::string>{Bytes(nameless), Bytes(event)}));
    }
}

// What is missing in a reply that was cut must not be taken for zeros. A refusal may end behind its status.
TEST(ArchiveReplyTest, AReplyIsWholeOrNone) {
    const std::string information = "00 00 EE EE EE EE EE EE EE EE EE 2C 01 05 02";
    const std::string audit = "EE EE EE EE EE EE EE 02 01 03 04 02" + nameless + event;
    const auto size = [](const std::string& rest) { return Bytes(rest).size(); };
    for (const Layout& layout : layouts) {
        for (std::size_t length = 0; length <= size("00 00" + definitions); ++length) {
            SCOPED_TRACE(length);
            const auto whole = [&](const std::string& rest) { return length >= size(rest); };
            EXPECT_EQ(ParseFileInformation(layout.Reply(information, length), layout.positions).has_value(),
                      whole(information));
            EXPECT_EQ(ParseFieldDefinitions(layout.Reply("00 00" + definitions, length), layout.positions).has_value(),
                      whole("00 00" + definitions));
            EXPECT_EQ(ParseRecordReply(layout.Reply(records, length), layout.positions, 1).has_value(), whole(records));
            EXPECT_EQ(ParseAuditReply(layout.Reply(audit, length), layout.positions).has_value(), whole(audit));
            const auto refusal =
                ParseFieldDefinitions(layout.Reply("87 81 EE EE EE EE EE EE EE 00 00 00", length), layout.positions);
            EXPECT_EQ(refusal.has_value(), length >= 2);
            EXPECT_EQ(refusal && refusal->endsBehindStatus, length >= 2 && length < 12);
        }
    }
}

TEST(ArchiveReplyTest, StatusPairsHaveTheirTexts) {
    const auto status = [](int first, int second) {
        FieldDefinitions refusal;
        refusal.status1 = first;
        refusal.status2 = second;
        return StatusText(refusal);
    };
    EXPECT_EQ(status(135, 129), "Invalid File Number");
    EXPECT_EQ(status(135, 130), "Invalid Field Number");
    EXPECT_EQ(status(135, 131) + status(0, 129), "");
}

// Records ------------------------------------------------------------------------------------------------------------

TEST(ArchiveRecordsTest, ARecordOfOneField) {
    const ArchiveRecord record = DecodeArchiveRecord(Bytes(oneRecord));
    EXPECT_EQ(ShownTime(record.at), "29/02/2024   12:0:0");
    EXPECT_EQ(record.localID, 2);
    EXPECT_EQ(record.globalID, 1);
    EXPECT_EQ(record.values, (std::vector<double>{12.35}));  // the float lies above 12.345
    // Either zero is 0; what is not quite zero has its leading one.
    const std::string zeros = "4A 43 30 2A 02 00 01 00 00 00 00 00 00 00 00 80 00 00 40 80";
    EXPECT_EQ(DecodeArchiveRecord(Bytes(zeros)).values, (std::vector<double>{0, 0, -1.5}));
    EXPECT_EQ(ArchiveRecordLength(5), 28U);
}

TEST(ArchiveRecordsTest, AClockWithNonsenseIsShownAsReceived) {
    for (const auto& [bytes, shown] : {std::pair{"00 00 00 00", "31/12/1976   0:0:0"},     // day 0
                                       std::pair{"01 00 E4 57", "01/01/1977   25:0:0"},    // hour 25
                                       std::pair{"4A 43 FF 7F", "29/02/2024   36:24:28"},  // the highest with a sign
                                       std::pair{"4A 43 00 80", "29/02/2024   0:0:0"},     // above it none is formed
                                       std::pair{"FF FF 00 00", "05/06/2156   0:0:0"}}) {
        const ArchiveRecord record = DecodeArchiveRecord(Bytes(std::string(bytes) + " FF FF 00 80 00 00 00 BF"));
        EXPECT_EQ(ShownTime(record.at), shown) << bytes;
        EXPECT_EQ(record.localID, 0);  // above 32767, both of them
        EXPECT_EQ(record.globalID, 0);
        EXPECT_EQ(record.values, (std::vector<double>{-0.5}));
    }
    EXPECT_EQ(ArchiveDay({1976, 12, 31, 12, 0, 0}), 0);
    EXPECT_EQ(DateOfArchiveDay(17226), (core::DateTime{2024, 2, 29, 0, 0, 0}));
}

// Whatever there is of a record is decoded, and what is not there is 0.
TEST(AuditRecordsTest, AnEventOfThirtyFiveBytesAndOneThatEndsAnywhere) {
    const AuditEvent decoded = DecodeAuditRecord(Bytes(event), EventCodes::All);
    EXPECT_EQ(ShownTime(decoded.at), "29/02/2024   12:0:0");  // half a second goes to the even one
    EXPECT_EQ(decoded.description, "AB         40  Analog LowLow Alarm    [55.25]");
    EXPECT_EQ(decoded.localID, 7);
    for (std::size_t length = 0; length <= 35; ++length) {
        const AuditEvent part = DecodeAuditRecord(Bytes(event).substr(0, length), EventCodes::All);
        EXPECT_EQ(part.description.empty(), length < 4) << length;
        EXPECT_EQ(part.globalID, length > 31 ? 9 : 0) << length;
    }
    EXPECT_EQ(AuditDescription("S", 1.23456, -2, 0xF7, EventCodes::All),
              "S         1.2346  Analog Return To Normal    [-2]");
    EXPECT_EQ(AuditDescription("S", 1, -2, 0xF6, EventCodes::LowestBit), "S         1  Signal Value Change    [-2]");
}

}  // namespace
