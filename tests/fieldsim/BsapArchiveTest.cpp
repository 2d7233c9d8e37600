// A BSAP station gives out its archive files and its audit trail.

#include <gtest/gtest.h>

#include "core/Text.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/Checks.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;

const char* const kReadFile2From272 = "10 02 01 0B A0 1A 00 0B 00 70 07 07 02 00 10 10 01 04 10 03 D8 3B";
const char* const kPoll = "10 02 01 01 85 10 10 10 03 2C B5";

struct Asker {
    BsapStation station;
    std::size_t back;  // what the short layout has less in front of the data
    std::uint64_t at = 1000;

    explicit Asker(bool shortLayout = false) : station(1, {}), back(shortLayout ? 1 : 0) {
        station.Options().shortLayout = shortLayout;
        station.Options().notReadyOneIn = 0;
    }

    std::string Raw(const std::string& bytes) {
        const auto answers = station.Receive(bytes, {{2026, 3, 9, 8, 0, 0}, at += 1000});
        return answers.empty() ? std::string() : answers.front().bytes;
    }
    // The reply to a function part, with its pairs undone, as masters read it.
    std::string operator()(const std::string& function) {
        return core::ReplaceAll(Raw(BsapFrame(Bytes("01 05 A0 1A 00 0B 00") + function)), "\x10\x10", "\x10");
    }
    // A byte and a word at a position of the long layout, from 1.
    int At(const std::string& reply, std::size_t position) const {
        return position - back <= reply.size() ? ByteAt(reply, position - back - 1) : -1;
    }
    int WordAt(const std::string& reply, std::size_t position) const {
        return At(reply, position) + 256 * At(reply, position + 1);
    }

    std::string Info() {
        const std::string reply = (*this)(Bytes("70 07 04 02 00"));
        return std::to_string(WordAt(reply, 22)) + " " + std::to_string(WordAt(reply, 24));
    }
    // "4-7, more": what a record reply holds, by the local IDs, which are the numbers here; each record has 12 bytes.
    std::string Records(const std::string& function) {
        const std::string reply = (*this)(function);
        const auto count = static_cast<std::size_t>(At(reply, 19));
        EXPECT_EQ(reply.size(), 21 - back + count * 12 + 4);
        EXPECT_TRUE(count == 0 || WordAt(reply, 20) == WordAt(reply, 26));
        return (count == 0 ? "none"
                           : std::to_string(WordAt(reply, 26)) + "-" + std::to_string(WordAt(reply, 14 + count * 12))) +
               (At(reply, 18) == 0 ? ", end" : ", more");
    }
    std::string Read(int number, int count) {
        return Records(Bytes("70 07 07 02 00") + LowHigh(static_cast<std::uint16_t>(number)) +
                       static_cast<char>(count));
    }
    // From a day after 31 December 1976.
    std::string From(int day) {
        return Records(Bytes("70 07 06 02 00") + LowHigh(static_cast<std::uint16_t>(day)) + Bytes("00 00"));
    }
};

bool IsAcknowledgement(const std::string& reply) {
    return reply.size() >= 11 && reply.size() <= 17;
}

// File 1: a record of 28 February 2024 and one of 1 March. File 2: numbers 271 to 273, the last one with a time of
// nonsense. 1028 events, of which only the last is told.
void Fill(BsapStation& station) {
    station.Archives()[1] = {"DAILY", {"A"}, {{{2024, 2, 28, 6, 0, 0}}, {{2024, 3, 1, 6, 0, 0}, {}, 3, 4, {100}}}};
    station.Archives()[2] = {"HOURLY",
                             {"STATIC PRESSURE", "TEMP"},
                             {{{2024, 2, 29, 11, 0, 0}},
                              {{2024, 2, 29, 12, 0, 0}, {}, 1, 2, {1.5, -2.25}},
                              {{}, TimeBytes{0xFF, 0xFE, 0xFD, 0xFC}, -1, 16, {}}},
                             271};
    station.Audit().events.resize(1027);
    station.Audit().events.push_back({5, "AB", {2024, 2, 29, 12, 0, 0}, {}, 25, 1.5, -2.25, "OPERATOR", 1, 2, 3});
}

