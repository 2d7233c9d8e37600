// fieldsim: plays the stations of a register on pseudo-terminals.

#include <algorithm>
#include <array>
#include <csignal>
#include <deque>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "core/Database.h"
#include "core/Text.h"
#include "fieldsim/Field.h"
#include "fieldsim/GasHistory.h"
#include "fieldsim/PtyPorts.h"

namespace {

volatile std::sig_atomic_t stopped = 0;

void Stop(int) {
    stopped = 1;
}

volatile std::sig_atomic_t programChanges = 0;

void ChangeProgram(int) {
    programChanges = programChanges + 1;
}

volatile std::sig_atomic_t turnsOfValves = 0;

void TurnValves(int) {
    turnsOfValves = turnsOfValves + 1;
}

constexpr const char* kUsage =
    "usage: fieldsim --directory DIR [options]\n"
    "Plays every station of DIR/Kolmar.mdb on the ports that its table comports names (column device).\n"
    "  --seed N               other values\n"
    "  --contract-hour H      the gas day begins at this hour (6)\n"
    "  --bsap-counts-for-itself  BSAP stations do not give back the numbers of a request, and are always ready\n"
    "  --acknowledge-first    BSAP lists, archives and audits are answered on the poll after the request\n"
    "  --modem COM3=A,B,...   what the dials on a port give: CONNECT, NO CARRIER, NO ANSWER, BUSY, ERROR or SILENT\n"
    "  --no-carrier-first     the first dial on every port gives NO CARRIER\n"
    "  --fault LOCATION=A,..  what becomes of a station's answers, one after the other: None, Silence, NoiseBefore,\n"
    "                         NoiseAfter, BadCheck, Cut, Late, Exception, Echo, NoCarrier\n"
    "  --chance FAULT=P       at all other stations a fault meets an answer with this probability, 0 to 1\n"
    "  --silent LOCATION      a station that never answers for one of its lists, registers or messages\n"
    "  --write LOCATION=A,..  what becomes of the writes to a station, the last for all that follow: None, Refuse, "
    "Late,\n"
    "                         LostBefore, LostAfter, Ignore, Limit, Slow\n"
    "  --history LOCATION=A   what a BSAP station keeps of its past: none, empty, one (record), wrapped, long "
    "(10,000)\n"
    "  --alarm-cycle SECONDS  live values of alarm blocks pass through all their limits and back in that time\n"
    "  --transmitters LOCATION=A,..  how the DP, SP and temperature transmitters of a BSAP station take a "
    "calibration,\n"
    "                         the last for all that follow: Calibrates, Refuses, Drifts (a percent a minute)\n"
    "On SIGUSR1 an engineer changes the program (list 10) of every BSAP station, and back on the next. On SIGUSR2 the\n"
    "transmitters of all are vented, and on the next they measure again.\n";

struct Arguments {
    std::filesystem::path directory;
    fieldsim::FieldOptions field;
    bool noCarrierFirst = false;
};

std::vector<std::string> Pieces(const std::string& text) {
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (c == ',') {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

int Number(const std::string& text) {
    return static_cast<int>(core::Val(text));
}

// "COM3": the port number is the last character, as in the stations' records.
int PortNumber(const std::string& name) {
    return name.empty() ? 0 : Number(name.substr(name.size() - 1));
}

std::deque<fieldsim::DialOutcome> ModemScript(const std::string& text) {
    std::deque<fieldsim::DialOutcome> script;
    for (const std::string& result : Pieces(text)) {
        fieldsim::DialOutcome outcome;
        if (core::SameText(result, "SILENT")) {
            outcome.result.clear();
        } else if (!core::SameText(result, "CONNECT")) {
            outcome.result = core::UpperText(result);
        }
        script.push_back(outcome);
    }
    return script;
}

// The script of a station's faults; nothing when a name in it is none.
std::optional<fieldsim::LineFaults::Options> FaultScript(const std::string& text) {
    fieldsim::LineFaults::Options faults;
    for (const std::string& name : Pieces(text)) {
        const auto fault = fieldsim::FaultByName(name);
        if (!fault) {
            return std::nullopt;
        }
        faults.script.push_back(*fault);
    }
    return faults;
}

bool ApplyFault(fieldsim::FieldOptions& field, std::int64_t locationID, const std::string& names) {
    const auto script = FaultScript(names);
    if (script) {
        field.faults[locationID] = *script;
    }
    return script.has_value();
}

bool ApplyChance(fieldsim::FieldOptions& field, const std::string& name, double chance) {
    const auto fault = fieldsim::FaultByName(name);
    if (!fault) {
        return false;
    }
    if (!field.faultsElsewhere) {
        field.faultsElsewhere.emplace();
        field.faultsElsewhere->seed = field.seed;
    }
    field.faultsElsewhere->chances[*fault] = chance;
    return true;
}

bool ApplyWrites(fieldsim::WriteManners& manners, const std::string& names) {
    for (const std::string& name : Pieces(names)) {
        const auto fault = fieldsim::WriteFaultByName(name);
        if (!fault) {
            return false;
        }
        manners.script.push_back(*fault);
    }
    manners.otherwise = manners.script.back();
    return true;
}

bool ApplyHistory(fieldsim::FieldOptions& field, std::int64_t locationID, const std::string& kind) {
    field.histories[locationID] = [kind](fieldsim::StationHistory& history) { fieldsim::MakeHistory(history, kind); };
    fieldsim::StationHistory none;
    return fieldsim::MakeHistory(none, kind);
}

bool ApplyTransmitters(fieldsim::FieldOptions& field, std::int64_t locationID, const std::string& names) {
    static constexpr std::array<const char*, 3> known = {"Calibrates", "Refuses", "Drifts"};
    const std::vector<std::string> manners = Pieces(names);
    field.transmitters[locationID] = [manners](fieldsim::Transmitters& transmitters) {
        for (std::size_t i = 0; i < fieldsim::kTransmitters; ++i) {
            const std::string& name = manners[std::min(i, manners.size() - 1)];
            auto& manner = transmitters.Manner(static_cast<fieldsim::Transmitter>(i));
            manner.refuses = core::SameText(name, "Refuses");
            manner.driftPerMinute = core::SameText(name, "Drifts") ? manner.process / 100 : 0;
        }
    };
    return manners.size() <= fieldsim::kTransmitters &&
           std::all_of(manners.begin(), manners.end(), [](const std::string& name) {
               return std::any_of(known.begin(), known.end(),
                                  [&](const char* other) { return core::SameText(name, other); });
           });
}

// An option with a value. False: there is no such option, or its value is none.
bool Apply(Arguments& arguments, const std::string& option, const std::string& value) {
    const std::size_t equals = value.find('=');
    const std::string key = value.substr(0, equals);
    const std::string rest = equals == std::string::npos ? std::string() : value.substr(equals + 1);
    fieldsim::FieldOptions& field = arguments.field;
    if (option == "--directory") {
        arguments.directory = value;
    } else if (option == "--seed") {
        field.seed = static_cast<std::uint32_t>(Number(value));
    } else if (option == "--contract-hour") {
        field.contractHour = Number(value);
    } else if (option == "--modem") {
        field.modems[PortNumber(key)] = ModemScript(rest);
    } else if (option == "--fault") {
        return ApplyFault(field, Number(key), rest);
    } else if (option == "--chance") {
        return ApplyChance(field, key, core::Val(rest));
    } else if (option == "--silent") {
        field.silent.insert(Number(value));
    } else if (option == "--write") {
        return ApplyWrites(field.writes[Number(key)], rest);
    } else if (option == "--history") {
        return ApplyHistory(field, Number(key), rest);
    } else if (option == "--transmitters") {
        return ApplyTransmitters(field, Number(key), rest);
    } else if (option == "--alarm-cycle") {
        field.alarmCycle = Number(value);
    } else {
        return false;
    }
    return true;
}

bool Read(Arguments& arguments, const std::vector<std::string>& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--no-carrier-first") {
            arguments.noCarrierFirst = true;
        } else if (words[i] == "--bsap-counts-for-itself") {
            arguments.field.bsapCountsForItself = true;
        } else if (words[i] == "--acknowledge-first") {
            arguments.field.answers = fieldsim::DataAnswer::AcknowledgeFirst;
        } else if (i + 1 == words.size() || !Apply(arguments, words[i], words[i + 1])) {
            return false;
        } else {
            ++i;
        }
    }
    return !arguments.directory.empty();
}

// Opens every port of the field at its device. Tells whether all of them are open.
bool OpenPorts(fieldsim::PtyPorts& ports, fieldsim::Field& field, core::Database& dbconn,
               const std::filesystem::path& directory) {
    bool all = true;
    for (const auto& [number, device] : field.Ports()) {
        const std::string name = "COM" + std::to_string(number);
        const auto row = dbconn.First("select device from comports where portname=?", {name});
        const std::string failure =
            row ? ports.Open(directory / row->Text("device"), *device) : "not in the table comports";
        if (!failure.empty()) {
            std::cerr << name << ": " << failure << '\n';
            all = false;
        }
    }
    return all;
}

void PrintStations(const fieldsim::Field& field) {
    for (const auto& served : field.Stations()) {
        const core::Station& station = served.station;
        std::cout << station.locationID << '\t' << station.consumer << "\tCOM" << station.comport << '\t'
                  << station.ProtocolText() << "\taddress " << station.slaveaddress
                  << (station.phoneno.empty() ? "" : "\tdial " + station.phoneno) << '\n';
    }
}

// What signals have asked for so far.
struct Occasions {
    int programChanges = 0;
    int turnsOfValves = 0;
};

// Does what was asked for since the last time, and says so.
void Happen(const fieldsim::Field& field, Occasions& seen) {
    for (; seen.programChanges < programChanges; ++seen.programChanges) {
        const bool back = seen.programChanges % 2 == 1;
        field.ChangePrograms(back);
        std::cout << (back ? "programs changed back" : "programs changed") << std::endl;
    }
    for (; seen.turnsOfValves < turnsOfValves; ++seen.turnsOfValves) {
        const bool back = seen.turnsOfValves % 2 == 1;
        field.VentTransmitters(!back);
        std::cout << (back ? "transmitters measure" : "transmitters vented") << std::endl;
    }
}

int Run(Arguments arguments) {
    fieldsim::PtyPorts ports;
    core::Database dbconn(arguments.directory / "Kolmar.mdb");
    if (arguments.noCarrierFirst) {
        for (int port = 0; port <= 9; ++port) {
            arguments.field.modems[port].push_front({"NO CARRIER"});
        }
    }
    fieldsim::Field field(dbconn, arguments.field);
    if (!OpenPorts(ports, field, dbconn, arguments.directory)) {
        return 1;
    }
    PrintStations(field);
    std::cout << "ready" << std::endl;
    Occasions seen;
    while (stopped == 0) {
        ports.Turn(200);
        Happen(field, seen);
    }
    return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
    Arguments arguments;
    if (!Read(arguments, std::vector<std::string>(argv + 1, argv + argc))) {
        std::cerr << kUsage;
        return 2;
    }
    std::signal(SIGTERM, Stop);
    std::signal(SIGINT, Stop);
    std::signal(SIGUSR1, ChangeProgram);
    std::signal(SIGUSR2, TurnValves);
    try {
        return Run(std::move(arguments));
    } catch (const core::DatabaseError& error) {
        std::cerr << "fieldsim: " << error.what() << '\n';
        return 1;
    }
}
