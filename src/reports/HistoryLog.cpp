#include "reports/HistoryLog.h"

#include <algorithm>
#include <map>

#include "core/Text.h"

namespace reports {

namespace {

constexpr std::size_t mostEntries = 501;
constexpr std::int64_t secondsADay = 86400;
constexpr int notedPlaces = 6;

core::DateTime Midnight(const core::DateTime& at) {
    return {at.year, at.month, at.day, 0, 0, 0};
}

core::DateTime DaysLater(const core::DateTime& at, int days) {
    return core::FromSeconds(core::ToSeconds(Midnight(at)) + days * secondsADay);
}

// The day of a stored moment: "2026-03-09" of "2026-03-09 08:01:12".
std::string DayOf(const std::string& iso) {
    return iso.substr(0, 10);
}

LogEntry ParseEntry(const std::string& part) {
    LogEntry entry;
    const std::size_t equals = part.find('=');
    entry.description = part.substr(0, equals);
    if (equals == std::string::npos) {
        return entry;
    }
    entry.value = part.substr(equals + 1);
    const std::size_t mark = entry.value.find('?');
    if (mark != std::string::npos) {
        entry.hasNote = true;
        entry.note = entry.value.substr(mark + 1);
        entry.value = entry.value.substr(0, mark);
    }
    return entry;
}

bool IsNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("+-.0123456789eE") == std::string::npos;
}

// A number with a note, such as its unit, is shown to six places with the note behind it; anything else as it was
// stored.
std::string Shown(const LogEntry& entry) {
    if (!entry.hasNote) {
        return entry.value;
    }
    if (!IsNumber(entry.value)) {
        return entry.value + " " + entry.note;
    }
    return core::NumberText(core::RoundTo(core::Val(entry.value), notedPlaces)) + " " + entry.note;
}

// The first entry whose name stands in the row's text: that is how the operators' logs have always been read, and why
// parameters of one name share one value. An entry without a name belongs to nobody.
std::string CellOf(const std::vector<LogEntry>& entries, const std::string& parameter) {
    const auto at = std::find_if(entries.begin(), entries.end(), [&](const LogEntry& entry) {
        return !entry.description.empty() && parameter.find(entry.description) != std::string::npos;
    });
    return at == entries.end() ? std::string() : Shown(*at);
}

// The parsed rows of the range by day; of two rows of a day the first.
std::map<std::string, std::vector<LogEntry>> ReadDays(core::Database& dbconn, std::int64_t locationId,
                                                      const core::DateTime& from, const core::DateTime& to) {
    std::map<std::string, std::vector<LogEntry>> days;
    for (const core::Row& row : dbconn.Query(
             "select date, \"desc\" from LogParam where LocationId = ? and date >= ? and date < ? order by rowid",
             {locationId, core::IsoText(Midnight(from)), core::IsoText(DaysLater(to, 1))})) {
        days.try_emplace(DayOf(row[0].Text()), ParseLogText(row[1].Text()));
    }
    return days;
}

std::string ParameterText(const core::Row& row) {
    const std::string unit = row.Text("unit");
    return row.Text("description") + (unit.empty() ? "" : "[" + unit + "]");
}

}  // namespace

std::vector<LogEntry> ParseLogText(const std::string& text) {
    std::vector<LogEntry> entries;
    std::size_t at = text.find('#');
    while (at != std::string::npos && entries.size() < mostEntries) {
        const std::size_t next = text.find('#', at + 1);
        entries.push_back(ParseEntry(text.substr(at + 1, next == std::string::npos ? next : next - at - 1)));
        at = next;
    }
    return entries;
}

std::string CheckDays(const core::DateTime& from, const core::DateTime& to, const core::DateTime& today) {
    if (Midnight(from) > Midnight(to)) {
        return "Properly Choose Date From which To which you want to view log";
    }
    if (Midnight(to) > Midnight(today)) {
        return "Log Do Not have the Data";
    }
    return {};
}

std::vector<LogStation> FindLogStations(core::Database& dbconn, const core::DateTime& from, const core::DateTime& to) {
    std::vector<LogStation> stations;
    for (const core::Row& row :
         dbconn.Query("select distinct(locationId) from LogParam where date >= cdate(?) and date <= cdate(?) order by "
                      "locationId",
                      {DayOf(core::IsoText(DaysLater(from, -1))), DayOf(core::IsoText(DaysLater(to, 1)))})) {
        const auto station = dbconn.First("select consumer from configdata_master where locationid = ?", {row[0]});
        stations.push_back({row[0].Long(), station ? station->Text("consumer") : std::string()});
    }
    return stations;
}

std::vector<std::string> DaysOf(const core::DateTime& from, const core::DateTime& to) {
    std::vector<std::string> days;
    for (core::DateTime day = Midnight(from); day <= Midnight(to); day = DaysLater(day, 1)) {
        days.push_back(core::DateText(day));
    }
    return days;
}

History ReadHistory(core::Database& dbconn, std::int64_t locationId, const core::DateTime& from,
                    const core::DateTime& to) {
    History history;
    history.days = DaysOf(from, to);
    const auto days = ReadDays(dbconn, locationId, from, to);
    history.hasRecord = !days.empty();
    for (const core::Row& row :
         dbconn.Query("select description,unit from ConfigData_Detail where locationId = ?", {locationId})) {
        HistoryRow line{ParameterText(row), {}};
        for (core::DateTime day = Midnight(from); day <= Midnight(to); day = DaysLater(day, 1)) {
            const auto at = days.find(DayOf(core::IsoText(day)));
            line.cells.push_back(at == days.end() ? std::string() : CellOf(at->second, line.parameter));
        }
        history.rows.push_back(std::move(line));
    }
    return history;
}

}  // namespace reports
