// A BSAP station's signals by their names: lists, single signals, the search, and programs that change.

#include <gtest/gtest.h>

#include "core/Text.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/Checks.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;
using Names = std::vector<std::string>;

// List 10 has a signal of each kind, list 11 as many numbers "S1.N.V" to "Sn.N.V" as a test wants.
SignalLists Lists(int numbers = 0) {
    std::vector<Signal> many;
    for (int position = 1; position <= numbers; ++position) {
        many.push_back({position, "S" + std::to_string(position) + ".N.V", "", Kind::Float, 1});
    }
    return {{10, std::make_shared<SignalList>(std::vector<Signal>{{1, "M1.FLOW.RATE", "SCMH", Kind::Float, 1.5},
                                                                  {2, "M1.TAP.TYPE", "", Kind::Logical, 1, 68},
                                                                  {3, "M1.DP.HI", "INH2O", Kind::Float, -2, 6},
                                                                  {5, "SITE.NAME.", "", Kind::Text, 0, -1, "KOL"}})},
            {11, std::make_shared<SignalList>(many)}};
}

struct Asker {
    BsapStation station;
    std::uint64_t at = 1000;

    explicit Asker(bool shortLayout = false, int numbers = 0, DataAnswer answers = DataAnswer::AtOnce)
        : station(1, Lists(numbers), Options(shortLayout, answers)) {}
    static BsapOptions Options(bool shortLayout, DataAnswer answers) {
        BsapOptions options;
        options.shortLayout = shortLayout;
        options.notReadyOneIn = 0;
        options.answers = answers;
        return options;
    }
    std::string Raw(const std::string& bytes) {
        at += 1000;
        std::string reply;
        for (const Answer& part : station.Receive(bytes, {{2026, 3, 9, 8, 0, 0}, at})) {
            reply += part.bytes;
        }
        return reply;
    }
    // What stands behind the head of the answer to a function part: where a list goes on or the load version, then the
    // records. "-" is an acknowledgement.
    std::string operator()(const std::string& function) { return Data(Raw(Frame(function))); }
    std::string Poll() { return Data(Raw(BsapFrame(Bytes("01 01 85 10")))); }

    static std::string Frame(const std::string& function) {
        return BsapFrame(Bytes("01 04 A0 00 06 0B 00 " + function));
    }
    std::string Data(const std::string& reply) {
        if (reply.size() >= 11 && reply.size() <= 17) {
            return "-";
        }
        const std::size_t head = station.Options().shortLayout ? 12 : 13;
        const std::string whole = core::ReplaceAll(reply, "\x10\x10", "\x10");
        return whole.size() > head + 4 ? Hex(whole.substr(head, whole.size() - head - 4)) : "";
    }
};

// Floats: 1.5 = 3FC00000, -2 = C0000000. Addresses: 10 * 512 + 1 = 5121 = 1401.
const std::string kRate = "02 00 00 C0 3F 53 43 4D 48 00 00 01 14";
const std::string kTap = "44 01 00 00 00 00 00 00 02 14";
const std::string kHigh = "06 00 00 00 C0 49 4E 48 32 4F 00 03 14";
const std::string kSite = "43 4B 4F 4C 00 05 14";
const std::string kRateName = " 4D 31 2E 46 4C 4F 57 2E 52 41 54 45 00";
const std::string kTapName = " 4D 31 2E 54 41 50 2E 54 59 50 45 00";
const std::string kHighName = " 4D 31 2E 44 50 2E 48 49 00";
const std::string kSiteName = " 53 49 54 45 2E 4E 41 4D 45 2E 00";
const std::string kNothing = "02 00 00 00 00 00 00 00 00 00 00 00 00 00";

