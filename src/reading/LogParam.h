#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/Clock.h"
#include "core/Database.h"

namespace reading {

// The columns of a day's row that a run sets; what is not given stays as it is.
struct DayRow {
    std::string desc;
    std::optional<double> CurrentDayFlow;
    std::optional<double> CurrentMonthFlow;
    std::optional<double> currentprs;
};

// Updates the station's LogParam row of a calendar day, or adds it. The row is found by the station's date and stamped
// with the computer's present moment: reports look for it under the day on which it was collected.
// Throws DatabaseError.
void UpsertLogParam(core::Database& dbconn, std::int64_t locationID, const core::DateTime& stationDate,
                    const core::DateTime& now, const DayRow& values);

}  // namespace reading
