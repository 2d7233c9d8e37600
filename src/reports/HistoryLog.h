#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Clock.h"

namespace core {
class Database;
}

// The values that the scheduled collections left, a row of LogParam a station and day.
namespace reports {

// One value of a day's text.
struct LogEntry {
    std::string description;
    std::string value;     // as it stands; a number as a rule, a word for a logical value
    bool hasNote = false;  // a "?" stood behind the value
    std::string note;      // what followed it
};

// More values than this are not kept of a day.
inline constexpr std::size_t mostLogEntries = 501;

// Takes a day's text apart: for each value "#", description, "=", value, and a note behind a "?". A piece without "="
// or without a description names no parameter and is passed over: a name that holds a "#" loses what stood before it.
std::vector<LogEntry> ParseLogText(std::string_view text);

// What a value shows. One with a note is rounded to 6 decimals and followed by it: the "?" is cut off where the text is
// taken apart, but operators expect a note that was stored to reach the screen.
std::string CellText(const LogEntry& entry);

// What is wrong with a range of days, and the control in which it is mended.
struct DaysFault {
    std::string message;
    std::string control;
};

// Both are dates; nothing when they can be asked for. `from` may not be after `to`, nor `to` after `today`.
std::optional<DaysFault> CheckDays(const core::DateTime& from, const core::DateTime& to, const core::DateTime& today);

struct LogStation {
    std::int64_t locationID = 0;
    std::string consumer;  // empty: no longer in the register
};

// The stations that have a row from the day before `from` to the start of the day behind `to`. The day more at both
// ends is the operators' expectation: a station whose clock is off is found too. Throws DatabaseError.
std::vector<LogStation> FindLogStations(core::Database& dbconn, const core::DateTime& from, const core::DateTime& to);

// The days of a range, both ends counted, each at midnight; none when `from` is after `to`.
std::vector<core::DateTime> DaysOf(const core::DateTime& from, const core::DateTime& to);

struct HistoryRow {
    std::string parameter;           // its description, with its unit in brackets when it has one
    std::vector<std::string> cells;  // one a day; empty where the day has no row or no such value
};

struct HistoryGrid {
    std::vector<HistoryRow> rows;  // one a parameter of the station
    bool anyDay = false;           // at least one of the days has a row
};

// One station's values of successive days, as DaysOf gives them. A cell takes the first value of the day whose
// description is contained in the row's text, so two parameters of one name show one value: the operators' expectation.
// Throws DatabaseError.
HistoryGrid ReadHistory(core::Database& dbconn, std::int64_t locationID, const std::vector<core::DateTime>& days);

}  // namespace reports