TEST(BsapNames, RequestsInBothLayouts) {
    const std::string rate = "4D 31 2E 66 6C 6F 77 2E 52 41 54 45 00";  // in another case
    const struct {
        std::string function;
        std::string plain;
        std::string cw;
    } cases[] = {
        // The list with names: whole on one reply, with the empty place 4. A CW has two zeros behind the list.
        {"0C 05 F9 01 12 34 FF 0A",
         "00 00 " + kRate + kRateName + " " + kTap + kTapName + " " + kHigh + kHighName + " " + kNothing + " " + kSite +
             kSiteName,
         "-"},
        {"0C 05 F9 01 12 34 FF 0A 00 00", "-",
         "00 00 " + kRate + kRateName + " " + kTap + kTapName + " " + kHigh + kHighName + " " + kNothing + " " + kSite +
             kSiteName},
        {"0C 05 F9 01 12 35 FF 0A", "-", "-"},
        {"0C 05 F9 01 12 34 FF 0C", "-", "-"},
        {"0D 05 F9 01 12 34 FF 0A 05 00", "-", "-"},
        // Without names a text is stepped over as a number. 04 14 is the address of the place that never had a signal.
        {"0D 01 D0 12 34 FF 0A 03 00", "00 00 02 00 00 00 00 04 14 43 00 00 00 00 05 14",
         "00 00 02 00 00 00 00 04 14 43 00 00 00 00 05 14"},
        // By address.
        {"00 05 F8 01 12 34 FF 01 01 14", "12 34 " + kRate, "12 34 " + kRate},
        {"00 05 F8 01 12 34 FF 01 02 14", "12 34 " + kTap, "12 34 " + kTap},
        {"00 05 F8 01 12 34 FF 01 05 14", "12 34 " + kSite, "12 34 " + kSite},
        {"00 05 F8 01 12 34 FF 01 04 14", "-", "-"},
        {"00 05 F8 01 12 34 FF 01 00 00", "-", "-"},
        {"00 05 F8 01 13 34 FF 01 01 14", "-", "-"},
        {"00 05 F8 01 12 34 FF 02 01 14", "-", "-"},
        // By name, in their order; the number of names in decimal digits, the end of each name, and all of them there.
        {"04 05 F8 01 FF 01 " + rate, "12 34 " + kRate, "12 34 " + kRate},
        {"04 05 F8 01 FF 03" + kSiteName + kRateName + kTapName, "12 34 " + kSite + " " + kRate + " " + kTap,
         "12 34 " + kSite + " " + kRate + " " + kTap},
        {"04 05 F8 01 FF 02" + kRateName + " 4D 31 00", "-", "-"},
        {"04 05 F8 01 FF 02" + kRateName, "-", "-"},
        {"04 05 F8 01 FF 01 4D 31 2E 46 4C 4F 57 2E 52 41 54 45", "-", "-"},
        {"04 05 F8 01 FF 00", "-", "-"},
        // Search by the beginning, with stars, and by the attribute. Nothing found: no record.
        {"08 05 F9 01 FF 00 00 00 00 80 6D 31 2E 2A 49 00", "00 00 " + kHigh + kHighName, "-"},   // m1.*I
        {"08 05 F9 01 FF 00 00 00 00 82 2A 2E 54 2A 50 45 00", "-", "00 00 " + kTap + kTapName},  // *.T*PE
        {"08 05 F9 01 FF 00 00 00 00 80 4D 31 2E 00",                                             // M1.
         "00 00 " + kRate + kRateName + " " + kTap + kTapName + " " + kHigh + kHighName, "-"},
        {"08 05 F9 01 FF 02 00 00 00 80 4D 31 2E 00", "00 00 " + kHigh + kHighName, "-"},
        {"08 05 F9 01 FF 00 00 00 00 80 31 00", "00 00", "-"},
        {"08 05 F9 01 FF 00 00 00 00 82 31 00", "-", "00 00"},
        {"08 05 F9 01 FF 00 00 00 00 00 48 49 00", "00 00 " + kHigh + kHighName, "-"},
        {"08 05 F9 01 FF 00 00 00 00 20 00", "-", "00 00 " + kSite + kSiteName},
        {"08 05 F9 01 FF 00 00 00 00 00 48 00", "00 00", "-"},
        {"08 05 F9 01 FF 00 00 00 00 80 4D 31 2E", "-", "-"},
        {"08 05 F9 01 FF 00 00 00 00 81 4D 31 2E 00", "-", "-"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Asker(false)(test.function), test.plain) << test.function;
        EXPECT_EQ(Asker(true)(test.function), test.cw) << test.function;
    }
    EXPECT_EQ(Asker(false).Raw(Asker::Frame("08 05 F9 01 FF 00 00 00 00 80 31 00")).size(), 19U);
    EXPECT_EQ(Asker(true).Raw(Asker::Frame("08 05 F9 01 FF 00 00 00 00 82 31 00")).size(), 18U);
}

