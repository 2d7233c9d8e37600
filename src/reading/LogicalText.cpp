#include "reading/LogicalText.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/Text.h"

namespace reading {

namespace {

struct Words {
    std::string_view description;
    std::string_view first;  // for the value 1
    std::string_view other;
};

// The spelling is that of the stations' maps.
constexpr auto table = std::to_array<Words>({
    {"Tap Type", "PIPE", "FLANGE"},
    {"Tap Location", "UPSTREAM", "DOWNSTREAM"},
    {"Pressure Tap location", "UPSTREAM", "DOWNSTREAM"},
    {"AGA3/7 Method", "Method: 1985", "Method: 1992"},
    {"AGA3 Method", "Method: 1985", "Method: 1992"},
    {"AGA8 Method", "GROSS", "DETAIL"},
    {"AGA8 Gross Method", "GCN", "HVGC"},
    {"Pipe Material", "STEEL", "CARBON"},
    {"Orifice Material", "MONEL", "SS"},
    {"Mode Selection", "FAST", "PID"},
    {"Stop Mode", "SHUT IN", "OPEN"},
    {"Unit Selection", "SCM", "GJ"},
    {"Status", "ACTIVE", "INACTIVE"},
    {"Door Position", "OPEN", "CLOSE"},
    {"SSV Stream1", "CLOSE", "OPEN"},
    {"SSV Stream2", "CLOSE", "OPEN"},
    {"RTS Delay Mode", "CTS", "TIMER"},
    {"AO Selection Type", "PID Out", "FLOW"},
    {"Set Analog Output", "PID Out", "FLOW"},

    {"Digital Output 1 State", "ON", "OFF"},
    {"Digital Output 2 State", "ON", "OFF"},
    {"Digital Input 1 State", "ON", "OFF"},
    {"Digital Input 2 State", "ON", "OFF"},
    {"Digital Input - 1", "ON", "OFF"},
    {"Digital Input - 2", "ON", "OFF"},
    {"Digital Input - 3", "ON", "OFF"},
    {"Digital Input - 4", "ON", "OFF"},
    {"Digital Input - 5", "ON", "OFF"},
    {"Digital Input - 6", "ON", "OFF"},
    {"Digital Input - 7", "ON", "OFF"},
    {"Digital Input - 8", "ON", "OFF"},
    {"Digital Input - 9", "ON", "OFF"},
    {"Digital Input - 10", "ON", "OFF"},
    {"Digital Output - 1", "ON", "OFF"},
    {"Digital Output - 2", "ON", "OFF"},
    {"Radio Power", "ON", "OFF"},
    {"Radio Shutdown", "ON", "OFF"},
    {"Auxilary Power", "ON", "OFF"},

    {"PID Control", "ENABLE", "DISABLE"},
    {"Nomination Control", "ENABLE", "DISABLE"},
    {"Nomination Function Enable", "ENABLE", "DISABLE"},
    {"Daily Nomination Enable", "ENABLE", "DISABLE"},
    {"PID Output Auto/Manual", "ENABLE", "DISABLE"},
    {"PID Control Flow/Pressure", "ENABLE", "DISABLE"},
    {"Alarm", "ENABLE", "DISABLE"},
    {"Time Sync", "ENABLE", "DISABLE"},
    {"Low DP CutOff", "ENABLE", "DISABLE"},
    {"Low Battery Alarm", "ENABLE", "DISABLE"},
    {"Battery Overcharge Alarm", "ENABLE", "DISABLE"},
    {"AGA8 Calculation Error Alarm", "ENABLE", "DISABLE"},
    {"FP Math Error Alarm", "ENABLE", "DISABLE"},
    {"Self Check Fail Alarm", "ENABLE", "DISABLE"},
    {"Transmitter Fail Alarm", "ENABLE", "DISABLE"},
    {"Sensor Checksum Fail Alarm", "ENABLE", "DISABLE"},
    {"Radio Sensing", "ENABLE", "DISABLE"},
    {"Sampler Function Enable", "ENABLE", "DISABLE"},
    {"Stack DP Enable", "ENABLE", "DISABLE"},

    {"Low Flow CutOff Alarm DialOut", "YES", "NO"},
    {"Back Flow Alarm DialOut", "YES", "NO"},
    {"Transmitter Failure DialOut", "YES", "NO"},
    {"Low Ram Battery DialOut", "YES", "NO"},
    {"FP Math Error DialOut", "YES", "NO"},
    {"Self Check Fail DialOut", "YES", "NO"},
    {"DP Alarm DialOut", "YES", "NO"},
    {"Flowing Pressure Alarm DialOut", "YES", "NO"},
    {"Temperature Alarm DialOut", "YES", "NO"},
    {"Flow Rate Alarm DialOut", "YES", "NO"},
    {"Auxilary Input Alarm DialOut", "YES", "NO"},
    {"Nomination Alarm DialOut", "YES", "NO"},
    {"Battery Voltage Alarm DialOut", "YES", "NO"},
    {"Battery Overcharge DialOut", "YES", "NO"},
    {"Hourly Scheduling Enable", "YES", "NO"},
    {"Local Scheduling Enable", "YES", "NO"},
});

}  // namespace

std::string LogicalText(std::string_view description, double value) {
    const std::string name = core::Trim(description);
    const auto words =
        std::find_if(table.begin(), table.end(), [&name](const Words& entry) { return entry.description == name; });
    if (words == table.end()) {
        return core::NumberText(value);
    }
    return std::string(std::abs(value) == 1 ? words->first : words->other);
}

}  // namespace reading
