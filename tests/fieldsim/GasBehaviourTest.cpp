// The values of the field move as a gas station's do.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "fieldsim/Field.h"
#include "fieldsim/GasBehaviour.h"
#include "tests/support/ScratchDesk.h"

namespace fieldsim {
namespace {

double ValueOf(const GasBehaviour& behaviour, const char* description, const core::DateTime& at, const char* unit = "",
               Kind kind = Kind::Decimal) {
    return behaviour({1, description, unit, kind}, at);
}

TEST(GasBehaviour, VolumesAreTheFlowAddedUpAndTurnOverAtTheContractHour) {
    const GasBehaviour station(7, 6);
    const core::DateTime before{2026, 3, 10, 5, 59, 59};
    const core::DateTime after{2026, 3, 10, 6, 0, 0};
    const double day = ValueOf(station, "Volume Today", before);
    EXPECT_EQ(ValueOf(station, "Volume Today", after), 0);
    EXPECT_NEAR(ValueOf(station, "Volume Yesterday", after), day, day * 1e-4);
    EXPECT_LT(ValueOf(station, "Volume Yesterday", before), day * 1.3);
    EXPECT_NEAR(ValueOf(station, "Volume This Month", after), ValueOf(station, "Volume This Month", before), 1);
    // The first gas day of the month: what was this month is last month.
    EXPECT_NEAR(ValueOf(station, "Volume Last Month", {2026, 4, 1, 6, 0, 0}),
                ValueOf(station, "Volume This Month", {2026, 4, 1, 5, 59, 59}), 1);
    EXPECT_EQ(ValueOf(station, "Volume This Month", {2026, 4, 1, 6, 0, 0}), 0);
    const double grown = ValueOf(station, "Total Volume Accumulated", {2026, 3, 10, 9, 0, 30}) -
                         ValueOf(station, "Total Volume Accumulated", {2026, 3, 10, 8, 59, 30});
    EXPECT_NEAR(grown, ValueOf(station, "Flowrate", {2026, 3, 10, 9, 0, 0}) / 60, grown * 1e-3);
}

TEST(GasBehaviour, EachKindOfValueMovesInItsWay) {
    const GasBehaviour station(7, 6);
    const core::DateTime noon{2026, 3, 10, 12, 34, 56};
    const core::DateTime night{2026, 3, 11, 0, 30, 0};
    EXPECT_EQ(ValueOf(station, "RTU Time - Year", noon), 2026);
    EXPECT_EQ(ValueOf(station, "RTU Time - Month", noon), 3);
    EXPECT_EQ(ValueOf(station, "RTU Time - Date", noon), 10);
    EXPECT_EQ(ValueOf(station, "System Time Hour", noon), 12);
    EXPECT_EQ(ValueOf(station, "RTU Time - Minute", noon), 34);
    EXPECT_EQ(ValueOf(station, "DD MM YY HH MM SS", noon), 100326123456);
    EXPECT_GT(ValueOf(station, "Solar Panel Voltage", noon), 15);
    EXPECT_EQ(ValueOf(station, "Solar Panel Voltage", night), 0);
    EXPECT_GT(ValueOf(station, "Main Battery Volt", noon), ValueOf(station, "Main Battery Volt", night));
    EXPECT_NE(ValueOf(station, "Flowing Pressure", noon), ValueOf(station, "Flowing Pressure", night));
    for (const char* constant : {"Methane", "Pipe Diameter", "Flowing Pressure Hi Limit", "PID Flow Set Point"}) {
        EXPECT_EQ(ValueOf(station, constant, noon, "kg/cm2"), ValueOf(station, constant, night, "kg/cm2")) << constant;
    }
    const double pressure = ValueOf(station, "Flowing Pressure Live", noon, "kg/cm2");
    EXPECT_GT(ValueOf(station, "Flowing Pressure Hi Limit", noon, "kg/cm2"), pressure);
    EXPECT_LT(ValueOf(station, "Flowing Pressure Lo Limit", noon, "kg/cm2"), pressure);
    EXPECT_EQ(ValueOf(station, "Flow Time Today", {2026, 3, 10, 8, 0, 0}, "min"), 120);
    EXPECT_NE(ValueOf(GasBehaviour(8, 6), "Flowing Pressure", noon), ValueOf(station, "Flowing Pressure", noon));
}

TEST(GasBehaviour, LiveValuesPassThroughTheirLimitsInEachCycle) {
    support::ScratchDesk desk;
    const GasBehaviour alarming(7, 6, 300);
    const auto rows =
        desk.dbconn.Query("select distinct Description, unit from parameter where Description like '% Live'");
    ASSERT_EQ(rows.size(), 7U);
    for (const core::Row& row : rows) {
        const std::string live = row.Text("Description");
        const std::string block = live.substr(0, live.size() - 4);
        const auto value = [&](const std::string& name, int second) {
            return ValueOf(alarming, name.c_str(), core::FromSeconds(1773043200 + second), row.Text("unit").c_str());
        };
        std::map<int, int> seconds;  // by how many limits are below the value
        int before = -1;
        for (int second = 0; second < 300; ++second) {
            int above = 0;
            for (const char* limit : {"Lo-Lo", "Lo Limit", "Hi Limit", "Hi-Hi"}) {
                above += value(live, second) > value(block + limit, second) ? 1 : 0;
            }
            ++seconds[above];
            EXPECT_LE(std::abs(above - before), before < 0 ? 5 : 1) << live << second;
            before = above;
        }
        for (int above = 0; above <= 4; ++above) {
            EXPECT_GE(seconds[above], 55) << live << above;
        }
        EXPECT_EQ(value(live, 0), value(live, 300));
    }
}

// Masters of this field read floats from 2^-30 up to 2^31.
TEST(GasBehaviour, EveryDeliveredValueIsOneThatAMasterCanRead) {
    support::ScratchDesk desk;
    const GasBehaviour station(7, 6);
    for (const core::Row& row : desk.dbconn.Query("select Description, unit from parameter")) {
        for (const core::DateTime& at : {core::DateTime{2026, 3, 10, 12, 0, 0}, {2026, 3, 10, 6, 0, 0}}) {
            const double value = std::fabs(station({1, row.Text("Description"), row.Text("unit"), Kind::Float}, at));
            EXPECT_TRUE(value == 0 || (value > 1e-3 && value < 2e9) || row.Text("Description") == "DD MM YY HH MM SS")
                << row.Text("Description") << ' ' << value;
        }
    }
}

}  // namespace
}  // namespace fieldsim
