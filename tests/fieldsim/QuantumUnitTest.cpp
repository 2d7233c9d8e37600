#include <gtest/gtest.h>

#include "fieldsim/QuantumUnit.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;

const char* const kSevenAsksTwo = "02 30 37 41 30 32 00 F4 03";
const Moment kNow{{2026, 11, 24, 8, 5, 9}, 0};

std::shared_ptr<SignalList> Values() {
    return std::make_shared<SignalList>(
        std::vector<Signal>{{1, "Last 24 hrs MASS", "", Kind::Decimal, 1234.5},
                            {2, "Current  24 hrsFlowing Volume", "", Kind::Decimal, 0.0012345},
                            {3, "Current  24 hrs Energy", "", Kind::Decimal, 123456.5}});
}

std::string Ask(QuantumUnit& unit, const std::string& bytes) {
    std::string answer;
    for (const Answer& part : unit.Receive(bytes, kNow)) {
        answer += part.bytes;
    }
    return answer;
}

TEST(QuantumUnit, FieldsAreThirteenCharactersWithTheSignInTheEleventh) {
    const struct {
        double value;
        bool comma;
        const char* field;
    } cases[] = {{0, false, "0.00000      "},
                 {1234.5, false, "1234.50000   "},
                 {1234.5, true, "1234,50000   "},
                 {0.0012345, false, "1.2345000E-03"},
                 {-0.0012345, true, "-1,234500E-03"},
                 {123456.5, false, "1.2345650E+05"},
                 {241126080509, false, "241126080509 "},
                 {1e15, false, "1.0000000E+15"}};
    for (const auto& test : cases) {
        EXPECT_EQ(QuantumField(test.value, test.comma), test.field);
    }
}

TEST(QuantumUnit, FieldsStandBehindTheHeadAndTheReplyIsAsLongAsMastersKeep) {
    QuantumUnit unit(7, Values());
    for (int message = 1; message <= 3; ++message) {
        std::string request = Bytes(kSevenAsksTwo);
        request[5] = static_cast<char>('0' + message);
        request[7] = static_cast<char>(0xF4 + 2 - message);
        const std::string reply = Ask(unit, request);
        EXPECT_EQ(reply.size(), 137U);
        EXPECT_EQ(reply.substr(message == 3 ? 22 : 23, 2), message == 2 ? "12" : "0.");
    }
    const std::string fields = Ask(unit, Bytes(kSevenAsksTwo)).substr(23);
    EXPECT_EQ(fields.substr(0, 13), "1234.50000   ");
    EXPECT_EQ(fields.substr(6 * 13, 26), "1.2345000E-031.2345650E+05");
    EXPECT_TRUE(unit.Values().WasServed("Last 24 hrs MASS", 1234.5));
}

TEST(QuantumUnit, EchoStandsInFrontOfTheSameReply) {
    QuantumUnit plain(7, Values());
    QuantumUnit echoing(7, Values(), {true});
    const std::string request = Bytes(kSevenAsksTwo);
    EXPECT_EQ(Ask(echoing, request), request + Ask(plain, request));
}

TEST(QuantumUnit, AnswersOnlyWholeFramesForItself) {
    QuantumUnit unit(7, Values(), {false, false, 3});
    const std::string request = Bytes(kSevenAsksTwo);
    EXPECT_EQ(Ask(unit, request.substr(0, 4)), "");
    EXPECT_EQ(Ask(unit, request.substr(4)).size(), 137U);
    EXPECT_EQ(Ask(unit, Bytes("00 02 30 FF") + request).size(), 137U);
    EXPECT_EQ(Ask(unit, Bytes("02 31 32 41 30 31 00 F9 03")), "");  // station 12
    EXPECT_EQ(Ask(unit, Bytes("02 30 37 41 30 32 00 F5 03")), "");  // bad checksum
    EXPECT_EQ(Ask(unit, Bytes("02 30 37 41 30 34 00 F2 03")), "");  // message 4
    EXPECT_EQ(Ask(unit, Bytes("02 30 37 41 30 33 00 F3 03")), "");  // the one that it never answers
}

}  // namespace
}  // namespace fieldsim
