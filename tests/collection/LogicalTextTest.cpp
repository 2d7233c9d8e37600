#include <gtest/gtest.h>

#include "reading/LogicalText.h"

using reading::LogicalText;

TEST(LogicalText, WordsByDescription) {
    const std::tuple<const char*, double, const char*> cases[] = {
        {"Tap Type", 1, "PIPE"},
        {"Tap Type", -1, "PIPE"},
        {"Tap Type", 0, "FLANGE"},
        {"Tap Type", 2, "FLANGE"},
        {"  Pressure Tap location ", 1, "UPSTREAM"},
        {"AGA3/7 Method", 0, "Method: 1992"},
        {"SSV Stream2", 1, "CLOSE"},
        {"Door Position", 1, "OPEN"},
        {"Stop Mode", 0, "OPEN"},
        {"Mode Selection", 1, "FAST"},
        {"Digital Input - 1", 1, "ON"},
        {"Digital Input - 10", 0, "OFF"},
        {"PID Output Auto/Manual", 1, "ENABLE"},
        {"Time Sync", 0, "DISABLE"},
        {"Battery Overcharge DialOut", 1, "YES"},
        {"Local Scheduling Enable", 0, "NO"},
        // No words: the number stays.
        {"Digital Input - 11", 1, "1"},
        {"Digital Output - 3", 0, "0"},
        {"", 1, "1"},
        {"Volume Yesterday", -2.5, "-2.5"},
    };
    for (const auto& [description, value, text] : cases) {
        EXPECT_EQ(LogicalText(description, value), text) << description;
    }
}