TEST(BsapArchive, AnswersEachRequestInBothLayouts) {
    struct Case {
        const char* request;
        const char* data;  // behind the status, on the line, without the check
    };
    // In front stands the start of the request. A record: day 17226 = 434A hex, 10800 units of 4 s = 2A30 hex, the
    // IDs, 1.5 = 3FC00000, -2.25 = C0100000.
    const Case cases[] = {
        {"10 02 01 0A A0 18 00 0B 00 70 07 04 02 00 10 03 7A 51", "70 07 04 02 00 00 00 00 13 01 0F 01 03 00"},
        {kReadFile2From272,
         "70 07 07 02 00 02 10 10 01 4A 43 30 2A 01 00 02 00 00 00 C0 3F 00 00 10 10 C0 "
         "FF FE FD FC FF FF 10 10 00 00 00 00 00 00 00 00 00"},
        {"10 02 01 0C A0 1C 00 0B 00 70 07 06 01 00 4A 43 00 00 10 03 98 A2",
         "70 07 06 01 00 01 01 00 4B 43 18 15 03 00 04 00 00 00 C8 42"},
        {"10 02 01 0D A0 1E 00 0B 00 70 03 05 03 04 00 04 01 00 10 03 BE D5",
         "70 03 05 03 04 04 04 04 01 05 41 42 00 4A 43 30 2A 19 00 00 C0 3F 00 00 10 10 C0 "
         "4F 50 45 52 41 54 4F 52 20 20 20 20 01 00 02 00 03 00"},
        {"10 02 01 0E A0 20 00 0B 00 70 07 02 02 00 00 00 10 03 80 4C",
         "70 07 02 02 00 00 02 00 02 48 4F 55 52 4C 59 20 20 20 00 00 00 00 00 00 00 00 00 00 00 00 "
         "53 54 41 54 49 43 20 50 52 45 53 53 55 52 45 20 20 00 00 00 00 00 00 00 00 00 00 "
         "54 45 4D 50 20 20 20 20 20 20 20 20 20 20 20 20 20 00 00 00 00 00 00 00 00 00 00"},
    };
    for (const bool shortLayout : {false, true}) {
        for (const Case& row : cases) {
            Asker ask(shortLayout);
            Fill(ask.station);
            const std::string reply = ask.Raw(Bytes(row.request));
            const std::string request = row.request;
            const std::string head =
                ("10 02 00 " + request.substr(9, 2)) + " 0B " + request.substr(15, 5) + " A0 00 00 00 00 ";
            EXPECT_EQ(Hex(reply.substr(shortLayout ? 0 : 1, reply.size() - (shortLayout ? 2 : 3))),
                      head + row.data + " 10 03")
                << row.request;
        }
    }
}

TEST(BsapArchive, NumbersRunFromTheOldestToTheNewest) {
    struct Case {
        int oldest, records, number, asked;
        const char* info;
        const char* reply;
    };
    const Case cases[] = {
        {0, 10, 0, 4, "11 0", "0-3, more"},
        {0, 10, 6, 4, "11 0", "6-9, end"},
        {0, 10, 8, 4, "11 0", "8-9, end"},
        {0, 10, 10, 4, "11 0", "none, end"},  // the one that is being formed
        {0, 10, 65535, 4, "11 0", "none, end"},
        {0, 40, 3, 0, "41 0", "3-18, more"},  // as many as fit: 16
        {5000, 10, 0, 4, "5011 5000", "5000-5003, more"},
        {5000, 10, 4999, 4, "5011 5000", "5000-5003, more"},
        {5000, 10, 5009, 1, "5011 5000", "5009-5009, end"},
        {5000, 10, 5010, 4, "5011 5000", "none, end"},
        {0, 0, 0, 4, "0 0", "none, end"},
        {7, 1, 7, 4, "9 7", "7-7, end"},
        {0, 10000, 9998, 4, "10001 0", "9998-9999, end"},
        {65530, 10, 65534, 4, "5 65530", "65534-1, more"},  // behind 65535 comes 0
        {65530, 10, 0, 4, "5 65530", "0-3, end"},
        {65530, 10, 65529, 4, "5 65530", "65530-65533, more"},
        {65530, 10, 4, 4, "5 65530", "none, end"},
    };
    for (const bool shortLayout : {false, true}) {
        for (const Case& row : cases) {
            Asker ask(shortLayout);
            ArchiveFile& file = ask.station.Archives()[2];
            file = {"F", {"A"}, {}, row.oldest};
            for (int i = 0; i < row.records; ++i) {
                file.records.push_back({{2026, 1, 1, 0, 0, 0}, {}, row.oldest + i});
            }
            EXPECT_EQ(ask.Info(), row.info);
            EXPECT_EQ(ask.Read(row.number, row.asked), row.reply) << row.oldest << " " << row.number;
        }
    }
}

TEST(BsapArchive, FindsTheFirstRecordOfADayOrALaterOne) {
    Asker ask;
    ArchiveFile& file = ask.station.Archives()[2];
    file = {"F", {"A"}, {}, 30};
    EXPECT_EQ(ask.From(0), "none, end");
    // Two records on each of the days 17900, 17903, ... 17957.
    for (int i = 0; i < 40; ++i) {
        const int day = 17900 + i / 2 * 3;
        file.records.push_back(
            {{}, TimeBytes{static_cast<std::uint8_t>(day), static_cast<std::uint8_t>(day / 256)}, 30 + i});
    }
    const std::pair<int, const char*> cases[] = {{0, "30-45, more"},     {-100, "30-45, more"},  {17900, "30-45, more"},
                                                 {17901, "32-47, more"}, {17903, "32-47, more"}, {17933, "52-67, more"},
                                                 {17934, "54-69, end"},  {17957, "68-69, end"},  {17958, "none, end"}};
    for (const auto& [day, reply] : cases) {
        EXPECT_EQ(ask.From(day), reply) << day;
    }
}

