#include <gtest/gtest.h>

#include "fieldsim/QuantumUnit.h"
#include "protocols/Quantum.h"
#include "support/Hex.h"

using namespace protocols;
using support::Hex;

namespace {

// A reply of unit 7 with these fields, each in 13 characters.
std::string Reply(int message, const std::vector<std::string>& fields) {
    std::string reply(message == 3 ? 22 : 23, 'h');
    for (const std::string& field : fields) {
        reply += field + std::string(13 - field.size(), ' ');
    }
    reply.resize(135, ' ');
    return reply + "\x5A\x03";
}

}  // namespace

TEST(QuantumRequest, Frames) {
    const std::tuple<int, int, const char*> cases[] = {
        {7, 2, "02 30 37 41 30 32 00 F4 03"},
        {12, 1, "02 31 32 41 30 31 00 F9 03"},
        {99, 3, "02 39 39 41 30 33 00 E8 03"},
        {123, 1, "02 31 33 41 30 31 00 F8 03"},  // the first digit of twelve tens
        {7, 12, "02 30 37 41 30 31 00 F5 03"},   // of twelve
        {7, 600, "02 30 37 41 32 38 00 6C 03"},  // 600 is 2 times 256 and 88; the check keeps 7 bits
    };
    for (const auto& [station, message, frame] : cases) {
        EXPECT_EQ(Hex(BuildQuantumRequest(station, "A", message)), frame);
    }
}

TEST(QuantumChecksum, IsZeroForAFullSumAndHasSevenBitsForHighMessages) {
    EXPECT_EQ(QuantumChecksum("\xC0\xC0\xC0\x10"
                              "0"),
              0);                              // without their highest bits 64 + 64 + 64 + 16 + 48 is 256
    EXPECT_EQ(QuantumChecksum("@@@P0"), 192);  // 64 + 64 + 64 + 80 + 48 is 320, 64 of it stay
    EXPECT_EQ(QuantumChecksum("@@@P1"), 63);   // 191 in eight bits
    EXPECT_EQ(QuantumChecksum(""), 0);
}

TEST(QuantumReply, FieldsAsNumbers) {
    const std::pair<const char*, double> cases[] = {
        {"1234.5", 1234.5},
        {"1234,5", 1234.5},
        {"-0.25", -0.25},
        {"1.2345678E+03", 1234.5678},
        {"1.2345678E-03", 0.0012345678},
        {"-1.234568E-03", 0.001234568 * -1},
        {"1,2345678E+03", 1234.5678},
        {"1.5E+02", 150},
        {"1.5E-02", 150},  // the sign is not at its place, the eleventh
        {"1.5E-2", 1.5},   // and "-2" is no exponent
        {"E", 0},
        {"E5", 0},
        {"junk", 0},
        {"9e307E+99", 0},  // no number can hold it
    };
    for (const auto& [field, value] : cases) {
        EXPECT_DOUBLE_EQ(DecodeQuantumReply(Reply(1, {field}), 1)[0], value) << field;
    }
}

TEST(QuantumReply, EightFieldsBehindTheHeadOfTheirMessage) {
    const std::array<double, 8> expected = {1, 2, 3, 4, 5, 6, 7, 8};
    for (const int message : {1, 2, 3}) {
        const std::string reply = Reply(message, {"1", "2,0", "3.0", "4", "5", "0.6E+01", "7", "8"});
        EXPECT_EQ(DecodeQuantumReply(reply, message), expected) << message;
    }
}

TEST(QuantumReply, ShortRepliesCountAsZero) {
    const std::string reply = Reply(2, {"1.5", "2.5"});
    const std::array<double, 8> both = {1.5, 2.5};
    const std::array<double, 8> one = {1.5};
    EXPECT_EQ(DecodeQuantumReply(reply.substr(0, 23 + 16), 2), both);
    EXPECT_EQ(DecodeQuantumReply(reply.substr(0, 23 + 13), 2), one);
    EXPECT_EQ(DecodeQuantumReply(reply.substr(0, 10), 2), (std::array<double, 8>{}));
    EXPECT_EQ(DecodeQuantumReply("", 3), (std::array<double, 8>{}));
}

TEST(QuantumReply, AnEchoIsCutOff) {
    const std::string request = BuildQuantumRequest(7, "A", 1);
    const std::string reply = Reply(1, {"1.5"});
    EXPECT_EQ(CutQuantumEcho(request + reply, request), reply);
    EXPECT_EQ(CutQuantumEcho(reply, request), reply);
    EXPECT_EQ(CutQuantumEcho(request, request), request);
    EXPECT_EQ(CutQuantumEcho("", request), "");
}

TEST(QuantumReply, NamesAreThoseOfTheParameters) {
    EXPECT_EQ(QuantumNames(1)[2], "Cumulative Flowing Volume");
    EXPECT_EQ(QuantumNames(2)[4], "Current  24 hrs MASS");
    EXPECT_EQ(QuantumNames(2)[6], "Current  24 hrsFlowing Volume");
    EXPECT_EQ(QuantumNames(3)[2], "Pressure");
    for (const int message : {1, 2, 3}) {
        const auto& field = fieldsim::QuantumNames(message);
        EXPECT_TRUE(std::equal(field.begin(), field.end(), QuantumNames(message).begin()));
    }
}

// What a unit sends for numbers of all sizes comes back as they are.
TEST(QuantumReply, OfASimulatedUnit) {
    std::vector<fieldsim::Signal> signals;
    const std::array<double, 8> numbers = {0, 18.25, -3.5, 123456789, 0.0012345, 2.5e20, -4.5e-9, 99999};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        signals.push_back(
            {static_cast<int>(i) + 1, std::string(QuantumNames(3)[i]), "", fieldsim::Kind::Decimal, numbers[i]});
    }
    for (const bool echo : {false, true}) {
        fieldsim::QuantumUnit unit(7, std::make_shared<fieldsim::SignalList>(signals), {echo, true, 0, 120});
        const std::string request = BuildQuantumRequest(7, "A", 3);
        const auto answers = unit.Receive(request, {});
        ASSERT_EQ(answers.size(), 1U);
        const auto values = DecodeQuantumReply(CutQuantumEcho(answers[0].bytes, request), 3);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            EXPECT_DOUBLE_EQ(values[i], numbers[i]) << i;
        }
    }
}