TEST(BsapNames, FollowTheSignOnAndTheWayOfAnswering) {
    const char* const requests[] = {"0C 05 F9 01 12 34 FF 0A", "00 05 F8 01 12 34 FF 01 01 14",
                                    "04 05 F8 01 FF 01 4D 31 2E 44 50 2E 48 49 00",
                                    "08 05 F9 01 FF 00 00 00 00 80 4D 00"};
    for (const char* request : requests) {
        Asker ask(false, 0, DataAnswer::AcknowledgeFirst);
        EXPECT_EQ(ask(request), "-");
        EXPECT_EQ(ask.Poll(), Asker()(request)) << request;
        ask.station.Options().answers = DataAnswer::Alternate;
        EXPECT_NE(ask(request), ask(request)) << request;
        ask.station.Options().password = "482913";
        EXPECT_EQ(ask(request) + ask(request), "--") << request;
    }
}

// Reads list 11 or searches it as a master does. The names in their order, each with its address.
struct Fetched {
    Names names;
    std::vector<int> addresses;
    int replies = 0;
};

Fetched Fetch(Asker& ask, bool search) {
    Fetched all;
    std::string next = "00 00";
    do {
        const bool first = next == "00 00";
        const std::string answer =
            search ? ask("08 05 F9 01 FF " + next + " 00 00 80 53 2A 2E 4E 2E 00")
                   : ask((first ? "0C 05 F9 01 12 34 FF 0B" : "0D 05 F9 01 12 34 FF 0B ") + (first ? "" : next));
        const std::string bytes = Bytes(answer);
        ++all.replies;
        for (std::size_t at = 2; at + 13 < bytes.size();) {
            const std::size_t end = bytes.find('\0', at + 13);
            all.names.push_back(bytes.substr(at + 13, end - at - 13));
            all.addresses.push_back(ByteAt(bytes, at + 11) + 256 * ByteAt(bytes, at + 12));
            at = end + 1;
        }
        next = answer.substr(0, 5);
    } while (next != "00 00" && next != "-" && all.replies < 1000);
    return all;
}

TEST(BsapNames, GoOnOverManyReplies) {
    // A reply has room for 201 bytes of records: 9 of "S1.N.V" with 20 bytes and one with 21, then 9 of 21 or of 22,
    // then 8 of 23; 10 + 9 * 10 + 1 reply that has both, and so on: 174 for 1500.
    const struct {
        int numbers;
        int replies;
    } cases[] = {{1, 1}, {10, 1}, {11, 2}, {15, 2}, {16, 2}, {1500, 174}};
    for (const bool search : {false, true}) {
        for (const auto& test : cases) {
            Asker ask(false, test.numbers);
            const Fetched all = Fetch(ask, search);
            ASSERT_EQ(all.names.size(), static_cast<std::size_t>(test.numbers));
            EXPECT_EQ(all.replies, test.replies) << test.numbers;
            for (int place = 1; place <= test.numbers; ++place) {
                EXPECT_EQ(all.names[place - 1], "S" + std::to_string(place) + ".N.V");
            }
            EXPECT_EQ(std::set<int>(all.addresses.begin(), all.addresses.end()).size(), all.addresses.size());
        }
    }
}

