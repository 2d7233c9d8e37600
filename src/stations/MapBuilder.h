#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "stations/MapChoices.h"
#include "stations/TemplateQueries.h"

namespace core {
class Database;
}

// Makes the parameter rows of a station from the templates. Each function is one transaction and throws DatabaseError;
// then nothing of it is in the database.
namespace stations {

// The rows that a Save makes. A new station starts from nothing, whatever an earlier Set Register left, unless the
// operator laid out its map by hand: that one stays. An edit never rebuilds a map, since two parameters of a stream
// must not share an address; it makes the rows of a CW station on Modbus that has none.
void BuildMap(core::Database& dbconn, const MapChoices& choices);

// Set Register on Modbus: the register table, and the parameter rows from it. On a new station every run replaces
// the earlier result; on an edit only the register table is made anew, unless the station has no rows at all.
void BuildRegisterMap(core::Database& dbconn, const MapChoices& choices);

// Fills the station's register table anew. With MB_CONFIG all registers are 0, not assigned.
void BuildRegisterTable(core::Database& dbconn, const MapChoices& choices, RegisterTableUse use);

// A row that Set Register offers, with its type and register worked out.
struct RegisterRow {
    std::string description;
    std::string type;          // "Float" or "Coil(Boolean)"
    std::int64_t address = 0;  // register or coil from 1; 0 not assigned
    std::string unit;
    std::string aga;
    bool CFP = false;
    std::int64_t RS = 0;
    std::int64_t WS = 0;
};

// The rows in their order: from the register table, from the BSAP listing, or for a CW model on Modbus from the
// table of its family without the clock's set elements.
std::vector<RegisterRow> RegisterRows(core::Database& dbconn, const MapChoices& choices);

// Whether the station has a fixed register map of "Type Integer": a value at every register, where a float takes two.
// No run can read it so. For a Modbus station without rtubits and without MB_CONFIG. Throws DatabaseError.
bool IsIntegerMap(core::Database& dbconn, std::int64_t locationID);

}  // namespace stations
