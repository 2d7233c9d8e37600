#include "reports/ReportRtf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>

#include "core/Text.h"

namespace reports {

namespace {

// The columns of the page: heading, unit, right edge in twips (1/1440 inch), what stands in them.
struct Column {
    const char* heading;
    const char* unit;
    int rightEdge;
    std::optional<double> (*figure)(const DailyLine& line);  // null: a text
    bool flow;                                               // cumulative where the line is
    bool total;                                              // summed at the foot
};

constexpr std::array<Column, 10> columns = {{
    {"No.", "", 550, nullptr, false, false},
    {"Station", "", 2950, nullptr, false, false},
    {"Allocation", "SCM", 4250, [](const DailyLine& line) { return std::optional(line.presentallocation); }, false,
     true},
    {"MGO Qty", "SCM", 5550, [](const DailyLine& line) { return std::optional(line.MGO_Qty); }, false, true},
    {"Day flow", "SCM", 6900, [](const DailyLine& line) { return line.dayflow; }, true, true},
    {"Month flow", "SCM", 8450, [](const DailyLine& line) { return line.monthflow; }, true, true},
    {"Average", "SCM/day", 9850, [](const DailyLine& line) { return line.averageflow; }, true, true},
    {"Pressure", "kg/cm2", 10900, [](const DailyLine& line) { return line.pressure; }, false, false},
    {"Cont. Pr.", "kg/cm2", 11950, [](const DailyLine& line) { return std::optional(line.Cont_Pr); }, false, false},
    {"Status", "", 14800, nullptr, false, false},
}};

constexpr std::size_t numberColumn = 0;
constexpr std::size_t nameColumn = 1;
constexpr std::size_t averageColumn = 6;
constexpr std::size_t statusColumn = 9;

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
        } else if (*code < 0x20) {
            out += ' ';
        } else if (*code < 0x7F) {
            out += static_cast<char>(*code);
        } else {
            // RTF takes the code as a signed 16-bit number, and "?" is for a reader without Unicode.
            out += "\\u" + std::to_string(static_cast<std::int16_t>(*code)) + "?";
        }
    }
    return out;
}

// Two places and the thousands apart, by a blank at which no line breaks.
std::string Figure(double value) {
    std::array<char, 64> text{};
    const auto printed = std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed, 2);
    if (printed.ec != std::errc()) {
        return core::NumberText(value);
    }
    std::string figure(text.begin(), printed.ptr);
    const std::size_t first = value < 0 ? 1 : 0;
    for (std::size_t at = figure.size() - 3; at > first + 3;) {
        at -= 3;
        figure.insert(at, "\\~");
    }
    return figure;
}

enum class RowStyle { Heading, Body, Total };

std::string TableRow(const std::vector<std::string>& cells, RowStyle style) {
    std::string row = style == RowStyle::Heading ? "\\trowd\\trhdr" : "\\trowd";
    row += "\\trgaph80\\trleft0\\trkeep";
    for (const Column& column : columns) {
        row += style == RowStyle::Heading ? "\\clcbpat1\\clvertalc" : "\\clvertalc";
        row += style == RowStyle::Total ? "\\clbrdrt\\brdrs\\brdrw20" : "\\clbrdrb\\brdrs\\brdrw5\\brdrcf2";
        row += "\\cellx" + std::to_string(column.rightEdge);
    }
    row += "\n";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        row += i == nameColumn || i == statusColumn ? "\\pard\\intbl\\ql" : "\\pard\\intbl\\qr";
        row += style == RowStyle::Body ? "\\sb30\\sa30 " + cells[i] : "\\sb50\\sa50\\b " + cells[i] + "\\b0";
        row += "\\cell\n";
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

std::string StationLine(const DailyLine& line) {
    std::vector<std::string> cells;
    for (const Column& column : columns) {
        const auto figure = column.figure == nullptr ? std::nullopt : column.figure(line);
        const bool cumulative = column.flow && line.cumulative;
        cells.push_back(figure ? Figure(*figure) + (cumulative ? "\\line cumulative" : "") : std::string("no data"));
    }
    if (line.cumulative) {
        cells[averageColumn].clear();
    }
    cells[numberColumn] = std::to_string(line.number);
    cells[nameColumn] = Escaped(line.consumer);
    cells[statusColumn] = Escaped(line.status);
    return TableRow(cells, RowStyle::Body);
}

std::string Totals(const std::vector<DailyLine>& lines) {
    std::vector<std::string> cells;
    for (const Column& column : columns) {
        double sum = 0;
        for (const DailyLine& line : lines) {
            sum += column.total && !(column.flow && line.cumulative) ? column.figure(line).value_or(0) : 0;
        }
        cells.push_back(column.total ? Figure(sum) : "");
    }
    const auto without = std::count_if(lines.begin(), lines.end(), [](const DailyLine& line) {
        return !line.cumulative && (!line.dayflow || !line.monthflow);
    });
    cells[nameColumn] = without == 0 ? "Total" : "Total without " + std::to_string(without) + " of the stations";
    return TableRow(cells, RowStyle::Total);
}

}  // namespace

std::string ReportRtf(const std::vector<DailyLine>& lines, const core::DateTime& day) {
    std::string page =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}"
        "{\\colortbl;\\red225\\green232\\blue238;\\red190\\green190\\blue190;\\red90\\green90\\blue90;}\n"
        "\\paperw16838\\paperh11906\\landscape\\margl1000\\margr1000\\margt1000\\margb900\\f0\\fs19\n"
        "{\\footer\\pard\\qr\\f0\\cf3\\fs16 Page \\chpgn\\par}\n"
        "{\\pard\\fs34\\b Daily Progress Report\\b0\\par}\n{\\pard\\sa240\\fs22\\cf3 " +
        core::DateText(day) + "\\cf0\\par}\n" + Headings();
    for (const DailyLine& line : lines) {
        page += StationLine(line);
    }
    return page + Totals(lines) + "\\pard\\par}\n";
}

}  // namespace reports
