#include "collection/ReportRtf.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <system_error>

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

constexpr std::array<Column, 9> columns = {{{"No.", "", "srno", 650, false},
                                            {"Station", "", "consumer", 3700, false},
                                            {"Allocation", "SCM", "presentallocation", 5300, true},
                                            {"MGO Qty", "SCM", "MGO_Qty", 6900, true},
                                            {"Day flow", "SCM", "dayflow", 8500, true},
                                            {"Month flow", "SCM", "monthflow", 10400, true},
                                            {"Average", "SCM/day", "averageflow", 12250, true},
                                            {"Pressure", "kg/cm2", "pressure", 13500, false},
                                            {"Cont. Pr.", "kg/cm2", "Cont_Pr", 14800, false}}};

constexpr std::size_t numberColumn = 0;
constexpr std::size_t nameColumn = 1;

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
        row += i == nameColumn ? "\\pard\\intbl\\ql" : "\\pard\\intbl\\qr";
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

std::string StationLine(const core::Row& row) {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const char* const field = columns[i].field;
        cells.push_back(i == numberColumn || i == nameColumn ? Escaped(row.Text(field)) : Figure(row.Number(field)));
    }
    return TableRow(cells, RowStyle::Body);
}

std::string Totals(const std::vector<core::Row>& rows) {
    std::vector<std::string> cells;
    for (const Column& column : columns) {
        double sum = 0;
        for (const core::Row& row : rows) {
            sum += row.Number(column.field);
        }
        cells.push_back(column.total ? Figure(sum) : "");
    }
    cells[nameColumn] = "Total";
    return TableRow(cells, RowStyle::Total);
}

}  // namespace

std::string ReportRtf(const std::vector<core::Row>& rows, const core::DateTime& day) {
    std::string page =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}"
        "{\\colortbl;\\red225\\green232\\blue238;\\red190\\green190\\blue190;\\red90\\green90\\blue90;}\n"
        "\\paperw16838\\paperh11906\\landscape\\margl1000\\margr1000\\margt1000\\margb900\\f0\\fs19\n"
        "{\\footer\\pard\\qr\\f0\\cf3\\fs16 Page \\chpgn\\par}\n"
        "{\\pard\\fs34\\b Daily Progress Report\\b0\\par}\n{\\pard\\sa240\\fs22\\cf3 " +
        core::DateText(day) + "\\cf0\\par}\n" + Headings();
    for (const core::Row& row : rows) {
        page += StationLine(row);
    }
    return page + Totals(rows) + "\\pard\\par}\n";
}

}  // namespace collection
