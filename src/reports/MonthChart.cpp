#include "reports/MonthChart.h"

namespace reports {

namespace {

std::optional<double> Figure(const core::Value& value) {
    return value.IsNull() ? std::nullopt : std::optional(value.Number());
}

}  // namespace

std::vector<std::string> ChartStations(core::Database& dbconn) {
    std::vector<std::string> stations;
    for (const core::Row& row :
         dbconn.Query("SELECT locationId, consumer From configdata_master order by locationid")) {
        stations.push_back(row[0].Text() + "-" + row[1].Text());
    }
    return stations;
}

std::optional<MonthFigures> ReadMonth(core::Database& dbconn, std::int64_t locationId, int month) {
    std::optional<MonthFigures> figures;
    for (const core::Row& row : dbconn.Query(
             "select year(date) as y, day(date) as d, CurrentDayFlow, currentprs from logparam where Month(date) = ? "
             "and LocationId = ? order by y desc, d",
             {month, locationId})) {
        const int year = static_cast<int>(row.Long("y"));
        if (!figures) {
            figures = MonthFigures{year, {}};
        }
        if (year == figures->year) {
            figures->points.push_back(
                {static_cast<int>(row.Long("d")), Figure(row["CurrentDayFlow"]), Figure(row["currentprs"])});
        }
    }
    return figures;
}

}  // namespace reports
