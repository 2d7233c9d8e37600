#include <gtest/gtest.h>

#include "fieldsim/QuantumUnit.h"
#include "protocols/quantum/Quantum.h"
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
    EXPECT_EQ(QuantumChecksum("\xC0\xC0\xC0\x10"
                              "0"),
              0);  // without their highest bits 64 + 64 + 64 + 16 + 48 is 256
    EXPECT_EQ(QuantumChecksum(""), 0);
}

TEST(QuantumReply, FieldsAsNumbers) {
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"1234.5", 1234.5},
        {"1234,5", 1234.5},
        {"-0.25", -0.25},
        {"0.00000", 0},
        {"1.2345678E+03", 1234.5678},
        {"-1.234568E-03", -0.001234568},
        {"1,2345678E+03", 1234.5678},
        {"1.5E-02", 150},  // the sign is not at its place, the eleventh
        {"1.5E-2", 1.5},   // and "-2" is no exponent
        {"", {}},
        {"-", {}},
        {"E5", {}},
        {"1.5E", {}},
        {"1.5E+123", {}},
        {"12.5.3", {}},
        {"12 5", {}},
        {"12.5\x01", {}},
        {"junk", {}},
    };
    for (const auto& [field, value] : cases) {
        const QuantumReply decoded = DecodeQuantumReply(Reply(1, {field}), 1);
        EXPECT_EQ(decoded.fields[0].has_value(), value.has_value()) << field;
        EXPECT_DOUBLE_EQ(decoded.fields[0].value_or(0), value.value_or(0)) << field;
        EXPECT_FALSE(decoded.Whole());
    }
    for (const char* date : {"311299235959", "51126080500", "000000000000", "25.11.26 8:05"}) {
        EXPECT_TRUE(DecodeQuantumReply(Reply(3, {date}), 3).fields[0]) << date;
    }
    for (const char* noDate : {"", "1126080500", "321126080500", "251126240500", "2.5112608E+11", "-51126080500"}) {
        EXPECT_FALSE(DecodeQuantumReply(Reply(3, {noDate}), 3).fields[0]) << noDate;
    }
}

// Whatever the line loses of a reply: what counts as received is what the unit sent.
TEST(QuantumReply, WhatWasCutOffWasNotReceived) {
    const std::vector<std::string> fields = {"1.2345678E+03", "1234.5", "-1.234568E-03", "0.00000", "2",
                                             "9.9999999E+09", "12.25",  "4.5678901E+02"};
    const std::string reply = Reply(1, fields);
    const QuantumReply whole = DecodeQuantumReply(reply, 1);
    ASSERT_TRUE(whole.Whole());
    EXPECT_EQ(whole.fields[6], 12.25);
    for (std::size_t length = 0; length < reply.size(); ++length) {
        const QuantumReply cut = DecodeQuantumReply(reply.substr(0, length), 1);
        EXPECT_EQ(cut.Received(), length < 23 ? 0 : std::min<int>(8, (static_cast<int>(length) - 23) / 13)) << length;
        for (std::size_t i = 0; i < 8; ++i) {
            EXPECT_TRUE(!cut.fields[i] || cut.fields[i] == whole.fields[i]) << length << " " << i;
        }
    }
}

TEST(QuantumReply, AnEchoIsCutOffWhereItStands) {
    const std::string request = BuildQuantumRequest(7, "A", 1);
    const std::string reply = Reply(1, {"1.5"});
    for (const std::string& echo : {std::string(), request, "\x81" + request, request + request}) {
        for (const std::string& rest : {reply, reply.substr(0, 60), reply + "\r\n", std::string()}) {
            EXPECT_EQ(CutQuantumEcho(echo + rest, request), rest);
        }
    }
}

// A unit of the field: its names, its order, its digits for numbers of all sizes.
TEST(QuantumReply, OfASimulatedUnit) {
    const std::array<double, 8> numbers = {251126080500, 18.25, -3.5, 123456789, 0.0012345, 2.5e20, -4.5e-9, 99999};
    for (const int message : {1, 2, 3}) {
        std::vector<fieldsim::Signal> signals;
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            EXPECT_EQ(QuantumNames(message)[i], fieldsim::QuantumNames(message)[i]);
            signals.push_back({static_cast<int>(i) + 1, std::string(QuantumNames(message)[i]), "",
                               fieldsim::Kind::Decimal, numbers[i]});
        }
        for (const bool echo : {false, true}) {
            fieldsim::QuantumUnit unit(7, std::make_shared<fieldsim::SignalList>(signals), {echo, true, 0, 120});
            const std::string request = BuildQuantumRequest(7, "A", message);
            const auto answers = unit.Receive(request, {});
            ASSERT_EQ(answers.size(), 1U);
            const QuantumReply decoded = DecodeQuantumReply(CutQuantumEcho(answers[0].bytes, request), message);
            EXPECT_TRUE(decoded.Whole());
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                EXPECT_NEAR(decoded.fields[i].value_or(0), numbers[i], std::abs(numbers[i]) * 1e-7) << message << i;
            }
        }
    }
}
