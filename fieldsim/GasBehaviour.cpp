#include "fieldsim/GasBehaviour.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <initializer_list>
#include <numbers>
#include <string>
#include <string_view>
#include <utility>

#include "fieldsim/StationClock.h"

namespace fieldsim {

namespace {

constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kDay = 24 * kHour;
constexpr double kTurn = 2 * std::numbers::pi;

// How far the flow rises and falls about its mean over the day; highest in the afternoon.
constexpr double kDaySwing = 0.4;
constexpr double kMeanHour = 8;

// How the description of an alarm block's value ends, behind the block's name.
constexpr std::string_view kLive = " Live";

// Where alarm limits lie, as shares of the live value's level.
constexpr double kLoLo = 0.4;
constexpr double kLo = 0.6;
constexpr double kHi = 1.6;
constexpr double kHiHi = 1.8;

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return lower;
}

bool HasAny(const std::string& text, std::initializer_list<const char*> words) {
    for (const char* word : words) {
        if (text.find(word) != std::string::npos) {
            return true;
        }
    }
    return false;
}

double HourOfDay(std::int64_t seconds) {
    return static_cast<double>(seconds % kDay) / kHour;
}

bool IsLimit(const std::string& name) {
    return HasAny(name, {" lo limit", " hi limit", " lo-lo", " hi-hi", " lo deadband", " hi deadband"});
}

bool IsSetting(const std::string& name) {
    return HasAny(name,
                  {"alarm", "limit", "set ", "constant", "factor", "multiplier", "adjustment", "reference", "base ",
                   "contract", "maximum", "minimum", "keypad", "pid ", "dial-out", "atmospheric", "override"});
}

// What a standard cubic metre is in the quantity that a name speaks of.
double PerStandardVolume(const std::string& name) {
    if (name.find("energy") != std::string::npos) {
        return 0.0385;
    }
    if (name.find("mass") != std::string::npos) {
        return 0.735;
    }
    return HasAny(name, {"flowing vol", "uncorr", "un vol"}) ? 1 / 18.0 : 1;
}

}  // namespace

GasBehaviour::GasBehaviour(std::uint32_t seed, int contractHour, int alarmCycle)
    : seed_(seed), contractHour_(contractHour), alarmCycle_(alarmCycle), hourlyFlow_(200 + 1800 * Share("flow")) {}

double GasBehaviour::operator()(const Signal& signal, const core::DateTime& at) const {
    const bool alarming = alarmCycle_ > 0 && signal.kind != Kind::Logical && signal.description.ends_with(kLive);
    return alarming ? Alarming(signal, core::ToSeconds(at)) : Usual(signal, at);
}

double GasBehaviour::Usual(const Signal& signal, const core::DateTime& at) const {
    const std::string name = Lower(signal.description);
    const std::string unit = Lower(signal.unit);
    const std::int64_t seconds = core::ToSeconds(at);
    if (signal.kind == Kind::Logical) {
        return State(name, seconds);
    }
    if (IsLimit(name)) {
        return Limit(signal);
    }
    if (IsSetting(name)) {
        return Setting(signal);
    }
    if (ShowsClock(name)) {
        return Clock(name, at);
    }
    if (name.starts_with("flow time")) {
        const double hours = name.find("yesterday") != std::string::npos ? 24 : HoursIntoGasDay(seconds);
        return unit.find("min") != std::string::npos ? hours * 60 : hours;
    }
    if (HasAny(name, {"flow rate", "flowrate", "energy rate"})) {
        return Flow(seconds) * PerStandardVolume(name);
    }
    if (HasAny(name, {"volume", "energy", "mass"}) && name.find("molar") == std::string::npos) {
        return Amount(name, seconds) * PerStandardVolume(name);
    }
    if (HasAny(name, {"volt", "battery", "solar"})) {
        return Electric(name, seconds);
    }
    if (HasAny(name, {"temperature", "temprature"})) {
        return Temperature(unit, seconds);
    }
    if (name.find("pressure") != std::string::npos || name == "dp used") {
        return Pressure(name, unit, seconds);
    }
    return Setting(signal);
}

