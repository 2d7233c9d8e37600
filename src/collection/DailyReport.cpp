#include "collection/DailyReport.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "core/Text.h"

namespace collection {

namespace {

// The columns of the page: heading, unit, the column of daily_rep, right edge in twips (1/1440 inch).
struct Column {
    const char* heading;
    const char* unit;
    const char* field;
    int rightEdge;
    bool total;  // summed at the foot
};

constexpr std::array<Column, 9> columns = {{{"No.", "", "srno", 700, false},
                                            {"Station", "", "consumer", 4900, false},
                                            {"Allocation", "SCM", "presentallocation", 6300, true},
                                            {"MGO Qty", "SCM", "MGO_Qty", 7700, true},
                                            {"Day flow", "SCM", "dayflow", 9100, true},
                                            {"Month flow", "SCM", "monthflow", 10700, true},
                                            {"Average", "SCM/day", "averageflow", 12200, true},
                                            {"Pressure", "kg/cm2", "pressure", 13500, false},
                                            {"Cont. Pr.", "kg/cm2", "Cont_Pr", 14800, false}}};

constexpr std::size_t nameColumn = 1;

// The text with everything that RTF gives a meaning to escaped; other characters as their UTF-16 code.
std::string Escaped(const std::string& utf8) {
    std::string out;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto code = core::NextCodePoint(utf8, at);
        if (!code) {
            out += '?';
            ++at;
        } else if (*code == '\\' || *code == '{' || *code == '}') {
            out += '\\';
            out += static_cast<char>(*code);
        } else if (*code >= 0x20 && *code < 0x7F) {
            out += static_cast<char>(*code);
        } else if (*code >= 0x20) {
            out += "\\u" + std::to_string(static_cast<std::int16_t>(*code)) + "?";
        }
    }
    return out;
}

std::string Fixed(double value) {
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.2f", value);
    return length < static_cast<int>(text.size()) ? text.data() : core::NumberText(value);
}

enum class RowStyle { Heading, Body, Total };

std::string TableRow(const std::vector<std::string>& cells, RowStyle style) {
    std::string row = "\\trowd\\trgaph80\\trleft0";
    row += style == RowStyle::Heading ? "\\trhdr" : "";
    for (const Column& column : columns) {
        row += style == RowStyle::Heading ? "\\clcbpat1" : "";
        row += style == RowStyle::Total ? "\\clbrdrt\\brdrs\\brdrw20" : "\\clbrdrb\\brdrs\\brdrw5\\brdrcf2";
        row += "\\cellx" + std::to_string(column.rightEdge);
    }
    row += "\n";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        row += i == nameColumn ? "\\pard\\intbl\\ql" : "\\pard\\intbl\\qr";
        row += style == RowStyle::Body ? "" : "\\b";
        row += " " + cells[i] + (style == RowStyle::Body ? "" : "\\b0") + "\\cell\n";
    }
    return row + "\\row\n";
}

std::string Headings() {
    std::vector<std::string> cells;
    for (const Column& column : columns) {
        const std::string unit = column.unit;
        cells.push_back(std::string(column.heading) + (unit.empty() ? "" : "\\line\\b0\\cf3 " + unit + "\\cf0"));
    }
    return TableRow(cells, RowStyle::Heading);
}

std::string Page(const std::vector<core::Row>& rows, const core::DateTime& day) {
    std::string page =
        "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Liberation Sans;}}"
        "{\\colortbl;\\red225\\green232\\blue238;\\red190\\green190\\blue190;\\red90\\green90\\blue90;}\n"
        "\\paperw16838\\paperh11906\\landscape\\margl1000\\margr1000\\margt1000\\margb900\\f0\\fs20\n"
        "{\\pard\\fs34\\b Daily Progress Report\\b0\\par}\n{\\pard\\sa240\\cf3 " +
        core::DateText(day) + "\\cf0\\par}\n" + Headings();
    std::array<double, columns.size()> totals{};
    for (const core::Row& row : rows) {
        std::vector<std::string> cells;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            totals[i] += row.Number(columns[i].field);
            cells.push_back(i == 0            ? row.Text(columns[i].field)
                            : i == nameColumn ? Escaped(row.Text(columns[i].field))
                                              : Fixed(row.Number(columns[i].field)));
        }
        page += TableRow(cells, RowStyle::Body);
    }
    std::vector<std::string> foot;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        foot.push_back(columns[i].total ? Fixed(totals[i]) : i == nameColumn ? "Total" : "");
    }
    return page + TableRow(foot, RowStyle::Total) + "\\pard\\par}\n";
}

}  // namespace

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

void WriteDailyReport(core::Database& dbconn, const core::DateTime& day, const std::filesystem::path& file) {
    const std::string page = Page(dbconn.Query("select * from daily_rep order by srno"), day);
    std::filesystem::path part = file;
    part += ".part";
    std::ofstream out(part, std::ios::binary | std::ios::trunc);
    out << page;
    out.close();
    if (!out) {
        throw std::system_error(errno, std::generic_category(), file.filename().string());
    }
    std::filesystem::rename(part, file);
}

}  // namespace collection
