// The transmitters of a station are calibrated over its line, refuse, drift, and die.

#include <gtest/gtest.h>

#include "fieldsim/BsapBytes.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/Transmitters.h"

namespace fieldsim {
namespace {

struct Bench {
    Transmitters transmitters;
    BsapStation station{1, {{kTransmitterList, transmitters.List()}}};
    core::DateTime at{2026, 3, 9, 8, 0, 0};

    Bench() {
        station.WhenTaken([this](const Write& write) { transmitters.Taken(write); });
    }
    void Pass(int seconds) { at = core::FromSeconds(core::ToSeconds(at) + seconds); }
    // Whether the station answered.
    bool Send(std::string_view name, const std::string& value) {
        using namespace std::string_view_literals;
        const std::string head("\x01\x07\xA0\x00\x06\x0B\x00\x84\xFF\x01"sv);
        const Moment now{at, static_cast<std::uint64_t>(core::ToSeconds(at)) * 1000};
        return !station.Receive(BsapFrame(head + std::string(name) + '\0' + value), now).empty();
    }
    bool On(std::string_view name) { return Send(name, "\x09"); }
    bool Put(std::string_view name, double value) { return Send(name, '\x0B' + FloatLowFirst(value)); }
    double Value(std::string_view name) { return transmitters.List()->ValueAt(*transmitters.List()->Find(name), at); }
    std::vector<double> All() {
        std::vector<double> values;
        for (const char* name : {"DP.LIVE.", "SP.LIVE.", "TEMP.LIVE.", "PRESS.CALSTAT.", "TEMP.CALSTAT."}) {
            values.push_back(Value(name));
        }
        return values;
    }
};

using Values = std::vector<double>;

TEST(Transmitters, EachIsCalibratedByItsOwnSignals) {
    for (std::size_t i = 0; i < kTransmitters; ++i) {
        const TransmitterNames& names = kTransmitterNames[i];
        Bench bench;
        TransmitterManner& manner = bench.transmitters.Manner(static_cast<Transmitter>(i));
        const Values before = bench.All();
        Values expected = before;
        const std::size_t status = i == 2 ? 4 : 3;
        const auto command = [&](std::string_view name, double live) {
            bench.On(name);
            EXPECT_EQ(bench.Value(name), 0);
            bench.Pass(2);
            expected[status] = 1;
            EXPECT_EQ(bench.All(), expected) << name;  // busy, and nothing has changed yet
            bench.Pass(1);
            expected[i] = live;
            expected[status] = 0;
            EXPECT_EQ(bench.All(), expected) << name;
        };
        manner.process = expected[i] = 0.5;  // vented
        command(names.zero, 0);
        manner.process = expected[i] = 64.5;  // 64 above the zero
        expected[i] = 64;
        bench.Put(names.spanValue, 80);
        EXPECT_EQ(bench.All(), expected);
        command(names.span, 80);
        manner.process = 32.5;
        expected[i] = 40;
        EXPECT_EQ(bench.All(), expected);
        command(names.restore, 32.5);
        EXPECT_EQ(bench.Value(names.spanValue), 80);
    }
}

TEST(Transmitters, CommandsThatDoNotHold) {
    Bench bench;
    TransmitterManner& manner = bench.transmitters.Manner(Transmitter::DP);
    bench.On("#CAL.DPSPAN.");  // no span value yet
    bench.On("#CAL.SPZERO.");  // the same instrument is busy
    bench.On("#CAL.TMPZERO.");
    bench.Pass(3);
    EXPECT_EQ(bench.All(), (Values{99.5, 20.25, 0, CalibrationStatus::impossible, 0}));
    manner.refuses = true;
    bench.On("#CAL.DPZERO.");
    EXPECT_EQ(bench.All(), (Values{99.5, 20.25, 0, CalibrationStatus::busy, 0}));
    bench.Pass(3);
    EXPECT_EQ(bench.All(), (Values{99.5, 20.25, 0, CalibrationStatus::refused, 0}));
    bench.On("#CAL.SPZERO.");
    bench.Send("#CAL.SPREST.", "\x0A");  // off is no command
    bench.Put("DP.LIVE.", 7);            // and what is measured cannot be written
    bench.Pass(3);
    EXPECT_EQ(bench.All(), (Values{99.5, 0, 0, 0, 0}));
}

TEST(Transmitters, DriftGoesOnFromACalibration) {
    Bench bench;
    bench.transmitters.Manner(Transmitter::Temp) = {25, false, false, 0.5};
    EXPECT_EQ(bench.Value("TEMP.LIVE."), 25);
    bench.Pass(120);
    EXPECT_EQ(bench.Value("TEMP.LIVE."), 26);
    bench.Put("TEMP.APPLIED.", 25);
    bench.On("#CAL.TMPSPAN.");
    bench.Pass(60);
    EXPECT_EQ(bench.Value("TEMP.LIVE."), 25.5);
    bench.On("#CAL.TMPREST.");
    bench.Pass(60);
    EXPECT_EQ(bench.Value("TEMP.LIVE."), 27);
}

TEST(Transmitters, AStationMayDieOfAWriteAndLiveAgain) {
    Bench bench;
    bench.station.Manners().diesAt = 2;
    EXPECT_TRUE(bench.Put("DP.APPLIED.", 100));
    EXPECT_FALSE(bench.On("#CAL.DPSPAN."));
    EXPECT_FALSE(bench.On("#CAL.DPSPAN."));
    bench.station.LineClosed();
    EXPECT_FALSE(bench.Put("DP.APPLIED.", 101));
    bench.station.Manners().dead = false;
    EXPECT_EQ(bench.Value("PRESS.CALSTAT."), 0);
    EXPECT_TRUE(bench.On("#CAL.DPSPAN."));
    bench.Pass(3);
    EXPECT_EQ(bench.Value("DP.LIVE."), 100);
    EXPECT_EQ(bench.station.WritesText(),
              (std::vector<std::string>{"20-2 DP.APPLIED. = 100", "20-10 #CAL.DPSPAN. = 1 refused",
                                        "20-10 #CAL.DPSPAN. = 1"}));
}

}  // namespace
}  // namespace fieldsim
