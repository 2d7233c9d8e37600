#include "session/HealthTexts.h"

#include <algorithm>
#include <cstdint>

#include "core/Text.h"
#include "session/Figures.h"

namespace session {

namespace {

constexpr int voltPlaces = 2;
constexpr const char* noFigure = "-";

std::string Shown(const ParameterRow* row) {
    return row == nullptr ? "N/A" : HasFigure(*row) ? core::FixedText(row->lastvalue, voltPlaces) : noFigure;
}

std::string ClockText(const std::string& date, const std::string& time) {
    return "RTU Date : " + date + "\nRTU Time :" + time;
}

std::string PairsOf(std::int64_t number, const char* between) {
    std::string digits = std::to_string(number);
    digits.insert(0, digits.size() < 6 ? 6 - digits.size() : 0, '0');
    return digits.substr(0, digits.size() - 4) + between + digits.substr(digits.size() - 4, 2) + between +
           digits.substr(digits.size() - 2);
}

// The clock of a station that keeps it in one or two numbers: ddmmyy and hhmmss, or both behind one another.
std::string PackedClock(const ParameterSet& set) {
    constexpr double most = 1e12;
    const auto number = [&](const char* description) -> std::optional<std::int64_t> {
        const auto place = set.Find(description);
        if (!place) {
            return std::nullopt;
        }
        const double value = set.At(*place).lastvalue;
        return HasFigure(set.At(*place)) && value >= 0 && value < most ? std::optional(static_cast<std::int64_t>(value))
                                                                       : std::nullopt;
    };
    if (const auto both = number("DD MM YY HH MM SS")) {
        return ClockText(PairsOf(*both / 1000000, "/"), PairsOf(*both % 1000000, ":"));
    }
    const auto date = number("Date");
    const auto time = number("Time");
    return date || time ? ClockText(PairsOf(date.value_or(0), "/"), PairsOf(time.value_or(0), ":")) : std::string();
}

}  // namespace

std::string DateTimeText(const ParameterSet& set, bool isCW) {
    if (!PlaceOf(set, Figure::Year, isCW)) {
        return PackedClock(set);
    }
    const auto element = [&](Figure figure) {
        const ParameterRow* row = RowOf(set, figure, isCW);
        return row == nullptr ? std::string("N/A") : HasFigure(*row) ? core::NumberText(row->lastvalue) : noFigure;
    };
    return ClockText(element(Figure::Day) + "/" + element(Figure::Month) + "/" + element(Figure::Year),
                     element(Figure::Hour) + ":" + element(Figure::Minute) + ":" + element(Figure::Second));
}

std::optional<double> SystemVoltage(const ParameterSet& set, bool isCW) {
    std::optional<double> voltage;
    for (const Figure battery : {Figure::MainBattery, Figure::BackupBattery}) {
        const ParameterRow* row = RowOf(set, battery, isCW);
        if (row != nullptr && HasFigure(*row)) {
            voltage = std::max(voltage.value_or(row->lastvalue), row->lastvalue);
        }
    }
    return voltage;
}

std::string VoltageText(const ParameterSet& set, bool isCW) {
    const auto system = SystemVoltage(set, isCW);
    std::string text;
    if (!isCW) {
        text += "Main Bat.Voltage      :" + Shown(RowOf(set, Figure::MainBattery, isCW)) + " Vdc\n";
        text += "Backup Bat.Voltage :" + Shown(RowOf(set, Figure::BackupBattery, isCW)) + " Vdc\n";
    }
    text += "System Bat. Voltage :" + (system ? core::FixedText(*system, voltPlaces) : std::string("N/A")) + " Vdc\n";
    return text + "Board Temp.            :" + Shown(RowOf(set, Figure::BoardTemperature, isCW)) + " C";
}

std::string VoltageAlarm(const ParameterSet& set, bool isCW, double voltlimit) {
    const ParameterRow* main = RowOf(set, Figure::MainBattery, isCW);
    const auto system = SystemVoltage(set, isCW);
    const bool read = main != nullptr && main->read;
    return read && system && *system < voltlimit ? "System battery voltage is " + core::FixedText(*system, voltPlaces)
                                                 : std::string();
}

}  // namespace session
