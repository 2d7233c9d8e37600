#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Feedback.h"

namespace collection {

// Fills daily_rep for a day: a row a station in the order of the register, with its allocation and quantity, the
// flows and the pressure of the day's LogParam row, and the average, the month's flow by the day of the month. What a
// station has not is 0. A register without stations is told in the status bar and leaves the table empty.
// Throws DatabaseError.
void makereport_daily(core::Database& dbconn, const core::DateTime& day, core::Feedback& feedback);

// A station's line of the report: SCM, the average in SCM a day, the pressures in kg/cm2.
struct DailyLine {
    int number = 0;  // from 1
    std::string consumer;
    double presentallocation = 0;
    double MGO_Qty = 0;
    double dayflow = 0;
    double monthflow = 0;
    double averageflow = 0;
    double pressure = 0;
    double Cont_Pr = 0;
};

// What daily_rep holds, in the order of its numbers. Throws DatabaseError.
std::vector<DailyLine> DailyLines(core::Database& dbconn);

// Lays daily_rep out as a page in RTF, headed by the day. The file is replaced whole, so that nobody reads half of it.
// Throws DatabaseError, and std::system_error when it cannot be written.
void WriteDailyReport(core::Database& dbconn, const core::DateTime& day, const std::filesystem::path& file);

}  // namespace collection
