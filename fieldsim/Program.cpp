#include "fieldsim/Program.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

namespace fieldsim {

namespace {

// The kinds of records by their type codes.
enum Type { Number = 2, NumberAlarm = 6, Unknown = 9, System = 50, Logical = 0, LogicalAlarm = 4, OtherLogical = 68 };

struct Row {
    const char* name;
    const char* unit;
    Type type;
    double value;
    bool moves = false;
    const char* text = nullptr;  // with one it is a text, whatever its type
};

constexpr Row kRows[] = {
    {"METER1.FLOW.RATE", "SCMH", Number, 1250.5, true},
    {"METER1.FLOW.ACUM", "SCM", Number, 482913.25},
    {"METER1.DIFF.PRES", "INH2O", Number, 48.25, true},
    {"METER1.STAT.PRES", "KG/CM2", Number, 21.5, true},
    {"METER1.GAS.TEMP", "DEG.C", Number, 27.75, true},
    {"METER1.PIPE.DIA", "MM", Number, 202.74},
    {"METER1.ORIF.DIA", "MM", Number, 101.6},
    {"METER1.BETA.RTIO", "", Number, 0.501134},
    {"METER1.TAP.TYPE", "", Logical, 1},
    {"METER1.TAP.LOC", "", OtherLogical, 0},
    {"METER1.DIFF.HI", "INH2O", NumberAlarm, 90},
    {"METER1.DIFF.LO", "INH2O", NumberAlarm, 5},
    {"METER1.PRES.HI", "KG/CM2", NumberAlarm, 40},
    {"METER1.PRES.LO", "KG/CM2", NumberAlarm, 2.5},
    {"METER1.DIFF.ALRM", "", LogicalAlarm, 0},
    {"METER1.PRES.ALRM", "", LogicalAlarm, 1},
    {"METER1.FLOW.SETP", "SCMH", Number, 1200},
    {"METER1.GAS.GRAV", "", Number, 0.6055},
    {"METER1.GAS.CO2", "MOL.%", Number, 0.85},
    {"METER1.GAS.N2", "MOL.%", Number, 1.4},
    {"METER1.HEAT.VAL", "MJ/SCM", Number, 38.9},
    {"AMB.AIR.TEMP", "DEG.C", Number, -3.25},
    {"BATT.VOLT.", "VOLT", Unknown, 12.625, true},
    {"SOLAR.VOLT.", "VOLT", Unknown, 17.25, true},
    {"#LINE.001.", "", System, 9600},
    {"#POLLPER.000.", "SEC", System, 10},
    {"#TIME.001.", "", System, 16},
    {"SITE.NAME.", "", Number, 0, false, "KOLMAR GATE 2"},
    {"SITE.TECH.", "", Number, 0, false, "R. O'NEIL"},
    {"SITE.NOTE.", "", Number, 0, false, ""},
    {"PUMP.RUN.", "ON", Logical, 1},
    {"DOOR.OPEN.", "", OtherLogical, 1},
};

Kind KindOf(const Row& row) {
    const bool logical = row.type == Logical || row.type == LogicalAlarm || row.type == OtherLogical;
    return row.text != nullptr ? Kind::Text : logical ? Kind::Logical : Kind::Float;
}

Signal SignalOf(const Row& row, int position) {
    return {position,
            row.name,
            row.unit,
            KindOf(row),
            row.value,
            row.text != nullptr ? -1 : static_cast<int>(row.type),
            row.text != nullptr ? row.text : ""};
}

bool Moves(const std::string& name) {
    return std::any_of(std::begin(kRows), std::end(kRows),
                       [&](const Row& row) { return row.moves && row.name == name; });
}

// The delivered row of that name, and its place.
Signal Delivered(std::string_view name) {
    const Row* const row =
        std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& other) { return other.name == name; });
    return SignalOf(*row, static_cast<int>(row - std::begin(kRows)) + 1);
}

// Up to two percent above and below, within minutes.
double Moving(const Signal& signal, const core::DateTime& at, std::uint32_t seed) {
    const std::size_t own = std::hash<std::string>()(signal.description) % 97 + seed % 89;
    const auto period = static_cast<double>(240 + 11 * (own % 13));
    const double turns = static_cast<double>(core::ToSeconds(at) % 1000000) / period + static_cast<double>(own) / 97;
    return signal.value * (1 + 0.02 * std::sin(2 * std::numbers::pi * turns));
}

constexpr std::string_view kDiameter = "METER1.ORIF.DIA";
constexpr std::string_view kGravity = "METER1.GAS.GRAV";
constexpr std::string_view kRemoved = "METER1.TAP.LOC";
constexpr std::string_view kTurnedToText = "METER1.HEAT.VAL";
constexpr Row kInserted = {"METER1.FLOW.CUT", "SCMH", Number, 25};
constexpr int kInsertedAt = 14;

}  // namespace

std::shared_ptr<SignalList> MakeProgram(std::uint32_t seed) {
    std::vector<Signal> signals;
    for (const Row& row : kRows) {
        signals.push_back(SignalOf(row, static_cast<int>(signals.size()) + 1));
    }
    return std::make_shared<SignalList>(std::move(signals), [seed](const Signal& signal, const core::DateTime& at) {
        return Moves(signal.description) ? Moving(signal, at, seed) : signal.value;
    });
}

void ChangeProgram(SignalList& program) {
    program.SetValue(kDiameter, 95.25);
    program.SetValue(kGravity, 0.6125);
    program.Remove(kRemoved);
    if (program.Find(kInserted.name) == nullptr) {
        program.Insert(kInsertedAt, SignalOf(kInserted, kInsertedAt));
    }
    Signal text = Delivered(kTurnedToText);
    text.kind = Kind::Text;
    text.unit.clear();
    text.text = "BY CHROMATOGRAPH";
    program.Replace(kTurnedToText, text);
}

void ChangeProgramBack(SignalList& program) {
    program.SetValue(kDiameter, Delivered(kDiameter).value);
    program.SetValue(kGravity, Delivered(kGravity).value);
    program.Remove(kInserted.name);
    if (program.Find(kRemoved) == nullptr) {
        program.Insert(Delivered(kRemoved).position, Delivered(kRemoved));
    }
    program.Replace(kTurnedToText, Delivered(kTurnedToText));
}

}  // namespace fieldsim