TEST(BsapNames, EachSignalOfALongListTakesItsOwnWrite) {
    Asker ask(false, 1500);
    const Fetched all = Fetch(ask, false);
    for (const int place : {1, 511, 512, 513, 1500}) {
        const int msd = all.addresses[place - 1];
        const std::string address = Hex(LowHigh(static_cast<std::uint16_t>(msd)));
        ask("80 12 34 FF 01 " + address + " 0B 00 00 C0 3F");
        EXPECT_EQ(ask.station.WritesText().back(),
                  "11-" + std::to_string(place) + " S" + std::to_string(place) + ".N.V = 1.5");
    }
}

TEST(BsapNames, WritesByNameAreTakenWholeOrNotAtAll) {
    const struct {
        const char* write;
        const char* noted;
    } cases[] = {
        {"84 FF 01 6D 31 2E 44 50 2E 48 49 00 0B 00 00 C0 3F", "10-3 M1.DP.HI = 1.5"},
        {"84 FF 01 4D 31 2E 54 41 50 2E 54 59 50 45 00 09", "10-2 M1.TAP.TYPE = 1"},
        {"84 FF 01 53 49 54 45 2E 4E 41 4D 45 2E 00 0D 41 42 00", "10-5 SITE.NAME. = \"AB\""},
        {"84 FF 01 53 49 54 45 2E 4E 41 4D 45 2E 00 0B 00 00 C0 3F", "10-5 SITE.NAME. = 1.5 refused"},
        {"84 FF 01 4D 31 2E 44 50 2E 48 49 00 09", "10-3 M1.DP.HI = 1 refused"},
        {"84 FF 01 4D 31 2E 44 50 2E 48 00 0B 00 00 C0 3F", "0-0 M1.DP.H = 1.5 refused"},
        {"84 FF 01 4D 31 2E 44 50 2E 48 49 00 0B 00 00 C0", "10-3 M1.DP.HI = 0 refused"},
        {"84 FF 01 4D 31 2E 44 50 2E 48 49 00 0B 00 00 C0 3F 00", "10-3 M1.DP.HI = 1.5 refused"},
        {"84 FF 01 4D 31 2E 44 50 2E 48 49 00", "0-0 = 0 refused"},
        {"84 FF 01 4D 31 2E 44 50 2E 48 49", "0-0 = 0 refused"},
        {"84 FF 02 4D 31 2E 44 50 2E 48 49 00 0B 00 00 C0 3F", "0-0 = 0 refused"},
    };
    for (const auto& test : cases) {
        Asker ask;
        EXPECT_EQ(ask(test.write), "-");
        EXPECT_EQ(ask.station.WritesText(), Names{test.noted}) << test.write;
    }
    Asker ask;
    ask(cases[2].write);
    EXPECT_EQ(ask("00 05 F8 01 12 34 FF 01 05 14"), "12 34 43 41 42 00 05 14");
    std::string longText = "80 12 34 FF 01 05 14 0D";
    for (int i = 0; i < 65; ++i) {
        longText += " 41";
    }
    ask(longText + " 00");
    EXPECT_EQ(ask.station.TextOf(10, 5), "AB");
}

// What a list looks like: position, name, and what was written into it.
std::string Shown(const SignalList& list) {
    std::string text = std::to_string(list.Places()) + ":";
    for (const Signal& signal : list.Signals()) {
        const int value = static_cast<int>(list.ValueAt(signal, {2026, 3, 9, 8, 0, 0}));
        text += " " + std::to_string(signal.position) + signal.description + std::to_string(value);
        text += list.Served(signal.description).empty() ? "" : "!";
    }
    return text;
}

