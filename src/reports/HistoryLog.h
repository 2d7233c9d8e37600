#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"

// What the collections of past days have left in LogParam, a parameter a row and a day a column.
namespace reports {

// One value of a day's text: "#", description, "=", value; a value may end in "?" and a note.
struct LogEntry {
    std::string description;
    std::string value;
    bool hasNote = false;
    std::string note;
};

// Takes a day's text apart, into at most 501 entries. A text without "#" has none.
std::vector<LogEntry> ParseLogText(const std::string& text);

// What is wrong with a range of days; empty when nothing is. Only the dates are looked at.
std::string CheckDays(const core::DateTime& from, const core::DateTime& to, const core::DateTime& today);

struct LogStation {
    std::int64_t locationId = 0;
    std::string consumer;
};

// The stations that have a row in the range or within a day of it. Throws DatabaseError.
std::vector<LogStation> FindLogStations(core::Database& dbconn, const core::DateTime& from, const core::DateTime& to);

struct HistoryRow {
    std::string parameter;           // with "[unit]" behind it where it has one
    std::vector<std::string> cells;  // one a day; empty where the day has no value
};

struct History {
    std::vector<std::string> days;  // "dd/mm/yyyy"
    std::vector<HistoryRow> rows;
    bool hasRecord = false;  // a day of the range has a row
};

// The days of a range, "dd/mm/yyyy", both ends included.
std::vector<std::string> DaysOf(const core::DateTime& from, const core::DateTime& to);

// The values of one station. Throws DatabaseError.
History ReadHistory(core::Database& dbconn, std::int64_t locationId, const core::DateTime& from,
                    const core::DateTime& to);

}  // namespace reports
