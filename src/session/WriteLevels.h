#pragma once

#include <cstdint>
#include <string>

#include "core/Database.h"
#include "core/Station.h"

// Who may write what of a station. All throw DatabaseError.
namespace session {

// The refusal of a write that the user's level does not allow.
inline constexpr const char* lowerLevel = "Could not set. Lower user level.";

// Levels are those of the template that the station's map was made from. A parameter without one is nobody's to write.
// What the station measures or counts is the super-user's alone, whatever the user's level.
bool MayWriteParameter(core::Database& dbconn, const core::Station& station, int streamno,
                       const std::string& description, const std::string& user);

// The station's map knows the signal with this address as one that is measured or counted.
bool IsMeasuredSignal(core::Database& dbconn, const core::Station& station, std::int64_t MSD);

}  // namespace session
