#include "collection/Retries.h"

#include <optional>

#include "collection/Schedule.h"
#include "core/Settings.h"

namespace collection {

namespace {

constexpr std::int64_t secondsAMinute = 60;

std::string DayText(const core::DateTime& at) {
    return core::IsoText(at).substr(0, 10);
}

bool IsCollected(core::Database& dbconn, std::int64_t locationID, const std::string& gasday) {
    const auto outcome = OutcomeOf(dbconn, locationID, gasday);
    return outcome && outcome->result == reading::Result::Collected;
}

}  // namespace

void Retries::Note(const Turn& turn, const Outcome& outcome, bool again) {
    if (outcome.result == reading::Result::Collected) {
        waiting_.erase(turn.locationID);
    } else if (turn.how != How::Hand) {
        waiting_.erase(turn.locationID);
        if (again) {
            const auto ended = core::MomentOf(outcome.ended);
            Add(turn.locationID, outcome.gasday, turn.round + 1, ended ? core::ToSeconds(*ended) : 0);
        }
    }
}

void Retries::Add(std::int64_t locationID, const std::string& gasday, int round, std::int64_t ended) {
    if (round > core::ReadSetting(dbconn_, core::Setting::RetryRounds)) {
        return;
    }
    const std::int64_t minutes = core::RetryMinutes(dbconn_, round);
    waiting_[locationID] = {gasday, round, minutes, ended + minutes * secondsAMinute};
}

// From the outcomes: of each station's latest gas day, unless it was collected, the last run of the schedule.
void Retries::Load(const core::DateTime& now) {
    loaded_ = true;
    for (const Schedule& schedule : ReadSchedules(dbconn_)) {
        const auto due = LatestDue(schedule, now);
        const std::string gasday = due ? DayText(*due) : std::string();
        const auto row = dbconn_.First(
            "select ended, result, (select count(*) from outcome where locationID=?1 and gasday=?2 and how='retry') as "
            "rounds from outcome where locationID=?1 and gasday=?2 and how<>'hand' and doubtful is null order by rowid "
            "desc limit 1",
            {schedule.locationID, gasday});
        if (!row || waiting_.contains(schedule.locationID) ||
            row->Text("result") == ResultText(reading::Result::Partly) ||
            IsCollected(dbconn_, schedule.locationID, gasday)) {
            continue;
        }
        const auto ended = core::MomentOf(row->Text("ended"));
        Add(schedule.locationID, gasday, static_cast<int>(row->Long("rounds")) + 1,
            ended ? core::ToSeconds(*ended) : 0);
    }
}

std::vector<Turn> Retries::Due(const core::DateTime& now) {
    if (!loaded_) {
        Load(now);
    }
    std::vector<Turn> turns;
    const std::int64_t present = core::ToSeconds(now);
    for (auto at = waiting_.begin(); at != waiting_.end();) {
        const auto& [locationID, waiting] = *at;
        // A clock that was set back does not make a retry wait longer.
        if (waiting.at > present && waiting.at - present <= waiting.minutes * secondsAMinute) {
            ++at;
            continue;
        }
        const auto schedule = ReadSchedule(dbconn_, locationID);
        const auto due = schedule ? LatestDue(*schedule, now) : std::nullopt;
        if (due && DayText(*due) == waiting.gasday && !IsCollected(dbconn_, locationID, waiting.gasday)) {
            Turn turn;
            turn.how = How::Retry;
            turn.locationID = locationID;
            turn.consumer = schedule->consumer;
            turn.duration = schedule->duration;
            turn.due = due;
            turn.round = waiting.round;
            turns.push_back(std::move(turn));
        }
        at = waiting_.erase(at);
    }
    return turns;
}

}  // namespace collection
