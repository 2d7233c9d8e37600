#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/Database.h"
#include "core/MAIN_Module.h"

// The workbooks that the scheduled runs left, by station and day.
namespace collection {

// The stations that have been collected, each once, by name. A deleted station is still among them.
// Throws DatabaseError.
std::vector<std::string> ScheduledNames(core::Database& dbconn);

// The days on which a station was collected, each once and as it is stored, "dd/mm/yyyy", the latest first; texts that
// are no date at the end. Throws DatabaseError.
std::vector<std::string> ScheduledDates(core::Database& dbconn, const std::string& consumer);

// Where the workbook of a station and a day is, whether or not the file is still there. Nothing when the text is no day
// of the calendar in the form "dd/mm/yyyy".
std::optional<std::filesystem::path> ScheduledWorkbook(const core::MAIN_Module& shared, const std::string& consumer,
                                                       const std::string& date);

}  // namespace collection
