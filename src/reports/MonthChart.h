#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Database.h"

// The figures of a station's month, a point a day.
namespace reports {

struct MonthPoint {
    int day = 1;
    std::optional<double> CurrentDayFlow;
    std::optional<double> currentprs;
};

struct MonthFigures {
    int year = 0;
    std::vector<MonthPoint> points;  // by day; days without a row have none
};

// A station as the list of the chart offers it: "3-Hill Farm".
std::vector<std::string> ChartStations(core::Database& dbconn);

// The station's rows of a month from 1 to 12, whatever their year; of several years the latest. Nothing when there is
// no row. Throws DatabaseError.
std::optional<MonthFigures> ReadMonth(core::Database& dbconn, std::int64_t locationId, int month);

}  // namespace reports
