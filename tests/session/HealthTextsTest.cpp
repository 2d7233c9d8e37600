// What the window says of a station's clock and batteries.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "session/HealthTexts.h"

namespace session {
namespace {

ParameterSet Set(const char* aga, const std::vector<std::pair<const char*, double>>& values) {
    ParameterSet set;
    for (const auto& [description, value] : values) {
        ParameterRow row;
        row.Description = description;
        TakeValue(row, value, {2026, 3, 9, 8, 0, 0});
        set.Of(*GroupOf(aga)).push_back(row);
    }
    return set;
}

TEST(HealthTexts, TheClockByEachWayOfKeepingIt) {
    const auto rtu = Set("HEALTH", {{"RTU Time - Year", 26},
                                    {"RTU Time - Month", 3},
                                    {"RTU Time - Date", 9},
                                    {"RTU Time - Hour", 8},
                                    {"RTU Time - Minute", 0},
                                    {"RTU Time - Second", 7}});
    EXPECT_EQ(DateTimeText(rtu, false), "RTU Date : 9/3/26\nRTU Time :8:0:7");
    EXPECT_EQ(DateTimeText(rtu, true), "") << "a CW names its clock otherwise";
    const auto cw = Set("HEALTH", {{"System Time Year", 2026}, {"System Time Month", 3}, {"System Time Date", 9}});
    EXPECT_EQ(DateTimeText(cw, true), "RTU Date : 9/3/2026\nRTU Time :N/A:N/A:N/A");
    EXPECT_EQ(DateTimeText(Set("Quantum", {{"DD MM YY HH MM SS", 90326080007}}), false),
              "RTU Date : 09/03/26\nRTU Time :08:00:07");
    EXPECT_EQ(DateTimeText(Set("HEALTH", {{"Date", 90326}, {"Time", 80007}}), false),
              "RTU Date : 09/03/26\nRTU Time :08:00:07");
    EXPECT_EQ(DateTimeText(Set("Quantum", {{"DD MM YY HH MM SS", -1e300}}), false), "");
}

TEST(HealthTexts, TheSystemRunsOnTheMainBatteryUnlessTheBackupIsHigher) {
    const struct {
        double main;
        double backup;
        double system;
        const char* alarm;  // at a limit of 11.5
    } cases[] = {{13.2, 3.3, 13.2, ""},
                 {11.5, 3.3, 11.5, ""},
                 {11.49, 3.3, 11.49, "System battery voltage is 11.49"},
                 {2.1, 3.3, 3.3, "System battery voltage is 3.30"}};
    for (const auto& test : cases) {
        const auto set = Set("HEALTH", {{"Main Battery Volt", test.main}, {"Backup Battery Voltage", test.backup}});
        EXPECT_EQ(SystemVoltage(set, false), test.system);
        EXPECT_EQ(VoltageAlarm(set, false, 11.5), test.alarm);
    }
    const auto set = Set("HEALTH", {{"Main Battery Volt", 13.2}, {"Backup Battery Voltage", 3.3}});
    EXPECT_EQ(VoltageText(set, false),
              "Main Bat.Voltage      :13.20 Vdc\nBackup Bat.Voltage :3.30 Vdc\nSystem Bat. Voltage :13.20 Vdc\n"
              "Board Temp.            :N/A C");
    EXPECT_EQ(VoltageText(set, true), "System Bat. Voltage :13.20 Vdc\nBoard Temp.            :N/A C");
    EXPECT_EQ(VoltageAlarm(ParameterSet(), false, 11.5), "");
    auto unread = Set("HEALTH", {{"Main Battery Volt", 13.2}, {"RTU Time - Year", 26}, {"RTU Time - Month", 3}});
    unread.ForEach([](ParameterRow& row) { row.readat.reset(); });
    EXPECT_EQ(VoltageText(unread, true), "System Bat. Voltage :N/A Vdc\nBoard Temp.            :N/A C");
    EXPECT_EQ(VoltageText(unread, false).substr(0, 30), "Main Bat.Voltage      :- Vdc\nB");
    EXPECT_EQ(DateTimeText(unread, false), "RTU Date : N/A/-/-\nRTU Time :N/A:N/A:N/A");
}

}  // namespace
}  // namespace session
