#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace core {
class Database;
}

namespace reports {

// What a day's row of LogParam holds for the charts; what the day did not collect is not there.
struct DayFigures {
    int day = 0;                             // of the month
    std::optional<double> CurrentDayFlow;    // SCM
    std::optional<double> CurrentMonthFlow;  // SCM
    std::optional<double> currentprs;        // kg/cm2
};

struct MonthFigures {
    int year = 0;
    int month = 0;
    std::vector<DayFigures> days;  // in their order, each day once
};

// The figures of a station's month (1 to 12), from the newest year that has rows for it: operators choose a month
// without a year. Of two rows of one day the later counts. Nothing when no year has a row. Throws DatabaseError.
std::optional<MonthFigures> ReadMonth(core::Database& dbconn, std::int64_t locationID, int month);

}  // namespace reports
