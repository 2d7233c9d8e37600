#include "collection/Outcome.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace collection {

namespace {

// In the order of How and Result.
constexpr std::array<std::string_view, 4> hows = {"schedule", "late", "retry", "hand"};
constexpr std::array<std::string_view, 6> results = {"collected", "partly",  "not reached",
                                                     "no answer", "refused", "broken off"};

// A text that is none of them counts as the last, which claims the least.
template <std::size_t size>
std::size_t IndexOf(const std::array<std::string_view, size>& texts, const std::string& text) {
    const auto at = std::find(texts.begin(), texts.end(), text);
    return at == texts.end() ? size - 1 : static_cast<std::size_t>(at - texts.begin());
}

core::Value TextOrNull(const std::string& text) {
    return text.empty() ? core::Value() : core::Value(text);
}

core::Value Nullable(const std::optional<double>& value) {
    return value ? core::Value(*value) : core::Value();
}

std::optional<double> Figure(const core::Row& row, const char* column) {
    return row.IsNull(column) ? std::nullopt : std::optional(row.Number(column));
}

Outcome OutcomeIn(const core::Row& row) {
    Outcome outcome;
    outcome.locationID = row.Long("locationID");
    outcome.gasday = row.Text("gasday");
    outcome.due = row.Text("due");
    outcome.begun = row.Text("begun");
    outcome.ended = row.Text("ended");
    outcome.how = static_cast<How>(IndexOf(hows, row.Text("how")));
    outcome.attempts = static_cast<int>(row.Long("attempts"));
    outcome.line = row.Text("line");
    outcome.asked = static_cast<int>(row.Long("asked"));
    outcome.received = static_cast<int>(row.Long("received"));
    outcome.result = static_cast<reading::Result>(IndexOf(results, row.Text("result")));
    outcome.reason = row.Text("reason");
    return outcome;
}

constexpr const char* bestFirst =
    " and doubtful is null order by gasday desc, case result when 'collected' then 0 when 'partly' then 1 else 2 end, "
    "rowid desc limit 1";

constexpr std::int64_t farthestGasDay = 62;  // days: a run of today serves no earlier one

}  // namespace

std::string_view HowText(How how) {
    return hows.at(static_cast<std::size_t>(how));
}

std::string_view ResultText(reading::Result result) {
    return results.at(static_cast<std::size_t>(result));
}

int Rank(reading::Result result) {
    return result == reading::Result::Collected ? 0 : result == reading::Result::Partly ? 1 : 2;
}

void RecordOutcome(core::Database& dbconn, const Outcome& outcome) {
    dbconn.Execute(
        "insert into outcome(locationID, gasday, due, begun, ended, how, attempts, line, asked, received, result, "
        "reason) values(?,?,?,?,?,?,?,?,?,?,?,?)",
        {outcome.locationID, outcome.gasday, TextOrNull(outcome.due), outcome.begun, outcome.ended,
         HowText(outcome.how), outcome.attempts, outcome.line, outcome.asked, outcome.received,
         ResultText(outcome.result), TextOrNull(outcome.reason)});
}

std::optional<Outcome> OutcomeOf(core::Database& dbconn, std::int64_t locationID, const std::string& gasday) {
    const auto row = dbconn.First(std::string("select * from outcome where locationID=? and gasday=?") + bestFirst,
                                  {locationID, gasday});
    return row ? std::optional(OutcomeIn(*row)) : std::nullopt;
}

std::optional<Outcome> OutcomeOfToday(core::Database& dbconn, std::int64_t locationID, const core::DateTime& now) {
    const std::string today = core::IsoText(now).substr(0, 10);
    const std::string earliest =
        core::IsoText(core::FromSeconds(core::ToSeconds(now) - farthestGasDay * 86400)).substr(0, 10);
    const auto row = dbconn.First(
        std::string("select * from outcome where locationID=? and gasday>=? and gasday<=? and substr(begun,1,10)=?") +
            bestFirst,
        {locationID, earliest, today, today});
    return row ? std::optional(OutcomeIn(*row)) : std::nullopt;
}

bool HasOutcomes(core::Database& dbconn, std::int64_t locationID, const core::DateTime& day) {
    return dbconn
        .First("select 1 from outcome where locationID=? and gasday<=? limit 1",
               {locationID, core::IsoText(day).substr(0, 10)})
        .has_value();
}

void RecordGasDay(core::Database& dbconn, std::int64_t locationID, const std::string& gasday,
                  const core::DateTime& readat, const reading::DayFigures& figures) {
    if (!figures.dayflow && !figures.monthflow && !figures.pressure) {
        return;
    }
    dbconn.Execute(
        "insert into gasday(locationID, gasday, readat, dayflow, monthflow, pressure) values(?,?,?,?,?,?) on "
        "conflict(locationID, gasday) do update set readat=excluded.readat, doubtful=null, "
        "dayflow=ifnull(excluded.dayflow,iif(doubtful,null,dayflow)), "
        "monthflow=ifnull(excluded.monthflow,iif(doubtful,null,monthflow)), "
        "pressure=ifnull(excluded.pressure,iif(doubtful,null,pressure))",
        {locationID, gasday, core::IsoText(readat), Nullable(figures.dayflow), Nullable(figures.monthflow),
         Nullable(figures.pressure)});
}

std::optional<reading::DayFigures> GasDayOf(core::Database& dbconn, std::int64_t locationID,
                                            const std::string& gasday) {
    const auto row =
        dbconn.First("select * from gasday where locationID=? and gasday=? and doubtful is null", {locationID, gasday});
    return row ? std::optional(
                     reading::DayFigures{Figure(*row, "dayflow"), Figure(*row, "monthflow"), Figure(*row, "pressure")})
               : std::nullopt;
}

}  // namespace collection
