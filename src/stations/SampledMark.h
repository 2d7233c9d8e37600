#pragma once

#include <cstdint>

#include "core/Clock.h"
#include "core/Database.h"

namespace stations {

// Sets sampledtoday and sampleddate of a station: the one place that does. Throws DatabaseError.
void MarkSampled(core::Database& dbconn, const core::DateTime& now, std::int64_t locationID, bool sampled);

}  // namespace stations
