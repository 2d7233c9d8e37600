// The words of the switched parameters, and the values that are written for them.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/Database.h"
#include "session/ValueText.h"

namespace session {
namespace {

constexpr bool CW = true;
constexpr bool notCW = false;

TEST(ValueText, OneOfEitherSignIsTheFirstWordAndEveryOtherValueTheSecond) {
    EXPECT_EQ(valueText(notCW, "Door Position", 1), "OPEN");
    EXPECT_EQ(valueText(notCW, " Door Position ", -1), "OPEN");
    EXPECT_EQ(valueText(notCW, "Door Position", 0), "CLOSE");
    EXPECT_EQ(valueText(notCW, "Door Position", 2), "CLOSE");
    EXPECT_EQ(valueText(notCW, "Tap Type", 1), "PIPE");
    EXPECT_EQ(valueText(CW, "Tap Type", 1), "FLANGE");
    EXPECT_EQ(valueText(CW, "Digital Input - 10", 1), "ON");
    EXPECT_EQ(valueText(notCW, "Digital Output - 3", 1), "");  // only CW stations have a third
    EXPECT_EQ(valueText(CW, "Flowrate", 1), "");
}

// The word of one value and of the other, as operators know the two families.
struct Written {
    const char* description;
    const char* one;
    const char* zero;
};

const std::vector<Written> teleFlow = {
    {"Tap Location", "UPSTREAM", "DOWNSTREAM"},
    {"Tap Type", "PIPE", "FLANGE"},
    {"Pipe Material", "STEEL", "CARBON"},
    {"Orifice Material", "MONEL", "SS"},
    {"AGA8 Method", "GROSS", "DETAIL"},
    {"AGA8 Gross Method", "GCN", "HVGC"},
    {"AGA3 Method", "Method: 1985", "Method: 1992"},
    {"Stack DP Enable", "ENABLE", "DISABLE"},
    {"Digital Output 1 State", "ON", "OFF"},
    {"Mode Selection", "PID", "FAST"},
    {"Stop Mode", "SHUT IN", "OPEN MODE"},
    {"Status", "ACTIVE", "INACTIVE"},
    {"Door Position", "OPEN", "CLOSE"},
    {"RTS Delay Mode", "CTS", "TIMER"},
    {"DP Alarm DialOut", "YES", "NO"},
    {"AO Selection Type", "PID Out", "FLOW"},
    {"N2 Selection", "ANALOGIP", "KEYPAD"},
    {"Static Pressure Selection", "ANALOG", "LIVE"},
    {"Time Sync", "OK", "SET_TIME"},
    {"Unit Selection", "GJ", "SCM"},
    {"PID Output Auto/Manual", "MANUAL", "AUTO"},
    // The station counts these the other way round, and so they are written.
    {"PID Control", "DISABLE", "ENABLE"},
    {"Nomination Control", "DISABLE", "ENABLE"},
    {"SSV Stream1", "CLOSE", "OPEN"},
};

const std::vector<Written> cwStation = {
    {"Tap Type", "FLANGE", "PIPE"},
    {"Pipe material", "CARBON", "STEEL"},
    {"Orifice Material", "SS", "MONEL"},
    {"AGA - 8 Method", "DETAIL", "GROSS"},
    {"AGA - 8 Gross Method", "GCN", "HVGC"},
    {"AGA3 Method", "Method: 1992", "Method: 1985"},
    {"PID Control Enable", "ENABLE", "DISABLE"},
    {"Digital Output - 3", "ON", "OFF"},
    {"Local Scheduling Enable", "YES", "NO"},
    {"PID Output Auto/Manual", "MANUAL", "AUTO"},
    {"Pressure Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Metering Pressure Gauge", "GAUGE", "ABSOLUTE"},
    {"Spacific Gravity Calculate", "SG_AUTO", "SG_ENTERED"},
    {"Frequency Selected", "HF", "LF"},
    {"CV Selected", "CV_AUTO", "CV_MANUAL"},
    {"CV Gross/Net Selected", "CV_GROSS", "CV_NET"},
    {"Error Curve", "SELECTED", "NOT SELECTED"},
    {"Mass pulse serial", "PULSE", "SERIAL"},
    {"Mass Temp selected", "RTD", "AI"},
    {"Density Selected", "DS_AUTO", "DS_MANUAL"},
    {"Low DP CutOff", "DISABLE", "ENABLE"},
};

TEST(ValueText, WhatIsWrittenForAWordShowsAsThatWordAgain) {
    for (const bool isCW : {CW, notCW}) {
        for (const Written& row : isCW ? cwStation : teleFlow) {
            SCOPED_TRACE(row.description);
            EXPECT_EQ(ValueOfText(isCW, row.description, row.one), 1);
            EXPECT_EQ(ValueOfText(isCW, row.description, row.zero), 0);
            EXPECT_EQ(valueText(isCW, row.description, 1), row.one);
            EXPECT_EQ(valueText(isCW, row.description, 0), row.zero);
            EXPECT_EQ(ToggledText(isCW, row.description, row.one), row.zero);
            EXPECT_EQ(ToggledText(isCW, row.description, row.zero), row.one);
        }
    }
    EXPECT_EQ(ValueOfText(notCW, "Tap Type", "ENABLE"), std::nullopt);
    EXPECT_EQ(ValueOfText(notCW, "Flowrate", "ON"), std::nullopt);
    EXPECT_EQ(ToggledText(notCW, "Tap Type", "12.5"), "12.5");
}

TEST(ValueText, EverySwitchOfTheDeliveredMapsHasItsWords) {
    core::Database dbconn(NORWEN_DATABASE);
    const auto check = [&](bool isCW, const std::string& statement) {
        for (const std::string& description : dbconn.Texts(statement)) {
            EXPECT_NE(valueText(isCW, description, 1), "") << description;
        }
    };
    check(notCW, "select Description from parameter where datatype = 'Boolean' and aga <> 'TIME'");
    for (const char* method : {"aga3", "aga7", "aga9", "aga11"}) {
        check(CW, "select description from mdbus_mflow_" + std::string(method) +
                      " where type = 'Boolean' and aga <> 'TIME'");
    }
}

}  // namespace
}  // namespace session
