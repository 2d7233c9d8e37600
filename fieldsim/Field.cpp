#include "fieldsim/Field.h"

#include <algorithm>

#include "core/Text.h"
#include "fieldsim/FieldBsap.h"
#include "fieldsim/GasBehaviour.h"
#include "fieldsim/GasHistory.h"

namespace fieldsim {

namespace {

// The place of a row: the list position of "54-83", or a register; 0 when it has none.
int Position(const std::string& startaddress) {
    const std::size_t dash = startaddress.find('-');
    const double number = core::Val(dash == std::string::npos ? startaddress : startaddress.substr(dash + 1));
    return number >= 1 && number <= 65536 ? static_cast<int>(number) : 0;
}

bool IsLogical(const core::Row& row) {
    const std::string address = row.Text("startaddress");
    if (address.find('-') != std::string::npos) {
        return address.starts_with("55-");
    }
    return core::RowKindOf(row.Text("type")) == core::ValueKind::Logical;
}

std::unique_ptr<ModbusSlave> MakeModbus(Field::Served& served, core::Database& dbconn, StationMap map,
                                        const Behaviour& behaviour, bool silent, int contractHour) {
    const core::Station& station = served.station;
    ModbusMap modbus = MakeModbusMap(std::move(map.analogs), std::move(map.logicals), station.rtuBitsMode, behaviour);
    const int lastMapped = modbus.registers->Signals().empty() ? 0 : modbus.registers->Signals().back().position;
    const auto counts = core::ReadModelCounts(dbconn, station, 1);
    // A station has all registers and coils of its model, whether or not its map speaks of them.
    if (counts && !station.MB_CONFIG) {
        modbus.lastRegister = std::max(modbus.lastRegister, counts->floatcount * 2);
        modbus.lastCoil = std::max(modbus.lastCoil, counts->boolcount);
    }
    if (counts) {
        served.archive = StationArchive(station, counts->archive, behaviour, contractHour);
        modbus.archive = MakeArchiveWindows(served.archive, station.rtuBitsMode);
    }
    served.values[1] = {modbus.registers, modbus.coils};
    auto slave =
        std::make_unique<ModbusSlave>(station.slaveaddress, station.framing, std::move(modbus), AnswerMs(station));
    slave->NeverAnswer(silent ? lastMapped : 0);
    return slave;
}

std::unique_ptr<QuantumUnit> MakeQuantum(Field::Served& served, std::vector<Signal> signals, const Behaviour& behaviour,
                                         bool silent) {
    int position = 0;
    for (Signal& signal : signals) {
        signal.kind = Kind::Decimal;
        signal.position = ++position;
    }
    const auto values = std::make_shared<SignalList>(std::move(signals), behaviour);
    served.values[1] = {values};
    QuantumOptions options;
    options.silentMessage = silent ? 2 : 0;
    options.answerMs = AnswerMs(served.station);
    return std::make_unique<QuantumUnit>(served.station.slaveaddress, values, options);
}

}  // namespace

StationMap LoadMap(core::Database& dbconn, std::int64_t locationID, int streamno) {
    StationMap map;
    const auto rows =
        dbconn.Query("select * from configdata_detail where locationID=? and ifnull(StreamNo, 1)=? order by srno",
                     {locationID, streamno});
    for (const core::Row& row : rows) {
        Signal signal;
        signal.position = Position(row.Text("startaddress"));
        signal.description = row.Text("description");
        signal.unit = row.Text("unit");
        if (signal.position == 0) {
            continue;
        }
        if (IsLogical(row)) {
            signal.kind = Kind::Logical;
            map.logicals.push_back(std::move(signal));
        } else {
            signal.kind = core::RowKindOf(row.Text("type")) == core::ValueKind::Integer ? Kind::Integer : Kind::Float;
            map.analogs.push_back(std::move(signal));
        }
    }
    return map;
}

Field::Field(core::Database& dbconn, const FieldOptions& options) {
    for (const core::Row& row : dbconn.Query("select locationID from configdata_master order by locationID")) {
        const auto station = core::ReadOnlineStation(dbconn, row.Long("locationID"));
        if (!station || !station->ip.empty()) {
            continue;
        }
        Served served;
        served.station = *station;
        Device& device = Make(served, dbconn, options);
        Connect(*station, WithFaults(served, device, options), options);
        stations_.push_back(std::move(served));
    }
    for (auto& [port, modem] : modems_) {
        lines_[port].Add(modem);
    }
}

Device& Field::Make(Served& served, core::Database& dbconn, const FieldOptions& options) {
    Device& device = MakeDevice(served, dbconn, options);
    served.device = &device;
    served.written = dynamic_cast<WritableStation*>(&device);
    const auto manners = options.writes.find(served.station.locationID);
    if (served.written != nullptr && manners != options.writes.end()) {
        served.written->Manners() = manners->second;
    }
    return device;
}

Device& Field::MakeDevice(Served& served, core::Database& dbconn, const FieldOptions& options) {
    const core::Station& station = served.station;
    const bool silent = options.silent.count(station.locationID) != 0;
    const auto behaviour = [&options, &station](int streamno) {
        const auto seed = static_cast<std::uint32_t>(station.locationID * 4 + streamno);
        return GasBehaviour(options.seed * 1000003U + seed, options.contractHour, options.alarmCycle);
    };
    if (station.protocol == core::Protocol::Modbus) {
        StationMap map = LoadMap(dbconn, station.locationID, 1);
        return Keep(MakeModbus(served, dbconn, std::move(map), behaviour(1), silent, options.contractHour));
    }
    if (station.protocol == core::Protocol::Quantum) {
        return Keep(MakeQuantum(served, LoadMap(dbconn, station.locationID, 1).analogs, behaviour(1), silent));
    }
    served.bsap = &Keep(MakeBsap(served, dbconn, options, behaviour));
    return *served.bsap;
}

Device& Field::WithFaults(Served& served, Device& device, const FieldOptions& options) {
    const auto own = options.faults.find(served.station.locationID);
    if (own == options.faults.end() && !options.faultsElsewhere) {
        return device;
    }
    LineFaults::Options faults = own != options.faults.end() ? own->second : *options.faultsElsewhere;
    if (own == options.faults.end()) {
        faults.seed += static_cast<std::uint32_t>(served.station.locationID);
    }
    served.faults = &Keep(std::make_unique<LineFaults>(device, std::move(faults)));
    return *served.faults;
}

void Field::Connect(const core::Station& station, Device& device, const FieldOptions& options) {
    if (station.phoneno.empty()) {
        lines_[station.comport].Add(device);
        return;
    }
    HayesModem& modem = modems_[station.comport];
    if (const auto script = options.modems.find(station.comport); script != options.modems.end()) {
        modem.Script(script->second);
    }
    SharedLine& number = numbers_[std::to_string(station.comport) + ":" + station.phoneno];
    number.Add(device);
    modem.PhoneBook(core::UpperText(station.phoneno), number);
}

template <class Made>
Made& Field::Keep(std::unique_ptr<Made> device) {
    Made& kept = *device;
    devices_.push_back(std::move(device));
    return kept;
}

std::map<int, Device*> Field::Ports() {
    std::map<int, Device*> ports;
    for (auto& [port, line] : lines_) {
        ports[port] = &line;
    }
    return ports;
}

void Field::AttachTo(SimPorts& line) {
    for (const auto& [port, device] : Ports()) {
        line.Attach(port, *device);
    }
}

const Field::Served* Field::Station(std::int64_t locationID) const {
    const auto found = std::find_if(stations_.begin(), stations_.end(),
                                    [&](const Served& served) { return served.station.locationID == locationID; });
    return found != stations_.end() ? &*found : nullptr;
}

HayesModem* Field::Modem(int port) {
    const auto modem = modems_.find(port);
    return modem != modems_.end() ? &modem->second : nullptr;
}

void Field::ChangePrograms(bool back) const {
    for (const Served& served : stations_) {
        if (served.program != nullptr) {
            back ? ChangeProgramBack(*served.program) : ChangeProgram(*served.program);
        }
    }
}

void Field::VentTransmitters(bool vented) const {
    for (const Served& served : stations_) {
        for (std::size_t i = 0; served.transmitters != nullptr && i < kTransmitters; ++i) {
            served.transmitters->Manner(static_cast<Transmitter>(i)).vented = vented;
        }
    }
}

SignalList* Field::Values(std::int64_t locationID, int streamno, std::string_view description) const {
    const Served* served = Station(locationID);
    const auto lists = served != nullptr ? served->values.find(streamno) : decltype(served->values.end()){};
    if (served == nullptr || lists == served->values.end()) {
        return nullptr;
    }
    for (const auto& list : lists->second) {
        if (list->Find(description) != nullptr) {
            return list.get();
        }
    }
    return nullptr;
}

std::optional<double> Field::LastServed(std::int64_t locationID, int streamno, std::string_view description) const {
    const SignalList* list = Values(locationID, streamno, description);
    const auto served = list != nullptr ? list->Served(description) : std::vector<ServedValue>();
    return served.empty() ? std::nullopt : std::optional(served.back().value);
}

bool Field::WasServed(std::int64_t locationID, int streamno, std::string_view description, double value) const {
    const SignalList* list = Values(locationID, streamno, description);
    return list != nullptr && list->WasServed(description, value);
}

}  // namespace fieldsim
