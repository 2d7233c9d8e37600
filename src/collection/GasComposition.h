#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Database.h"
#include "reading/Workplace.h"

// The gas composition that a station is to calculate with: what the operator wants (table write_gc), and the way to it.
namespace collection {

struct GasStation {
    std::int64_t locationId = 0;
    std::string consumer;
};

// The stations that take a composition, by location: Modbus, with AGA8 in its Detail form. Throws DatabaseError.
std::vector<GasStation> GasStations(core::Database& dbconn);

// One value of a composition and the register that it goes to.
struct GasComponent {
    std::string startaddress;
    std::string description;
    std::optional<double> value;  // nothing: it was never read, nor given by the operator
};

// The wanted composition of a station or, where none was ever saved, the one that was last read from it; what the
// station never gave has no value.
// Throws DatabaseError.
std::vector<GasComponent> GasComposition(core::Database& dbconn, std::int64_t locationID);

// Makes these the wanted composition of a station, in place of the one before. All or nothing. A component without a
// value is kept without one. Throws DatabaseError.
void SaveGasComposition(core::Database& dbconn, std::int64_t locationID, const std::vector<GasComponent>& components);

// The sum of the components that have a value, to 4 places.
double GasSum(const std::vector<GasComponent>& components);

// Writes the wanted composition into the station of a conversation whose line is up, register by register. The first
// row that the station does not show afterwards ends it, with a line in RTU_Err.log: the station then calculates with a
// part of the new values. So does a row without a register. One without a value is left alone. Tells whether all were
// written; what came of each is in the audit trail. Throws DatabaseError.
//
// It stands ready: no run starts it, whatever `gasauto` says.
bool write_gascomposition(reading::Workplace& place, protocols::Conversation& talk);

}  // namespace collection