TEST(BsapArchive, EventsGoOnWhereTheCursorsSay) {
    for (const bool shortLayout : {false, true}) {
        Asker ask(shortLayout);
        const auto audit = [&](const std::string& cursors, int asked, int position) {
            return ask(Bytes("70 03 05") + cursors + '\0' + static_cast<char>(asked) +
                       LowHigh(static_cast<std::uint16_t>(position)));
        };
        // "10: 4 from 1": the record count, and the events by their IDs; each event has 35 bytes.
        const auto told = [&](const std::string& reply) {
            const int count = ask.At(reply, 22);
            EXPECT_EQ(reply.size(), 22 - ask.back + static_cast<std::size_t>(count) * 35 + 4);
            return std::to_string(ask.WordAt(reply, 18)) + ": " + std::to_string(count) +
                   (count > 0 ? " from " + std::to_string(ask.WordAt(reply, 23 + 29)) : "");
        };
        const std::string none = LowHigh(0);
        EXPECT_EQ(told(audit(none, 4, 1)), "0: 0");
        for (int i = 1; i <= 10; ++i) {
            ask.station.Audit().events.push_back({0, "AB", {}, {}, 0, 0, 0, "", i});
        }
        const std::pair<int, const char*> starts[] = {
            {0, "10: 4 from 1"}, {1, "10: 4 from 1"}, {2, "10: 4 from 2"}, {9, "10: 2 from 9"}, {11, "0: 0"}};
        for (const auto& [position, reply] : starts) {
            EXPECT_EQ(told(audit(none, 4, position)), reply) << position;
        }
        std::string reply = audit(none, 0, 1);  // as many as fit
        for (const char* next : {"10: 5 from 1", "10: 3 from 6", "10: 2 from 9", "0: 0", "0: 0"}) {
            EXPECT_EQ(told(reply), next);
            reply = audit(reply.substr(19 - ask.back, 2), 3, 1);
        }
    }
}

TEST(BsapArchive, DefinitionsComeInSeveralRepliesAndCanBeRefused) {
    for (const bool shortLayout : {false, true}) {
        Asker ask(shortLayout);
        const auto definitions = [&](int file, int index) {
            const std::string reply =
                ask(Bytes("70 07 02") + static_cast<char>(file) + '\0' + static_cast<char>(index) + '\0');
            EXPECT_GT(reply.size(), 23U);
            return std::to_string(ask.At(reply, 11)) + " " + std::to_string(ask.At(reply, 12)) + ", " +
                   std::to_string(ask.At(reply, 22)) + " of " + std::to_string(ask.WordAt(reply, 20)) + ": " +
                   reply.substr(43 - ask.back, 2);
        };
        ask.station.Archives()[2] = {"F", {"F0", "F1", "F2", "F3", "F4", "F5", "F6", "F7"}};
        EXPECT_EQ(definitions(2, 0), "0 0, 6 of 8: F0");
        EXPECT_EQ(definitions(2, 6), "0 0, 2 of 8: F6");
        EXPECT_EQ(definitions(2, 8).substr(0, 15), "135 130, 0 of 0");
        EXPECT_EQ(definitions(3, 0).substr(0, 15), "135 129, 0 of 0");
        ask.station.Archives()[2].definitionStatus = {1, 2};
        EXPECT_EQ(definitions(2, 0).substr(0, 11), "1 2, 0 of 0");
        EXPECT_EQ(ask.Info(), "0 0");
        for (const char* request : {"70 07 04 03 00", "70 07 07 03 00 01 00 04", "70 07 06 03 00 4A 43 00 00"}) {
            const std::size_t size = ask(Bytes(request)).size();
            EXPECT_TRUE(size >= 18 && size <= 20) << size;
        }
    }
}

TEST(BsapArchive, AcknowledgesFirstOrWhatItDoesNotServe) {
    Asker ask(true);
    ask.station.Options().answers = DataAnswer::AcknowledgeFirst;
    Fill(ask.station);
    EXPECT_TRUE(IsAcknowledgement(ask.Raw(Bytes(kReadFile2From272))));
    EXPECT_EQ(ask.At(ask.Raw(Bytes(kPoll)), 19), 2);
    ask.station.Options().answers = DataAnswer::AtOnce;
    for (const char* function : {"70 07 04 02", "70 07 05 02 00", "70 07 07 02 00 10 01", "70 03 05 00 00 00 04 01"}) {
        EXPECT_TRUE(IsAcknowledgement(ask(Bytes(function)))) << function;
    }
    EXPECT_EQ(ask.Raw(BsapFrame(Bytes("02 05 A0 1A 00 0B 00 70 07 04 02 00"))), "");
    ask.station.Options().password = "482913";
    EXPECT_TRUE(IsAcknowledgement(ask.Raw(Bytes(kReadFile2From272))));
}

}  // namespace
}  // namespace fieldsim
