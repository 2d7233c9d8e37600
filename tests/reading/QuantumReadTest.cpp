// Replies of a Quantum unit that the line cuts, on a line with echo.

#include <gtest/gtest.h>

#include "collection/CollectionRun.h"
#include "fieldsim/QuantumUnit.h"
#include "reading/Claim.h"
#include "support/CollectionDesk.h"

namespace {

constexpr std::size_t whole = std::string::npos;
constexpr std::size_t echo = 9;
constexpr std::size_t head = 23;
constexpr std::size_t field = 13;
const std::string everyValue = "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 ";

// Value n of all is n + 0.5; the first of message 3 is a date.
double ValueOf(int number) {
    return number == 17 ? 90326080007 : number + 0.5;
}

std::shared_ptr<fieldsim::SignalList> Values() {
    std::vector<fieldsim::Signal> signals;
    for (int message = 1; message <= 3; ++message) {
        for (const char* name : fieldsim::QuantumNames(message)) {
            const int number = static_cast<int>(signals.size()) + 1;
            signals.push_back({number, name, "", fieldsim::Kind::Decimal, ValueOf(number)});
        }
    }
    return std::make_shared<fieldsim::SignalList>(signals);
}

// Each answer keeps so many of its bytes; those behind the last are whole. Noise stands behind the echo.
struct CutUnit final : fieldsim::Device {
    fieldsim::QuantumUnit unit{5, Values(), {.echo = true}};
    std::vector<std::size_t> kept;
    std::vector<std::string> noise;
    std::string padding;  // behind each reply
    std::size_t asked = 0;

    std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment& now) override {
        auto answers = unit.Receive(bytes, now);
        for (fieldsim::Answer& answer : answers) {
            answer.bytes = answer.bytes.substr(0, asked < kept.size() ? kept[asked] : whole);
            answer.bytes.insert(std::min(echo, answer.bytes.size()), asked < noise.size() ? noise[asked] : "");
            answer.bytes += padding;
            ++asked;
        }
        return answers;
    }
};

struct QuantumReadTest : testing::Test {
    support::CollectionDesk desk;
    std::int64_t locationID = demo::AddStation(desk.dbconn, {"Quay", "TeleFlow", "Quantum", "", 1, 5});
    CutUnit unit;
    reading::RunState state;

    bool Collect(const std::vector<std::size_t>& kept) {
        desk.ports.Attach(1, unit);
        unit.kept = kept;
        unit.asked = 0;
        desk.dbconn.Execute("update configdata_detail set lastvalue=0, readat=null, quality=null");
        collection::collectiong_Data(desk.place, locationID, state);
        return !state.runfailed;
    }
    // The numbers, from 1, of the values that are stored as the unit has them. The others are to be 0, and to say that
    // they were not received.
    std::string Stored() {
        std::string numbers;
        int number = 0;
        for (int message = 1; message <= 3; ++message) {
            for (const char* name : fieldsim::QuantumNames(message)) {
                const auto row = desk.dbconn.First("select * from configdata_detail where description=?", {name});
                const bool right = row->Number("lastvalue") == ValueOf(++number);
                EXPECT_EQ(row->Text("quality"), right ? "good" : "not received") << name;
                EXPECT_TRUE(right || (row->Number("lastvalue") == 0 && row->IsNull("readat"))) << name;
                numbers += right ? std::to_string(number) + " " : "";
            }
        }
        return numbers;
    }
    core::Row Day() { return desk.dbconn.First("select * from LogParam").value(); }
};

TEST_F(QuantumReadTest, AReplyThatWasCutIsAskedForAgain) {
    EXPECT_TRUE(Collect({echo + head + 30, echo + head + 5 * field, whole, whole, echo + 4}));
    EXPECT_EQ(Stored(), everyValue);
    EXPECT_EQ(unit.asked, 6U);
    EXPECT_EQ(state.received, 24);
    EXPECT_EQ(Day().Number("CurrentMonthFlow"), 2.5);
    EXPECT_EQ(Day().Number("CurrentDayFlow"), 3.5);
    EXPECT_EQ(Day().Number("currentprs"), 19.5);
}

// The best reply counts. No figure is made of what stays missing.
TEST_F(QuantumReadTest, WhatStaysMissingIsZeroAndNoFigure) {
    EXPECT_TRUE(Collect({echo + head + 2 * field, echo + head + 2 * field, echo + head + field, whole, whole}));
    EXPECT_EQ(unit.asked, 5U);
    EXPECT_EQ(Stored(), "1 2 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 ");
    EXPECT_EQ(state.result, reading::Result::Partly);
    EXPECT_EQ(state.reason, "6 values not received");
    EXPECT_TRUE(Day().IsNull("CurrentDayFlow"));
    EXPECT_FALSE(Day().IsNull("CurrentMonthFlow") || Day().IsNull("currentprs"));
    const std::string missing = fieldsim::QuantumNames(1)[2];
    EXPECT_EQ(Day().Text("desc").find("#" + missing + "="), std::string::npos);
    const auto claim = reading::ClaimOf(desk.dbconn, locationID, 1, missing, {2026, 3, 9, 0, 0, 0});
    EXPECT_FALSE(claim->value);
    EXPECT_EQ(claim->mark, "not received");
}

// Digits as noise make other numbers of every field. A unit whose replies are always longer is read.
TEST_F(QuantumReadTest, NoiseAheadOfAReplyMovesNoField) {
    unit.noise = {"7", "", "", "12", "1"};
    EXPECT_TRUE(Collect({}));
    EXPECT_EQ(unit.asked, 6U);
    EXPECT_EQ(Stored(), everyValue);
    unit.noise.clear();
    unit.padding = "  ";
    EXPECT_TRUE(Collect({}));
    EXPECT_EQ(unit.asked, 6U);
    EXPECT_EQ(Stored(), everyValue);
}

TEST_F(QuantumReadTest, AnEchoAloneIsSilence) {
    EXPECT_FALSE(Collect({whole, echo}));
    EXPECT_EQ(unit.asked, 2U);
    EXPECT_NE(desk.RtuErr().find("2Quantum Not Responding"), std::string::npos);
    EXPECT_EQ(desk.Count("LogParam"), 0);
}

}  // namespace