double GasBehaviour::Clock(const std::string& name, const core::DateTime& at) const {
    const double date = at.day * 10000 + at.month * 100 + at.year % 100;
    const double time = at.hour * 10000 + at.minute * 100 + at.second;
    if (name.find("dd mm yy") != std::string::npos) {
        return date * 1000000 + time;
    }
    const std::string part =
        name.substr(name.find("time") == std::string::npos || name == "time" ? 0 : name.find("time") + 4);
    if (part.find("year") != std::string::npos) {
        return at.year;
    }
    if (part.find("month") != std::string::npos) {
        return at.month;
    }
    if (HasAny(part, {"day", "date"})) {
        return name == "date" ? date : at.day;
    }
    if (part.find("hour") != std::string::npos) {
        return at.hour;
    }
    if (part.find("min") != std::string::npos) {
        return at.minute;
    }
    return part.find("sec") != std::string::npos ? at.second : time;
}

double GasBehaviour::Amount(const std::string& name, std::int64_t seconds) const {
    const std::int64_t day = GasDay(seconds);
    const double today = DayVolume(day, HoursIntoGasDay(seconds));
    if (HasAny(name, {"today", "current  24", "current 24"})) {
        return today;
    }
    if (HasAny(name, {"yesterday", "last 24"})) {
        return DayVolume(day - 1, 24);
    }
    if (name.find("this month") != std::string::npos) {
        return DaysVolume(MonthStart(day, 0), day) + today;
    }
    if (name.find("last month") != std::string::npos) {
        return DaysVolume(MonthStart(day, 1), MonthStart(day, 0));
    }
    if (name.find("hour") != std::string::npos) {
        return Flow(seconds - (name.find("previous") != std::string::npos ? kHour : 0));
    }
    // Since the station was built, in whole years of mean flow and then day by day.
    constexpr std::int64_t built = 18262;  // 1 January 2020
    const std::int64_t years = (day - built) / 365;
    return static_cast<double>(years * 365) * 24 * hourlyFlow_ + DaysVolume(built + years * 365, day) + today;
}

double GasBehaviour::Flow(std::int64_t seconds) const {
    const double day = 0.9 + 0.2 * Share("day" + std::to_string(GasDay(seconds)));
    return hourlyFlow_ * day * (1 + kDaySwing * std::sin(kTurn * (HourOfDay(seconds) - kMeanHour) / 24));
}

double GasBehaviour::DayVolume(std::int64_t day, double hours) const {
    const double from = contractHour_ - kMeanHour;
    const double swing = kDaySwing * 24 / kTurn * (std::cos(kTurn * from / 24) - std::cos(kTurn * (from + hours) / 24));
    return hourlyFlow_ * (0.9 + 0.2 * Share("day" + std::to_string(day))) * (hours + swing);
}

double GasBehaviour::DaysVolume(std::int64_t firstDay, std::int64_t endDay) const {
    double volume = 0;
    for (std::int64_t day = firstDay; day < endDay; ++day) {
        volume += DayVolume(day, 24);
    }
    return volume;
}

std::int64_t GasBehaviour::GasDay(std::int64_t seconds) const {
    return (seconds - contractHour_ * kHour) / kDay;
}

double GasBehaviour::HoursIntoGasDay(std::int64_t seconds) const {
    return static_cast<double>((seconds - contractHour_ * kHour) % kDay) / kHour;
}

std::int64_t GasBehaviour::MonthStart(std::int64_t day, int monthsBack) const {
    core::DateTime start = core::FromSeconds(day * kDay);
    start.day = 1;
    if (monthsBack > 0) {
        start = core::FromSeconds(core::ToSeconds(start) - kDay);
        start.day = 1;
    }
    return core::ToSeconds(start) / kDay;
}

double GasBehaviour::Electric(const std::string& name, std::int64_t seconds) const {
    const double sun = std::max(0.0, std::sin(kTurn * (HourOfDay(seconds) - 6) / 24));
    if (name.find("solar") != std::string::npos) {
        return 18 * sun;
    }
    if (HasAny(name, {"backup", "ram", "lithium"})) {
        return 3.3 + 0.3 * Share(name);
    }
    return 12.2 + 1.4 * sun + 0.1 * Wander(name, seconds);
}

double GasBehaviour::Pressure(const std::string& name, const std::string& unit, std::int64_t seconds) const {
    if (HasAny(name, {"diff", "dp"})) {
        return 20 + 100 * std::pow(Flow(seconds) / hourlyFlow_, 2) + Wander(name, seconds);
    }
    const double bar = 12 + 12 * Share("pressure") + 0.6 * Wander("pressure", seconds);
    if (unit.find("psi") != std::string::npos) {
        return bar * 14.5038;
    }
    if (unit.find("kpa") != std::string::npos) {
        return bar * 100;
    }
    return unit.find("kg") != std::string::npos ? bar * 1.01972 : bar;
}

