// Stations that are written to: what a BSAP station takes, clocks that are set, and stations that behave badly.

#include <gtest/gtest.h>

#include "fieldsim/BsapStation.h"
#include "fieldsim/GasBehaviour.h"
#include "fieldsim/ModbusSlave.h"
#include "tests/support/Hex.h"

namespace fieldsim {
namespace {

using support::Bytes;
using support::Hex;
using Noted = std::vector<std::string>;

const Moment kNow{{2026, 3, 9, 8, 0, 0}, 100000};

// All that a station answers to a request.
std::vector<Answer> Ask(Device& device, const std::string& bytes, const Moment& now = kNow) {
    return device.Receive(bytes, now);
}

std::string Rtu(const std::string& hex) {
    return ModbusFrame(Framing::Rtu, Bytes(hex));
}

// A write as a master of BSAP sends it: the function part behind 80, load version, FF.
std::string BsapWrite(const std::string& hex, const std::string& version = "12 34") {
    return BsapFrame(Bytes("01 07 A0 12 00 0B 00 80 " + version + " FF " + hex));
}

// Signals 16 (logical) and 256 (analog) of list 0, 27649 and 27664 (54-1, 54-16), 28161 (55-1).
BsapStation Station(BsapOptions options = {}) {
    return {1,
            {{0, std::make_shared<SignalList>(
                     std::vector<Signal>{{16, "Switch", "", Kind::Logical, 0}, {256, "Level", "", Kind::Float, 1}})},
             {54, std::make_shared<SignalList>(
                      std::vector<Signal>{{1, "Methane", "", Kind::Float, 90}, {16, "Ethane", "", Kind::Float, 5}})},
             {55, std::make_shared<SignalList>(std::vector<Signal>{{1, "Tap", "", Kind::Logical, 1}})}},
            std::move(options)};
}

double ValueOf(const BsapStation& station, int list, int position) {
    const SignalList& signals = *station.Lists().at(list);
    return signals.ValueAt(*signals.At(position), kNow.local);
}

TEST(BsapWrites, TakesTheFramesOfAnotherProgram) {
    for (const bool shortLayout : {false, true}) {
        BsapOptions options;
        options.shortLayout = shortLayout;
        BsapStation station = Station(options);
        for (const char* frame : {"10 02 01 07 A0 12 00 0B 00 80 12 34 FF 01 00 01 0B 00 00 C8 42 10 03 F3 A2",
                                  "10 02 01 08 A0 14 00 0B 00 80 12 34 FF 01 10 10 00 09 10 03 98 5F"}) {
            const auto answers = Ask(station, Bytes(frame));
            ASSERT_EQ(answers.size(), 1U);
            EXPECT_EQ(answers[0].bytes.size(), shortLayout ? 12U : 13U);  // an acknowledgement
        }
        EXPECT_EQ(station.WritesText(), (Noted{"0-256 Level = 100", "0-16 Switch = 1"}));
        EXPECT_EQ(station.Writes()[0].at.milliseconds, kNow.milliseconds);
        EXPECT_EQ(ValueOf(station, 0, 256), 100);
        EXPECT_EQ(ValueOf(station, 0, 16), 1);
    }
}

TEST(BsapWrites, AreTakenWholeOrNotAtAll) {
    const struct {
        const char* write;  // the number of signals and what follows
        Noted noted;
        double methane = 90;
        double tap = 1;
        const char* version = "12 34";
    } cases[] = {
        {"01 01 6E 0A", {"55-1 Tap = 0"}, 90, 0},
        {"01 01 6C 0B 00 00 42 C2", {"54-1 Methane = -48.5"}, -48.5},
        {"02 01 6C 0B 00 00 10 41 10 6C 0B 00 00 00 3F", {"54-1 Methane = 9", "54-16 Ethane = 0.5"}, 9},
        {"01 01 6C 0B 00 00 10 41", {"54-1 Methane = 9 refused"}, 90, 1, "12 35"},
        {"01 02 6C 0B 00 00 10 41", {"54-2 = 9 refused"}},
        {"01 01 70 0B 00 00 10 41", {"56-1 = 9 refused"}},
        {"02 01 6C 0B 00 00 10 41 03 6C 0B 00 00 00 3F", {"54-1 Methane = 9 refused", "54-3 = 0.5 refused"}},
        {"01 01 6E 0B 00 00 00 00", {"55-1 Tap = 0 refused"}},  // a number for a switch
        {"01 01 6C 09", {"54-1 Methane = 1 refused"}},          // and the other way round
        {"01 01 6C 0B 00 00 10", {"54-1 Methane = 0 refused"}},
        {"01 01 6C 0B 00 00 10 41 00", {"54-1 Methane = 9 refused"}},
        {"02 01 6C 0B 00 00 10 41", {"54-1 Methane = 9 refused"}},
        {"00", {"0-0 = 0 refused"}},
    };
    for (const auto& test : cases) {
        BsapStation station = Station();
        EXPECT_EQ(Ask(station, BsapWrite(test.write, test.version)).size(), 1U);
        EXPECT_EQ(station.WritesText(), test.noted) << test.write;
        EXPECT_EQ(ValueOf(station, 54, 1), test.methane) << test.write;
        EXPECT_EQ(ValueOf(station, 55, 1), test.tap) << test.write;
    }
}

TEST(BsapWrites, KeepsATextBesideTheValue) {
    BsapStation station = Station();
    Ask(station, BsapWrite("01 01 6C 0D 4B 4F 4C 00"));
    Ask(station, BsapWrite("01 10 6C 0D 4B 4F 4C"));  // without its end
    EXPECT_EQ(station.TextOf(54, 1), "KOL");
    EXPECT_EQ(station.TextOf(54, 16), "");
    EXPECT_EQ(ValueOf(station, 54, 1), 90);
    EXPECT_EQ(station.WritesText(), (Noted{"54-1 Methane = \"KOL\"", "54-16 Ethane = 0 refused"}));
}

TEST(BsapWrites, WaitForTheSignOnAndMayHaveAnAnswerOfTheirOwn) {
    BsapOptions options;
    options.password = "482913";
    options.answersWrites = true;
    BsapStation station = Station(options);
    EXPECT_GT(Ask(station, BsapWrite("01 01 6E 0A")).at(0).bytes.size(), 17U);
    Ask(station, Bytes("10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E"));
    Ask(station, BsapWrite("01 01 6E 0A"));
    EXPECT_EQ(station.WritesText(), (Noted{"55-1 Tap = 0 refused", "55-1 Tap = 0"}));
}

// What sets a clock and shows it, in the order of the elements.
std::vector<Signal> ClockSignals(int step) {
    std::vector<Signal> signals;
    for (const char* name : {"Set Year", "Set Month", "Set Date", "Set Hour", "Set Minute", "Set Second",
                             "RTU Time - Year", "RTU Time - Month", "RTU Time - Date", "RTU Time - Hour",
                             "RTU Time - Minute", "RTU Time - Second", "Methane"}) {
        signals.push_back({1 + static_cast<int>(signals.size()) * step, name, "", Kind::Float});
    }
    return signals;
}

const std::vector<Signal> kClockSwitch = {{11, "Set Time & Date", "", Kind::Logical}};

std::string Shown(const SignalList& signals, const core::DateTime& at) {
    core::DateTime shown;
    int* const parts[] = {&shown.year, &shown.month, &shown.day, &shown.hour, &shown.minute, &shown.second};
    for (std::size_t i = 0; i < 6; ++i) {
        *parts[i] = static_cast<int>(signals.ValueAt(signals.Signals().at(6 + i), at));
    }
    return core::IsoText(shown);
}

// 31 December 2027, 23:59:50 as floats, sign first.
const char* const kElements[] = {"44 FD 60 00", "41 40 00 00", "41 F8 00 00",
                                 "41 B8 00 00", "42 6C 00 00", "42 48 00 00"};

TEST(StationClock, OfAModbusSlaveGoesOnFromTheWrittenTime) {
    ModbusSlave slave(1, Framing::Rtu, MakeModbusMap(ClockSignals(2), kClockSwitch, false, GasBehaviour(7)));
    const SignalList& shown = *slave.Map().registers;
    std::string all = "01 10 00 00 00 0C 18";
    for (const char* element : kElements) {
        all += std::string(" ") + element;
    }
    const auto set = [&](const char* onOrOff) { Ask(slave, Rtu(std::string("01 05 00 0A ") + onOrOff)); };
    set("FF 00");  // the elements are none yet
    Ask(slave, Rtu(all));
    set("00 00");
    EXPECT_EQ(Shown(shown, kNow.local), "2026-03-09 08:00:00");
    const double methane = shown.ValueAt(*shown.Find("Methane"), kNow.local);
    set("FF 00");
    EXPECT_EQ(Shown(shown, kNow.local), "2027-12-31 23:59:50");
    EXPECT_EQ(Shown(shown, {2026, 3, 9, 8, 0, 20}), "2028-01-01 00:00:10");
    EXPECT_EQ(core::IsoText(slave.ClockSays({2026, 3, 9, 8, 0, 20})), "2028-01-01 00:00:10");
    EXPECT_EQ(shown.ValueAt(*shown.Find("Methane"), kNow.local), methane);
    Ask(slave, Rtu("01 10 00 02 00 02 04 41 30 00 00"));  // 31 November
    set("FF 00");
    EXPECT_EQ(Shown(shown, kNow.local), "2027-12-31 23:59:50");
    EXPECT_EQ(slave.Writes().size(), 11U);
}

TEST(StationClock, OfABsapStationTakesTheElementsOfItsStream) {
    const auto list = [](int step) { return std::make_shared<SignalList>(ClockSignals(step), GasBehaviour(7)); };
    BsapStation station(1, {{54, list(1)},
                            {55, std::make_shared<SignalList>(kClockSwitch)},
                            {66, list(1)},
                            {67, std::make_shared<SignalList>(kClockSwitch)}});
    for (int i = 0; i < 6; ++i) {
        std::string value = Bytes(kElements[i]);
        std::reverse(value.begin(), value.end());
        Ask(station, BsapWrite("01 0" + std::to_string(1 + i) + " 84 0B " + Hex(value)));
    }
    Ask(station, BsapWrite("01 0B 6E 09"));  // the other stream's switch, whose elements are none
    EXPECT_EQ(station.ClockSays(kNow.local), kNow.local);
    Ask(station, BsapWrite("01 0B 86 09"));
    EXPECT_EQ(Shown(*station.Lists().at(66), kNow.local), "2027-12-31 23:59:50");
    EXPECT_EQ(Shown(*station.Lists().at(54), kNow.local), "2027-12-31 23:59:50");
}

TEST(WriteManners, ChangeWhatBecomesOfAWriteAndOfNoRead) {
    const std::string modbusWrite = Rtu("01 05 00 0A FF 00");
    const std::string modbusRead = Rtu("01 01 00 0A 00 01");
    const std::string bsapWrite = BsapWrite("01 01 6E 0A");
    const std::string bsapRead = BsapFrame(Bytes("01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 37"));
    const struct {
        WriteFault fault;
        bool taken;
        bool answered;
        std::uint32_t afterMs = 50;
        const char* modbus = "01 05 00 0A FF 00";
    } cases[] = {
        {WriteFault::None, true, true},       {WriteFault::Refuse, false, true, 50, "01 85 04"},
        {WriteFault::Late, true, true, 8050}, {WriteFault::LostBefore, false, false},
        {WriteFault::LostAfter, true, false},
    };
    for (const auto& test : cases) {
        ModbusSlave slave(1, Framing::Rtu, MakeModbusMap({}, kClockSwitch));
        BsapStation station = Station();
        for (WritableStation* written :
             {static_cast<WritableStation*>(&slave), static_cast<WritableStation*>(&station)}) {
            const bool modbus = written == &slave;
            written->Manners().script = {test.fault};
            EXPECT_EQ(Ask(*written, modbus ? modbusRead : bsapRead).size(), 1U);
            const auto answers = Ask(*written, modbus ? modbusWrite : bsapWrite);
            ASSERT_EQ(answers.size(), test.answered ? 1U : 0U);
            if (test.answered) {
                EXPECT_EQ(answers[0].delayMs, test.afterMs);
                EXPECT_EQ(modbus ? Hex(answers[0].bytes) : "", modbus ? Hex(Rtu(test.modbus)) : "");
            }
            EXPECT_EQ(written->Writes().at(0).accepted, test.taken);
            EXPECT_EQ(ValueOf(station, 55, 1), modbus || !test.taken ? 1 : 0);
            EXPECT_EQ(Ask(*written, modbus ? modbusRead : bsapRead).size(), 1U);
            EXPECT_EQ(Ask(*written, modbus ? modbusWrite : bsapWrite).size(), 1U);  // the script is over
        }
    }
}

TEST(WriteManners, ALostWriteMayTakeTheLineDown) {
    ModbusSlave slave(1, Framing::Rtu, MakeModbusMap({}, kClockSwitch));
    slave.Manners() = {{}, WriteFault::LostAfter, 8000, 4, true};
    EXPECT_EQ(Ask(slave, Rtu("01 05 00 0A FF 00")).size(), 0U);
    EXPECT_EQ(Ask(slave, Rtu("01 01 00 0A 00 01")).size(), 0U);
    EXPECT_EQ(Ask(slave, Rtu("01 05 00 0A 00 00")).size(), 0U);
    slave.LineClosed();
    EXPECT_EQ(Ask(slave, Rtu("01 01 00 0A 00 01")).at(0).bytes, Rtu("01 01 01 01"));
    EXPECT_EQ(slave.WritesText(), Noted{"coil 11 Set Time & Date = 1"});
}

}  // namespace
}  // namespace fieldsim
