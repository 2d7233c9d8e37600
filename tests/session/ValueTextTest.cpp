// The words of the switched parameters, and the values that are written for them.

#include <gtest/gtest.h>

#include <string>

#include "core/Database.h"
#include "session/ValueText.h"

namespace session {
namespace {

constexpr bool CW = true;
constexpr bool notCW = false;

TEST(ValueText, OneOfEitherSignIsTheFirstWordAndEveryOtherValueTheSecond) {
    EXPECT_EQ(valueText(notCW, " Door Position ", -1), "OPEN");
    EXPECT_EQ(valueText(notCW, "Door Position", 0), "CLOSE");
    EXPECT_EQ(valueText(notCW, "Door Position", 2), "CLOSE");
    EXPECT_EQ(valueText(notCW, "Digital Output - 3", 1), "");  // only CW stations have a third
    EXPECT_EQ(valueText(CW, "Flowrate", 1), "");
    EXPECT_EQ(ValueOfText(notCW, "Tap Type", "ENABLE"), std::nullopt);
    EXPECT_EQ(ValueOfText(notCW, "Flowrate", "ON"), std::nullopt);
    EXPECT_EQ(ToggledText(notCW, "Tap Type", "12.5"), "12.5");
}

// Where operators know the two families otherwise, and where one of the words is easily taken for the other.
TEST(ValueText, TheFirstWordOfASwitchIsThatOfOne) {
    const struct {
        bool isCW;
        const char* description;
        const char* one;
        const char* zero;
    } cases[] = {
        {notCW, "Tap Type", "PIPE", "FLANGE"},
        {CW, "Tap Type", "FLANGE", "PIPE"},
        {notCW, "Orifice Material", "MONEL", "SS"},
        {CW, "Orifice Material", "SS", "MONEL"},
        {notCW, "AGA8 Method", "GROSS", "DETAIL"},
        {CW, "AGA - 8 Method", "DETAIL", "GROSS"},
        {notCW, "AGA3 Method", "Method: 1985", "Method: 1992"},
        {CW, "AGA3 Method", "Method: 1992", "Method: 1985"},
        {notCW, "Stop Mode", "SHUT IN", "OPEN MODE"},
        {notCW, "Digital Output 1 State", "ON", "OFF"},
        {CW, "Digital Output - 3", "ON", "OFF"},
        {notCW, "PID Output Auto/Manual", "MANUAL", "AUTO"},
        {CW, "PID Output Auto/Manual", "MANUAL", "AUTO"},
        {CW, "PID Control Enable", "ENABLE", "DISABLE"},
        {CW, "Pressure Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
        {CW, "Metering Pressure Gauge", "GAUGE", "ABSOLUTE"},
        {CW, "Low DP CutOff", "DISABLE", "ENABLE"},
        // The station counts these the other way round, and so they are written.
        {notCW, "PID Control", "DISABLE", "ENABLE"},
        {notCW, "Nomination Control", "DISABLE", "ENABLE"},
        {notCW, "SSV Stream1", "CLOSE", "OPEN"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(valueText(c.isCW, c.description, 1), c.one) << c.description;
        EXPECT_EQ(valueText(c.isCW, c.description, 0), c.zero) << c.description;
    }
}

TEST(ValueText, EverySwitchOfTheDeliveredMapsHasWordsThatAreWrittenAsTheyAreShown) {
    core::Database dbconn(NORWEN_DATABASE);
    const auto check = [&](bool isCW, const std::string& statement) {
        for (const std::string& description : dbconn.Texts(statement)) {
            SCOPED_TRACE(description);
            const std::string one = valueText(isCW, description, 1);
            const std::string zero = valueText(isCW, description, 0);
            EXPECT_TRUE(!one.empty() && !zero.empty() && one != zero);
            EXPECT_EQ(ValueOfText(isCW, description, one), 1);
            EXPECT_EQ(ValueOfText(isCW, description, zero), 0);
            EXPECT_EQ(ToggledText(isCW, description, one), zero);
            EXPECT_EQ(ToggledText(isCW, description, zero), one);
        }
    };
    check(notCW, "select Description from parameter where datatype = 'Boolean' and aga <> 'TIME'");
    for (const std::string method : {"aga3", "aga7", "aga9", "aga11"}) {
        check(CW, "select description from mdbus_mflow_" + method + " where type = 'Boolean' and aga <> 'TIME'");
    }
}

}  // namespace
}  // namespace session
