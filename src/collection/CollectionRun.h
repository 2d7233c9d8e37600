#pragma once

#include <cstdint>

#include "reading/RunState.h"
#include "reading/Workplace.h"

namespace collection {

// One attempt to fetch today's values from one station, from its record to the hang-up. A failed transaction, a port
// that does not open and an error of the database set `runfailed`; a modem that does not answer or does not reach the
// station leaves it clear, as the operators' reports expect, with its line in RTU_Err.log. Never throws: what goes
// wrong is in RTU_Err.log. The line is taken over from whoever holds it, and is hung up and closed at the end.
void collectiong_Data(reading::Workplace& place, std::int64_t locationID, reading::RunState& state);

}  // namespace collection
