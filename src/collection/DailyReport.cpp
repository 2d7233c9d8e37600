#include "collection/DailyReport.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

#include "collection/ReportRtf.h"

namespace collection {

void makereport_daily(core::Database& dbconn, const core::DateTime& day, core::Feedback& feedback) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from daily_rep");
        int number = 0;
        for (const core::Row& station : dbconn.Query("select * from configdata_master order by locationID")) {
            const auto row = dbconn.First(
                "select * from logparam where locationid=? and day(date)=? and month(date)=? and year(date)=?",
                {station.Long("locationID"), day.day, day.month, day.year});
            const double monthflow = row ? row->Number("CurrentMonthFlow") : 0;
            dbconn.Execute("insert into daily_rep values(?,?,?,?,?,?,?,?,?,'A')",
                           {++number, station.Text("consumer"), station.Number("presentallocation"),
                            station.Number("MGO_Qty"), row ? row->Number("CurrentDayFlow") : 0, monthflow,
                            monthflow / day.day, row ? row->Number("currentprs") : 0, station.Number("Cont_Pr")});
        }
        if (number == 0) {
            feedback.Status("No Data available");
        }
    });
}

std::vector<DailyLine> DailyLines(core::Database& dbconn) {
    std::vector<DailyLine> lines;
    for (const core::Row& row : dbconn.Query("select * from daily_rep order by srno")) {
        lines.push_back({static_cast<int>(row.Long("srno")), row.Text("consumer"), row.Number("presentallocation"),
                         row.Number("MGO_Qty"), row.Number("dayflow"), row.Number("monthflow"),
                         row.Number("averageflow"), row.Number("pressure"), row.Number("Cont_Pr")});
    }
    return lines;
}

void WriteDailyReport(core::Database& dbconn, const core::DateTime& day, const std::filesystem::path& file) {
    const std::string page = ReportRtf(dbconn.Query("select * from daily_rep order by srno"), day);
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

}  // namespace collection
