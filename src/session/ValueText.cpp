#include "session/ValueText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "core/Text.h"

namespace session {

namespace {

struct Words {
    std::string_view description;
    std::string_view first;  // for the value 1
    std::string_view other;
};

// The spelling is that of the stations' maps.
constexpr auto cwWords = std::to_array<Words>({
    {"Tap Type", "FLANGE", "PIPE"},
    {"AGA3/7 Method", "Method: 1992", "Method: 1985"},
    {"AGA3 Method", "Method: 1992", "Method: 1985"},
    {"Flow Calculation Method", "Method: 1992", "Method: 1985"},
    {"AGA - 8 Method", "DETAIL", "GROSS"},
    {"AGA - 8 Gross Method", "GCN", "HVGC"},
    {"Pipe material", "CARBON", "STEEL"},
    {"Orifice Material", "SS", "MONEL"},
    {"PID Control Enable", "ENABLE", "DISABLE"},
    {"Time Sync", "ENABLE", "DISABLE"},
    {"Self Check Fail Alarm", "ENABLE", "DISABLE"},
    {"Transmitter Fail Alarm", "ENABLE", "DISABLE"},
    {"Sensor Checksum Fail Alarm", "ENABLE", "DISABLE"},
    {"Stack DP Enable", "ENABLE", "DISABLE"},
    {"Low DP CutOff", "DISABLE", "ENABLE"},
    {"FP Math Error Alarm", "DISABLE", "ENABLE"},
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
    {"Digital Output - 3", "ON", "OFF"},
    {"Set Keypad Frequency", "ON", "OFF"},
    {"USM Uncurrected Flow Keypad", "ON", "OFF"},
    {"Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Low Battery Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Diff.Pressure Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Pressure Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Temperature Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Flow Rate Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"Battery Power Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"AGA8 Calculation Error Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"UnCrr.Flow Rate Alarm", "ALRM_DISABLE", "ALRM_ENABLE"},
    {"PID Output Auto/Manual", "MANUAL", "AUTO"},
    {"Hourly Scheduling Enable", "YES", "NO"},
    {"Local Scheduling Enable", "YES", "NO"},
    {"Metering Pressure Gauge", "GAUGE", "ABSOLUTE"},
    {"Spacific Gravity Calculate", "SG_AUTO", "SG_ENTERED"},
    {"Frequency Selected", "HF", "LF"},
    {"CV Selected", "CV_AUTO", "CV_MANUAL"},
    {"CV Gross/Net Selected", "CV_GROSS", "CV_NET"},
    {"Error Curve", "SELECTED", "NOT SELECTED"},
    {"Mass pulse serial", "PULSE", "SERIAL"},
    {"Mass Temp selected", "RTD", "AI"},
    {"Density Selected", "DS_AUTO", "DS_MANUAL"},
});

constexpr auto otherWords = std::to_array<Words>({
    {"Tap Location", "UPSTREAM", "DOWNSTREAM"},
    {"Pressure Tap location", "UPSTREAM", "DOWNSTREAM"},
    {"Tap Type", "PIPE", "FLANGE"},
    {"AGA3/7 Method", "Method: 1985", "Method: 1992"},
    {"AGA3 Method", "Method: 1985", "Method: 1992"},
    {"AGA8 Method", "GROSS", "DETAIL"},
    {"AGA8 Gross Method", "GCN", "HVGC"},
    {"Pipe Material", "STEEL", "CARBON"},
    {"Orifice Material", "MONEL", "SS"},
    {"PID Control", "DISABLE", "ENABLE"},
    {"Nomination Control", "DISABLE", "ENABLE"},
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
    {"SSV Stream1", "CLOSE", "OPEN"},
    {"SSV Stream2", "CLOSE", "OPEN"},
    {"Nomination Function Enable", "ENABLE", "DISABLE"},
    {"Daily Nomination Enable", "ENABLE", "DISABLE"},
    {"Alarm", "ENABLE", "DISABLE"},
    {"PID Control Flow/Pressure", "ENABLE", "DISABLE"},
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
    {"UnCorrected Sampler Enable", "ENABLE", "DISABLE"},
    {"Mode Selection", "PID", "FAST"},
    {"Stop Mode", "SHUT IN", "OPEN MODE"},
    {"Unit Selection", "GJ", "SCM"},
    {"Status", "ACTIVE", "INACTIVE"},
    {"PID Output Auto/Manual", "MANUAL", "AUTO"},
    {"Time Sync", "OK", "SET_TIME"},
    {"Door Position", "OPEN", "CLOSE"},
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
    {"RTS Delay Mode", "CTS", "TIMER"},
    {"AO Selection Type", "PID Out", "FLOW"},
    {"Set Analog Output", "PID Out", "FLOW"},
    {"N2 Selection", "ANALOGIP", "KEYPAD"},
    {"CO2 Selection", "ANALOGIP", "KEYPAD"},
    {"Gravity Selection", "ANALOGIP", "KEYPAD"},
    {"Static Pressure Selection", "ANALOG", "LIVE"},
    {"Temprature Selection", "ANALOG", "LIVE"},
});

const Words* Find(bool isCW, std::string_view description) {
    const auto table = isCW ? std::span<const Words>(cwWords) : std::span<const Words>(otherWords);
    const std::string name = core::Trim(description);
    const auto words = std::find_if(table.begin(), table.end(), [&](const Words& w) { return w.description == name; });
    return words == table.end() ? nullptr : &*words;
}

}  // namespace

std::string valueText(bool isCW, std::string_view description, double value) {
    const Words* words = Find(isCW, description);
    return words == nullptr ? std::string() : std::string(std::abs(value) == 1 ? words->first : words->other);
}

std::string ToggledText(bool isCW, std::string_view description, const std::string& text) {
    const Words* words = Find(isCW, description);
    if (words == nullptr || (text != words->first && text != words->other)) {
        return text;
    }
    return std::string(text == words->first ? words->other : words->first);
}

std::optional<double> ValueOfText(bool isCW, std::string_view description, const std::string& text) {
    const Words* words = Find(isCW, description);
    if (words == nullptr || (text != words->first && text != words->other)) {
        return std::nullopt;
    }
    return text == words->first ? 1 : 0;
}

}  // namespace session
