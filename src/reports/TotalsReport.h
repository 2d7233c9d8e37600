#pragma once

#include <cstdint>

#include "core/Database.h"

namespace reports {

// Fills tblmail with the totals of one station's stream, from the values of its last collection: volumes, uncorrected
// volumes and flow times, of a TeleCorrector the energies as well. A total that the station has not, or that its last
// reading did not bring, is null. A station of another model, or none of that number, leaves the table as it is. Tells
// whether it was filled. Throws DatabaseError.
bool makereport(core::Database& dbconn, std::int64_t location, int streamno);

}  // namespace reports
