#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Database.h"
#include "stations/MapChoices.h"
#include "stations/StationRecord.h"

// The register of stations, configdata_master, with everything that belongs to a station. All functions throw
// DatabaseError; then nothing of what they were to change is changed.
namespace stations {

struct StationEntry {
    std::int64_t locationId = 0;
    std::string consumer;
};

// All stations by location.
std::vector<StationEntry> ListStations(core::Database& dbconn);

// The location of the next new station: the highest one and 1; 1 in an empty register.
std::int64_t NextLocation(core::Database& dbconn);

// A station's row with its nulls as empty texts, the number of streams as "1"; nothing when there is no such location.
std::optional<StationRecord> ReadRecord(core::Database& dbconn, std::int64_t locationId);

// What is wrong with a record, and the name of the control in which it can be mended.
struct Refusal {
    std::string message;
    std::string control;
};

// The checks of a Save, in their order; the first that fails is told. `isNewStation`: being added, else an edit of the
// station that is called `currentconsumer` in the register. Nothing is written. Nothing comes back when all hold.
std::optional<Refusal> CheckRecord(core::Database& dbconn, const StationRecord& record, bool isNewStation,
                                   const std::string& currentconsumer);

// What Set Register has fixed for a Modbus map.
struct SaveChoices {
    bool isNewStation = true;
    RegisterSize registers = TypeFloatTwoRegisters();
};

// 1 for a "TeleRTU", 2 for a "TeleRTU(M)", 0 for every other model.
int DrsOf(const std::string& modelno);

// What of a record fixes its parameter rows.
MapChoices ChoicesOf(const StationRecord& record, const SaveChoices& choices);

// Writes a checked record with all that a station needs: its row, the numbers of its group, its parameter rows, its
// three rows of SummaryPara. One transaction. The station can be collected as soon as this returns. An edit keeps what
// fixes the parameter rows as it is in the register, whatever the record says: model, protocol, group, streams,
// rtubits. An edit of a station that is gone and a new station at a location that is taken are DatabaseErrors.
void SaveStation(core::Database& dbconn, const StationRecord& record, const SaveChoices& choices);

// Set Register on Modbus without MB_CONFIG: makes the register table and the parameter rows before the Save.
void SetRegister(core::Database& dbconn, const StationRecord& record, const SaveChoices& choices);

// Takes back what Set Register has made for a station that is then not saved.
void CancelNew(core::Database& dbconn, std::int64_t locationId);

// Deletes the station from every table that knows it, its schedule rows by its name.
void DeleteStation(core::Database& dbconn, std::int64_t locationId, const std::string& consumer);

// What a Yes to the reset of the allocation does: it always throws DatabaseError and leaves the map as it is. The
// operators know it so; the form shows no message of it.
void ResetAllocation(core::Database& dbconn, std::int64_t locationId);

}  // namespace stations
