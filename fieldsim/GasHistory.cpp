#include "fieldsim/GasHistory.h"

#include <algorithm>
#include <array>
#include <string>

namespace fieldsim {

namespace {

constexpr int kMinute = 60;
constexpr int kHour = 60 * kMinute;
constexpr int kDay = 24 * kHour;

constexpr int kEvents = 40;

struct Field {
    const char* name;         // as the file shows it, at most 17 characters
    const char* description;  // of the signal that it records
    const char* unit;         // when the station's lists do not have that signal
};

constexpr Field kDiffPressure = {"DIFF. PRESSURE", "Differential Pressure", "mmWC"};
constexpr Field kPressure = {"STATIC PRESSURE", "Flowing Pressure", "kg/cm2"};
constexpr Field kTemperature = {"FLOWING TEMP.", "Flowing Temperature", "degC"};
constexpr Field kFlow = {"FLOWRATE", "Flowrate", "SCMH"};
constexpr Field kTotal = {"VOLUME ACC.", "Total Volume Accumulated", "SCM"};
constexpr Field kThisHour = {"VOLUME THIS HR", "Volume This Hour", "SCM"};
constexpr Field kToday = {"VOLUME TODAY", "Volume Today", "SCM"};
constexpr Field kLastDay = {"VOLUME YESTERDAY", "Volume Yesterday", "SCM"};
constexpr Field kEnergyTotal = {"ENERGY ACC.", "Total Energy Accumulated", "GJ"};
constexpr Field kEnergyThisHour = {"ENERGY THIS HR", "Energy This Hour", "GJ"};
constexpr Field kEnergyToday = {"ENERGY TODAY", "Energy Today", "GJ"};
constexpr Field kEnergyLastDay = {"ENERGY YESTERDAY", "Energy Yesterday", "GJ"};
constexpr Field kBattery = {"BATTERY VOLTAGE", "Main Battery Volt", "Vdc"};
constexpr Field kUncorrectedFlow = {"UNCORR. FLOWRATE", "UnCorr.Flowrate", "ACMH"};
constexpr Field kUncorrectedTotal = {"UNCORR. TOTAL", "Total Uncorrected Volume Accumulated", "ACM"};
constexpr Field kUncorrectedToday = {"UNCORR. TODAY", "Uncorrected Volume Today", "ACM"};
constexpr Field kUncorrectedLastDay = {"UNCORR. LASTDAY", "Uncorrected Volume Yesterday", "ACM"};

std::vector<Field> FieldsOf(const core::Station& station, int streamno, bool daily) {
    if (station.isTeleCorrector) {
        return {kPressure,
                kTemperature,
                kFlow,
                kUncorrectedFlow,
                kTotal,
                kToday,
                kLastDay,
                kUncorrectedTotal,
                kUncorrectedToday,
                kUncorrectedLastDay,
                kBattery};
    }
    if (!station.isCW) {
        return {kDiffPressure, kPressure, kTemperature, kFlow, kTotal, kToday, kLastDay, kBattery};
    }
    std::vector<Field> fields = {kPressure, kTemperature, kFlow, kTotal};
    if (station.ModelText(streamno) == "AGA3") {
        fields.insert(fields.begin(), kDiffPressure);
    }
    const std::vector<Field> rest =
        daily ? std::vector<Field>{kToday, kLastDay, kEnergyTotal, kEnergyToday, kEnergyLastDay}
              : std::vector<Field>{kThisHour, kEnergyTotal, kEnergyThisHour, kBattery};
    fields.insert(fields.end(), rest.begin(), rest.end());
    return fields;
}

// The field as a signal of the stream.
Signal SignalOf(const Field& field, const SignalList& analogs) {
    const Signal* live = analogs.Find(field.description);
    return live != nullptr ? *live : Signal{0, field.description, field.unit};
}

ArchiveFile MakeFile(const std::string& name, const std::vector<Field>& fields, const SignalList& analogs,
                     const Behaviour& behaviour, Recording recording) {
    ArchiveFile file;
    file.name = name;
    std::vector<Signal> signals;
    for (const Field& field : fields) {
        file.fields.emplace_back(field.name);
        signals.push_back(SignalOf(field, analogs));
    }
    recording.values = [signals, behaviour](const core::DateTime& at) {
        std::vector<double> values;
        for (const Signal& signal : signals) {
            values.push_back(behaviour(signal, at));
        }
        return values;
    };
    file.recording = std::move(recording);
    return file;
}

// One kind of event: what the station calls the signal, the signal itself, and the limit that it passed as a share of
// its value; 0: the second value is what it was an hour before.
struct Happening {
    const char* name;  // at most 15 characters, so that four events fit in a reply
    Signal signal;
    double limit;
};

}  // namespace

void AddGasArchives(StationHistory& history, const core::Station& station, int streamno, const SignalList& analogs,
                    const Behaviour& behaviour, int contractHour) {
    const int first = (streamno - 1) * 3 + 1;
    const std::string stream = std::to_string(streamno);
    const auto add = [&](int number, const char* name, bool daily, Recording recording) {
        history.archives[number] =
            MakeFile(name + stream, FieldsOf(station, streamno, daily), analogs, behaviour, std::move(recording));
    };
    add(first, "DAILY ", true, {kDay, contractHour * kHour, 40});
    add(first + 1, "HOURLY ", false, {kHour, 0, 30 * 24});
    add(first + 2, "MINUTE ", false, {kMinute, 0, 200});
}

std::vector<AuditEvent> GasEvents(const Behaviour& behaviour, const core::DateTime& now) {
    const Signal pressure = {0, kPressure.description, kPressure.unit};
    const Signal flow = {0, kFlow.description, kFlow.unit};
    const Signal battery = {0, kBattery.description, kBattery.unit};
    const Signal door = {0, "Door Alarm", "", Kind::Logical};
    // In the order of the event codes.
    const std::array<Happening, 8> happenings = {{{"PRES.SET.POINT", pressure, 0},
                                                  {"DOOR.OPEN", door, 1},
                                                  {"DOOR.OPEN", door, 1},
                                                  {"BATT.VOLT.LO", battery, 1.05},
                                                  {"FLOW.RATE.HI", flow, 0.95},
                                                  {"BATT.VOLT.LOLO", battery, 1.1},
                                                  {"FLOW.RATE.HIHI", flow, 0.9},
                                                  {"FLOW.RATE", flow, 1.1}}};
    std::vector<AuditEvent> events;
    for (int i = 0; i < kEvents; ++i) {
        const std::size_t code = static_cast<std::size_t>(i) % happenings.size();
        const Happening& what = happenings[code];
        AuditEvent event;
        event.at = core::FromSeconds(core::ToSeconds(now) - (kEvents - i) * 97 * kMinute + 94 * kMinute);
        event.flags = static_cast<std::uint8_t>(code);
        event.signal = what.name;
        event.fraction = i * 7 % 50;
        event.first = behaviour(what.signal, event.at);
        event.second = what.limit != 0 ? what.limit * event.first
                                       : behaviour(what.signal, core::FromSeconds(core::ToSeconds(event.at) - kHour));
        if (what.signal.kind == Kind::Logical) {
            event.first = code == 1 ? 1 : 0;
            event.second = 1 - event.first;
        }
        event.characters = code == 0 ? "OPERATOR" : "";
        event.localID = i + 1;
        event.globalID = i + 501;
        events.push_back(std::move(event));
    }
    return events;
}

bool MakeHistory(StationHistory& history, std::string_view kind) {
    static constexpr std::array<std::string_view, 5> kinds = {"none", "empty", "one", "wrapped", "long"};
    if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
        return false;
    }
    if (kind == "none") {
        history = {};
        return true;
    }
    for (auto& [number, file] : history.archives) {
        if (!file.recording) {
            continue;
        }
        Recording& recording = *file.recording;
        if (kind == "wrapped") {
            file.oldest = 5000;
            recording.room = recording.records;
        } else {
            recording.records = kind == "empty" ? 0 : kind == "one" ? 1 : 10000;
        }
    }
    if (kind == "empty") {
        history.audit = {};
    } else if (kind == "one") {
        history.audit.before = [before = history.audit.before](const core::DateTime& now) {
            const auto all = before ? before(now) : std::vector<AuditEvent>();
            return all.empty() ? all : std::vector<AuditEvent>{all.back()};
        };
    }
    return true;
}

}  // namespace fieldsim
