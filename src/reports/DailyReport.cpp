#include "reports/DailyReport.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include "collection/DayLine.h"
#include "collection/Outcome.h"
#include "core/Kinds.h"
#include "core/Text.h"
#include "reports/ReportRtf.h"

namespace reports {

namespace {

reading::DayFigures FiguresOf(core::Database& dbconn, std::int64_t locationID, const core::DateTime& day) {
    if (collection::HasOutcomes(dbconn, locationID, day)) {
        return collection::GasDayOf(dbconn, locationID, core::IsoText(day).substr(0, 10))
            .value_or(reading::DayFigures{});
    }
    const auto row =
        dbconn.First("select * from logparam where locationid=? and day(date)=? and month(date)=? and year(date)=?",
                     {locationID, day.day, day.month, day.year});
    const auto figure = [&](const char* column) {
        return row && !row->IsNull(column) ? std::optional(row->Number(column)) : std::nullopt;
    };
    return {figure("CurrentDayFlow"), figure("CurrentMonthFlow"), figure("currentprs")};
}

}  // namespace

std::vector<DailyLine> DailyLines(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now) {
    std::vector<DailyLine> lines;
    for (const core::Row& station : dbconn.Query("select * from configdata_master order by locationID")) {
        const std::int64_t locationID = station.Long("locationID");
        const reading::DayFigures figures = FiguresOf(dbconn, locationID, day);
        DailyLine line;
        line.number = static_cast<int>(lines.size()) + 1;
        line.consumer = station.Text("consumer");
        line.presentallocation = station.Number("presentallocation");
        line.MGO_Qty = station.Number("MGO_Qty");
        line.dayflow = figures.dayflow;
        line.monthflow = figures.monthflow;
        line.pressure = figures.pressure;
        line.Cont_Pr = station.Number("Cont_Pr");
        line.cumulative = core::ProtocolOf(station.Text("protocol")) == core::Protocol::Quantum;
        if (line.monthflow && !line.cumulative) {
            line.averageflow = *line.monthflow / day.day;
        }
        line.status = collection::LineOfDay(dbconn, locationID, day, now).text;
        lines.push_back(std::move(line));
    }
    return lines;
}

void makereport_daily(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now,
                      core::Feedback& feedback) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from daily_rep");
        const auto lines = DailyLines(dbconn, day, now);
        for (const DailyLine& line : lines) {
            const double monthflow = line.monthflow.value_or(0);
            dbconn.Execute("insert into daily_rep values(?,?,?,?,?,?,?,?,?,'A')",
                           {line.number, line.consumer, line.presentallocation, line.MGO_Qty, line.dayflow.value_or(0),
                            monthflow, monthflow / day.day, line.pressure.value_or(0), line.Cont_Pr});
        }
        if (lines.empty()) {
            feedback.Status("No Data available");
        }
    });
}

void WriteDailyReport(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now,
                      const std::filesystem::path& file) {
    const std::string page = ReportRtf(DailyLines(dbconn, day, now), day);
    std::filesystem::path part = file;
    part += ".part";
    std::ofstream out(part, std::ios::binary | std::ios::trunc);
    out << page;
    out.close();
    if (!out) {
        const int error = errno;
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
        throw std::system_error(error, std::generic_category(), file.filename().string());
    }
    std::error_code failure;
    std::filesystem::rename(part, file, failure);
    if (failure) {
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
        throw std::system_error(failure, file.filename().string());
    }
}

}  // namespace reports
