#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/Database.h"
#include "core/Station.h"
#include "fieldsim/BsapStation.h"
#include "fieldsim/HayesModem.h"
#include "fieldsim/LineFaults.h"
#include "fieldsim/ModbusArchive.h"
#include "fieldsim/ModbusSlave.h"
#include "fieldsim/Program.h"
#include "fieldsim/QuantumUnit.h"
#include "fieldsim/SharedLine.h"
#include "fieldsim/SimLine.h"
#include "fieldsim/Transmitters.h"

namespace fieldsim {

// The values that a station's rows in configdata_detail say it has.
struct StationMap {
    std::vector<Signal> analogs;   // list 54, or registers
    std::vector<Signal> logicals;  // list 55, or coils
};

// Rows whose address is not set are left out. The rows of a Quantum unit all have the address 1: they come as analogs
// that are found by name. Throws DatabaseError.
StationMap LoadMap(core::Database& dbconn, std::int64_t locationID, int streamno);

// The list numbers of a stream: 54 and 55 for a station with one; on the MultiStream models by stream and method.
int AnalogList(const core::Station& station, int streamno);
int LogicalList(const core::Station& station, int streamno);

struct FieldOptions {
    std::uint32_t seed = 1;
    int contractHour = 6;                     // at which the gas day begins, 0 to 23
    DataAnswer answers = DataAnswer::AtOnce;  // of the BSAP stations
    bool bsapCountsForItself = false;         // see BsapOptions::CountsForItself
    std::set<std::int64_t> silent{};          // stations that never answer for one list, register or message
    std::map<std::int64_t, LineFaults::Options> faults{};  // by station
    std::optional<LineFaults::Options> faultsElsewhere{};  // at all other stations, each with a seed of its own
    std::map<int, std::deque<DialOutcome>> modems{};       // scripts of the modems, by port number
    std::map<std::int64_t, WriteManners> writes{};         // how stations take writes, by station
    // Changes what a BSAP station keeps of its past, by station; it is given the history that the station has
    // otherwise.
    std::map<std::int64_t, std::function<void(StationHistory&)>> histories{};
    // Changes the signal lists of a BSAP station, by station; it is given those that the station has otherwise, its
    // program among them.
    std::map<std::int64_t, std::function<void(SignalLists&)>> programs{};
    // How the transmitters of a BSAP station measure and take a calibration, by station.
    std::map<std::int64_t, std::function<void(Transmitters&)>> transmitters{};
    int alarmCycle =
        0;  // seconds in which the live values of the alarm blocks pass through their limits; 0: they do not
};

// All devices of a station register: each station behind its port, or behind the modem there when it has a number to
// dial. "IP" stations have no line and are left out.
class Field {
  public:
    struct Served {
        core::Station station;
        Device* device = nullptr;                                        // the station itself
        WritableStation* written = nullptr;                              // the same, if it can be written to
        BsapStation* bsap = nullptr;                                     // the same, if it has archives
        LineFaults* faults = nullptr;                                    // what lies in front of it, if anything
        std::map<int, std::vector<std::shared_ptr<SignalList>>> values;  // by stream
        std::vector<ModbusArchiveFile> archive;                          // daily and hourly, of a Modbus station
        std::shared_ptr<SignalList> program;                             // list 10 of a BSAP station, if it has one
        std::shared_ptr<Transmitters> transmitters;                      // whose signals are its list 20
    };

    // Reads the register. Throws DatabaseError.
    Field(core::Database& dbconn, const FieldOptions& options);

    // What stands behind each port number, and all of it as the far side of a line.
    std::map<int, Device*> Ports();
    void AttachTo(SimPorts& line);

    const std::vector<Served>& Stations() const { return stations_; }
    const Served* Station(std::int64_t locationID) const;
    // The modem on a port; null when no station there is dialled.
    HayesModem* Modem(int port);

    // An engineer changes the program of every BSAP station, or changes it back.
    void ChangePrograms(bool back) const;
    // A technician vents all transmitters, or lets them measure again.
    void VentTransmitters(bool vented) const;

    // The list that holds a value; null when the station has none of that name.
    SignalList* Values(std::int64_t locationID, int streamno, std::string_view description) const;
    // The value served last, and whether one like this was served at all (see SignalList).
    std::optional<double> LastServed(std::int64_t locationID, int streamno, std::string_view description) const;
    bool WasServed(std::int64_t locationID, int streamno, std::string_view description, double value) const;

  private:
    Device& Make(Served& served, core::Database& dbconn, const FieldOptions& options);
    Device& MakeDevice(Served& served, core::Database& dbconn, const FieldOptions& options);
    Device& WithFaults(Served& served, Device& device, const FieldOptions& options);
    void Connect(const core::Station& station, Device& device, const FieldOptions& options);
    template <class Made>
    Made& Keep(std::unique_ptr<Made> device);

    std::vector<std::unique_ptr<Device>> devices_;
    std::vector<Served> stations_;
    std::map<int, SharedLine> lines_;
    std::map<int, HayesModem> modems_;
    std::map<std::string, SharedLine> numbers_;  // the stations behind one number, by port and number
};

}  // namespace fieldsim
