#include "reports/HistoryLog.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>

#include "core/Database.h"
#include "core/Text.h"

namespace reports {

namespace {

constexpr std::int64_t daySeconds = 86400;
constexpr std::size_t none = static_cast<std::size_t>(-1);

core::DateTime Midnight(const core::DateTime& day, int daysOn = 0) {
    return core::FromSeconds(core::ToSeconds({day.year, day.month, day.day, 0, 0, 0}) + daysOn * daySeconds);
}

// "inf" and "nan" read as numbers; no rounding makes one of them.
bool IsNumber(const std::string& text) {
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() && std::isfinite(value);
}

// What the days call their values. A year's days use the same few hundred names: each is compared with each row once.
class Names {
  public:
    std::size_t Number(const std::string& name) {
        const auto [at, isNew] = numbers_.try_emplace(name, names_.size());
        if (isNew) {
            names_.push_back(name);
        }
        return at->second;
    }
    std::vector<std::size_t> ContainedIn(const std::string& text) const {
        std::vector<std::size_t> numbers;
        for (std::size_t n = 0; n < names_.size(); ++n) {
            if (text.find(names_[n]) != std::string::npos) {
                numbers.push_back(n);
            }
        }
        return numbers;
    }
    std::size_t Count() const { return names_.size(); }

  private:
    std::unordered_map<std::string, std::size_t> numbers_;
    std::vector<std::string> names_;
};

struct Day {
    bool found = false;
    std::vector<std::string> cells;       // what each value shows
    std::vector<std::size_t> nameNumber;  // and what it is called
};

// The days' values. Of two rows of one day the first counts.
std::vector<Day> ReadDays(core::Database& dbconn, std::int64_t locationID, const std::vector<core::DateTime>& days,
                          Names& names) {
    std::vector<Day> found(days.size());
    const std::int64_t first = core::ToSeconds(days.front());
    for (const core::Row& row :
         dbconn.Query("select year(date) as y, month(date) as m, day(date) as d, \"desc\" from LogParam "
                      "where LocationId=? and date>=? and date<? order by rowid",
                      {locationID, core::IsoText(days.front()), core::IsoText(Midnight(days.back(), 1))})) {
        const core::DateTime date{
            static_cast<int>(row.Long("y")), static_cast<int>(row.Long("m")), static_cast<int>(row.Long("d")), 0, 0, 0};
        const std::int64_t offset = date.Valid() ? (core::ToSeconds(date) - first) / daySeconds : -1;
        if (offset < 0 || offset >= static_cast<std::int64_t>(days.size())) {
            continue;
        }
        Day& day = found[static_cast<std::size_t>(offset)];
        if (day.found) {
            continue;
        }
        day.found = true;
        for (const LogEntry& entry : ParseLogText(row.Text("desc"))) {
            day.cells.push_back(CellText(entry));
            day.nameNumber.push_back(names.Number(entry.description));
        }
    }
    return found;
}

}  // namespace

std::vector<LogEntry> ParseLogText(std::string_view text) {
    std::vector<LogEntry> entries;
    auto at = text.find('#');
    while (at != std::string_view::npos && entries.size() < mostLogEntries) {
        const auto next = text.find('#', at + 1);
        const std::string_view piece = text.substr(at + 1, next == std::string_view::npos ? next : next - at - 1);
        at = next;
        const auto equals = piece.find('=');
        if (equals == std::string_view::npos || core::Trim(piece.substr(0, equals)).empty()) {
            continue;
        }
        const std::string_view right = piece.substr(equals + 1);
        const auto mark = right.find('?');
        LogEntry entry;
        entry.description = piece.substr(0, equals);
        entry.value = right.substr(0, mark);
        if (mark != std::string_view::npos) {
            entry.hasNote = true;
            entry.note = right.substr(mark + 1);
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::string CellText(const LogEntry& entry) {
    if (!entry.hasNote) {
        return entry.value;
    }
    const std::string value = core::Trim(entry.value);
    const std::string shown = IsNumber(value) ? core::NumberText(core::RoundTo(core::Val(value), 6)) : value;
    return core::Trim(shown + " " + entry.note);
}

std::optional<DaysFault> CheckDays(const core::DateTime& from, const core::DateTime& to, const core::DateTime& today) {
    if (Midnight(from) > Midnight(to)) {
        return DaysFault{"Properly Choose Date From which To which you want to view log", "DTPicker1"};
    }
    if (Midnight(to) > Midnight(today)) {
        return DaysFault{"Log Do Not have the Data", "DTPicker2"};
    }
    return std::nullopt;
}

std::vector<LogStation> FindLogStations(core::Database& dbconn, const core::DateTime& from, const core::DateTime& to) {
    std::vector<LogStation> stations;
    for (const core::Row& row : dbconn.Query(
             "select found.LocationId, (select consumer from configdata_master where locationID=found.LocationId) as "
             "consumer from (select distinct LocationId from LogParam where date>=? and date<=?) as found "
             "order by found.LocationId",
             {core::IsoText(Midnight(from, -1)), core::IsoText(Midnight(to, 1))})) {
        stations.push_back({row.Long("LocationId"), row.Text("consumer")});
    }
    return stations;
}

std::vector<core::DateTime> DaysOf(const core::DateTime& from, const core::DateTime& to) {
    std::vector<core::DateTime> days;
    for (core::DateTime day = Midnight(from); day <= to; day = Midnight(day, 1)) {
        days.push_back(day);
    }
    return days;
}

HistoryGrid ReadHistory(core::Database& dbconn, std::int64_t locationID, const std::vector<core::DateTime>& days) {
    HistoryGrid grid;
    if (days.empty()) {
        return grid;
    }
    Names names;
    const std::vector<Day> values = ReadDays(dbconn, locationID, days, names);
    grid.anyDay = std::any_of(values.begin(), values.end(), [](const Day& day) { return day.found; });

    std::vector<std::vector<std::size_t>> fitting;  // for each row the names contained in its text
    for (const core::Row& row : dbconn.Query(
             "select description,unit from ConfigData_Detail where locationId=? order by rowid", {locationID})) {
        const std::string unit = core::Trim(row.Text("unit"));
        const std::string parameter = row.Text("description") + (unit.empty() ? "" : "[" + unit + "]");
        grid.rows.push_back({parameter, std::vector<std::string>(days.size())});
        fitting.push_back(names.ContainedIn(parameter));
    }
    for (std::size_t column = 0; column < days.size(); ++column) {
        const Day& day = values[column];
        std::vector<std::size_t> place(names.Count(), none);  // of each name, where the day has it first
        for (std::size_t n = day.nameNumber.size(); n-- > 0;) {
            place[day.nameNumber[n]] = n;
        }
        for (std::size_t row = 0; row < grid.rows.size(); ++row) {
            std::size_t first = none;
            for (const std::size_t name : fitting[row]) {
                first = std::min(first, place[name]);
            }
            if (first != none) {
                grid.rows[row].cells[column] = day.cells[first];
            }
        }
    }
    return grid;
}

}  // namespace reports