TEST(SignalList, WhatWasWrittenAndServedGoesWithItsSignal) {
    SignalList list({{1, "A", "", Kind::Float, 1}, {2, "B", "", Kind::Float, 2}, {4, "D", "", Kind::Float, 4}});
    list.Fix("B", 20);
    list.Serve(*list.Find("D"), {});
    list.FixText(*list.Find("D"), "d");
    EXPECT_EQ(Shown(list), "4: 1A1 2B20 4D4!");
    list.Insert(2, {0, "N", "", Kind::Float, 9});
    EXPECT_EQ(Shown(list), "5: 1A1 2N9 3B20 5D4!");
    EXPECT_TRUE(list.Remove("A"));
    EXPECT_EQ(Shown(list), "4: 1N9 2B20 4D4!");
    EXPECT_EQ(list.Text(*list.Find("D")), "d");
    EXPECT_TRUE(list.Vacate("D"));
    list.Insert(5, {0, "E", "", Kind::Float, 5});
    EXPECT_EQ(Shown(list), "5: 1N9 2B20 5E5");
    EXPECT_TRUE(list.SetValue("B", 3));
    EXPECT_TRUE(list.Replace("E", {0, "D", "", Kind::Text, 0, -1, "t"}));
    EXPECT_EQ(Shown(list), "5: 1N9 2B3 5D0");
    EXPECT_EQ(list.Text(*list.Find("D")), "t");
    EXPECT_FALSE(list.Remove("X") || list.Vacate("X") || list.Replace("X", {}) || list.SetValue("X", 1));
}

TEST(BsapNames, ASignalKeepsItsAddressWhenTheProgramChanges) {
    Asker ask;
    SignalList& list = *ask.station.Lists().at(10);
    list.Insert(2, {0, "NEW", "", Kind::Float, 1});
    list.Remove("M1.FLOW.RATE");
    list.Vacate("M1.TAP.TYPE");
    // NEW, an empty place, M1.DP.HI, the place that was always empty, SITE.NAME.; 1501 and 1401 to 1402 are no one's.
    EXPECT_EQ(ask("0C 05 F9 01 12 34 FF 0A"), "00 00 02 00 00 80 3F 00 00 00 00 00 00 FF FF 4E 45 57 00 " + kNothing +
                                                  " " + kHigh + kHighName + " " + kNothing + " " + kSite + kSiteName);
    EXPECT_EQ(ask("00 05 F8 01 12 34 FF 01 01 14"), "-");
    EXPECT_EQ(ask("00 05 F8 01 12 34 FF 01 03 14"), "12 34 " + kHigh);
    ask("80 12 34 FF 02 03 14 0B 00 00 C0 3F 02 14 09");
    ask("80 12 34 FF 01 FF FF 0B 00 00 C0 3F");
    EXPECT_EQ(ask.station.WritesText(), (Names{"10-3 M1.DP.HI = 1.5 refused", "10-2 = 1 refused", "10-1 NEW = 1.5"}));
}

TEST(BsapNames, SomethingMayHappenBetweenTwoReplies) {
    const struct {
        bool search;
        void (*happens)(SignalList& list);
        const char* eleventh;
        std::size_t names;
    } cases[] = {
        {false, [](SignalList& list) { list.Vacate("S11.N.V"); }, "", 16},
        {false, [](SignalList& list) { list.Remove("S11.N.V"); }, "S12.N.V", 15},
        {false,
         [](SignalList& list) {
             list.Insert(1, {0, "X"});
         },
         "S10.N.V", 17},
        {true, [](SignalList& list) { list.Vacate("S11.N.V"); }, "S12.N.V", 15},
    };
    for (const auto& test : cases) {
        Asker ask(false, 16);
        int times = 0;
        ask.station.Options().betweenReplies = [&] {
            if (++times == 1) {
                test.happens(*ask.station.Lists().at(11));
            }
        };
        const Fetched all = Fetch(ask, test.search);
        EXPECT_EQ(times, 1);
        ASSERT_EQ(all.names.size(), test.names);
        EXPECT_EQ(all.names[10], test.eleventh);
    }
}

}  // namespace
}  // namespace fieldsim
