#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"
#include "core/Feedback.h"

namespace reports {

// A station's line of the report of a day: SCM, the average in SCM a day, the pressures in kg/cm2. What was not
// received for the gas day is nothing.
struct DailyLine {
    int number = 0;  // from 1
    std::string consumer;
    double presentallocation = 0;
    double MGO_Qty = 0;
    std::optional<double> dayflow;
    std::optional<double> monthflow;
    std::optional<double> averageflow;
    std::optional<double> pressure;
    double Cont_Pr = 0;
    bool cumulative = false;  // both flows count the unit's lifetime; there is no average
    std::string status{};     // what came of the day: see LineOfDay
};

// The stations' lines in the order of the register, as far as the day is known at `now`. The figures are those of the
// gas day's record; of a day before a station had outcomes, those of its LogParam row. Throws DatabaseError.
std::vector<DailyLine> DailyLines(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now);

// Fills daily_rep for a day with the same lines, as its readers expect them: what a station has not is 0, the average
// is always the month's flow by the day of the month. A register without stations is told in the status bar and leaves
// the table empty. Throws DatabaseError.
void makereport_daily(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now,
                      core::Feedback& feedback);

// Lays the lines of a day out as a page in RTF, headed by the day. The file is replaced whole, so that nobody reads
// half of it. Throws DatabaseError, and std::system_error when it cannot be written.
void WriteDailyReport(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now,
                      const std::filesystem::path& file);

}  // namespace reports
