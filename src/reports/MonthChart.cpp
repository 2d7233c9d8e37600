#include "reports/MonthChart.h"

#include <cmath>

#include "core/Clock.h"
#include "core/Database.h"

namespace reports {

namespace {

// A null, a text or an infinite value is no figure: drawn as 0 it would be a wrong one.
std::optional<double> Figure(const core::Value& value) {
    if (value.IsNull() || std::holds_alternative<std::string>(value.Raw()) || !std::isfinite(value.Number())) {
        return std::nullopt;
    }
    return value.Number();
}

}  // namespace

std::optional<MonthFigures> ReadMonth(core::Database& dbconn, std::int64_t locationID, int month) {
    std::optional<MonthFigures> figures;
    for (const core::Row& row : dbconn.Query(
             "select year(date) as y, day(date) as d, CurrentDayFlow, CurrentMonthFlow, currentprs from LogParam "
             "where Month(date)=? and LocationId=? order by year(date), day(date), date, rowid",
             {month, locationID})) {
        const int year = static_cast<int>(row.Long("y"));
        const int day = static_cast<int>(row.Long("d"));
        if (!core::DateTime{year, month, day, 0, 0, 0}.Valid()) {
            continue;
        }
        if (!figures || figures->year != year) {
            figures = MonthFigures{year, month, {}};
        }
        if (figures->days.empty() || figures->days.back().day != day) {
            figures->days.push_back({});
        }
        figures->days.back() = {day, Figure(row["CurrentDayFlow"]), Figure(row["CurrentMonthFlow"]),
                                Figure(row["currentprs"])};
    }
    return figures;
}

}  // namespace reports
