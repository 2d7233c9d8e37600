#pragma once

#include <filesystem>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Feedback.h"

namespace collection {

// Fills daily_rep for a day: a row a station in the order of the register, with its allocation and quantity, the
// flows and the pressure of the day's LogParam row, and the average, the month's flow by the day of the month. What a
// station has not is 0. A register without stations is told in the status bar and leaves the table empty.
// Throws DatabaseError.
void makereport_daily(core::Database& dbconn, const core::DateTime& day, core::Feedback& feedback);

// Lays daily_rep out as a page in RTF, headed by the day. The file is replaced whole, so that nobody reads half of it.
// Throws DatabaseError, and std::system_error when it cannot be written.
void WriteDailyReport(core::Database& dbconn, const core::DateTime& day, const std::filesystem::path& file);

}  // namespace collection