double GasBehaviour::Temperature(const std::string& unit, std::int64_t seconds) const {
    const double celsius =
        24 + 6 * std::sin(kTurn * (HourOfDay(seconds) - 9) / 24) + 1.5 * Wander("temperature", seconds);
    return unit.find('f') != std::string::npos ? celsius * 1.8 + 32 : celsius;
}

// The level about which a block's live value moves: what it was when the station was built.
double GasBehaviour::LiveLevel(const std::string& block, const std::string& unit) const {
    return Usual({0, block, unit}, {2020, 1, 1, 12, 0, 0});
}

double GasBehaviour::Alarming(const Signal& signal, std::int64_t seconds) const {
    static constexpr std::array<double, 6> edges = {kLoLo - 0.2, kLoLo, kLo, kHi, kHiHi, kHiHi + 0.2};
    constexpr double bands = edges.size() - 1;
    const double cycles = static_cast<double>(seconds % alarmCycle_) / alarmCycle_ + Share(signal.description);
    // Each band takes a tenth of the cycle on the way up and another on the way down.
    const double risen = bands * (1 - std::fabs(1 - 2 * (cycles - std::floor(cycles))));
    const auto band = std::min(static_cast<std::size_t>(risen), edges.size() - 2);
    const double share = edges[band] + (edges[band + 1] - edges[band]) * (risen - static_cast<double>(band));
    return share * LiveLevel(signal.description.substr(0, signal.description.size() - kLive.size()), signal.unit);
}

// Alarm limits lie around that level.
double GasBehaviour::Limit(const Signal& signal) const {
    static constexpr std::array<std::pair<const char*, double>, 6> kinds = {{
        {" lo limit", kLo},
        {" hi limit", kHi},
        {" lo-lo", kLoLo},
        {" hi-hi", kHiHi},
        {" lo deadband", 0.02},
        {" hi deadband", 0.02},
    }};
    const std::string name = Lower(signal.description);
    for (const auto& [suffix, share] : kinds) {
        if (const std::size_t at = name.find(suffix); at != std::string::npos) {
            return share * LiveLevel(signal.description.substr(0, at), signal.unit);
        }
    }
    return 0;
}

// Compositions, constants and whatever else stays as it was set.
double GasBehaviour::Setting(const Signal& signal) const {
    const std::string name = Lower(signal.description);
    const double share = Share(name);
    if (name == "contract hour") {
        return contractHour_;
    }
    if (signal.kind == Kind::Integer) {
        return std::floor(1 + 99 * share);
    }
    if (name.find("methane") != std::string::npos) {
        return 93 + 3 * share;
    }
    if (HasAny(name, {"density", "gravity"}) || name == "sg") {
        return 0.56 + 0.1 * share;
    }
    if (name.find("calorific") != std::string::npos || name.find("heating") != std::string::npos) {
        return (37 + 3 * share) * (Lower(signal.unit).find("kcal") != std::string::npos ? 238.846 : 1);
    }
    if (signal.unit.find('%') != std::string::npos) {
        return share;
    }
    return std::round(1e4 * (1 + 99 * share)) / 1e4;
}

// Alarms come up on a day now and then; what is switched stays switched.
double GasBehaviour::State(const std::string& name, std::int64_t seconds) const {
    if (name.find("alarm") != std::string::npos) {
        return Share(name + std::to_string(GasDay(seconds))) < 0.06 ? 1 : 0;
    }
    return Share(name) < 0.5 ? 1 : 0;
}

double GasBehaviour::Share(std::string_view name) const {
    std::uint64_t hash = 14695981039346656037ULL ^ (seed_ * 2654435761ULL);
    for (const char c : name) {
        hash = (hash ^ static_cast<std::uint8_t>(c)) * 1099511628211ULL;
    }
    hash = (hash ^ (hash >> 29U)) * 0xBF58476D1CE4E5B9ULL;
    return static_cast<double>(hash >> 40U) / static_cast<double>(1U << 24U);
}

double GasBehaviour::Wander(std::string_view name, std::int64_t seconds) const {
    const std::int64_t hour = seconds / kHour;
    const double into = static_cast<double>(seconds % kHour) / kHour;
    const double from = Share(std::string(name) + std::to_string(hour));
    const double to = Share(std::string(name) + std::to_string(hour + 1));
    return 2 * (from + (to - from) * into) - 1;
}

}  // namespace fieldsim
