#include "collection/DayLine.h"

namespace collection {

namespace {

std::string TimeOf(const std::string& isoText) {
    return isoText.size() >= 16 ? isoText.substr(11, 5) : isoText;
}

std::string DueText(const core::DateTime& due, const core::DateTime& now) {
    const std::string time = core::TimeText(due).substr(0, 5);
    const bool today = core::DateText(due) == core::DateText(now);
    return today ? "due " + time : "due " + core::DateText(due).substr(0, 5) + " " + time;
}

std::string Attempts(const Outcome& outcome) {
    const bool dialled = outcome.line.find(' ') != std::string::npos && !outcome.line.starts_with("IP");
    const char* const one = dialled ? "dial" : "attempt";
    return std::to_string(outcome.attempts) + " " + one + (outcome.attempts == 1 ? "" : "s");
}

const char* HowWords(How how) {
    switch (how) {
        case How::Schedule:
            return " by schedule";
        case How::Late:
            return " late";
        case How::Retry:
            return " by retry";
        case How::Hand:
            break;
    }
    return " by hand";
}

}  // namespace

DayLine LineOf(const Outcome& outcome) {
    const std::string time = TimeOf(outcome.ended);
    const std::string result(ResultText(outcome.result));
    switch (outcome.result) {
        case reading::Result::Collected:
            return {DayState::Collected, time + HowWords(outcome.how), outcome.reason};
        case reading::Result::Partly:
            return {DayState::Partly,
                    result + ", " + std::to_string(outcome.received) + " of " + std::to_string(outcome.asked) +
                        " values, " + time,
                    outcome.reason};
        case reading::Result::NotReached:
        case reading::Result::NoAnswer:
            return {DayState::Failed, result + ", " + Attempts(outcome) + ", " + time, outcome.reason};
        case reading::Result::Refused:
        case reading::Result::BrokenOff:
            break;
    }
    return {DayState::Failed, result + ", " + time, outcome.reason};
}

DayLine LineNow(core::Database& dbconn, std::int64_t locationID, const core::DateTime& now, InQueue inQueue) {
    if (inQueue != InQueue::No) {
        const bool queued = inQueue == InQueue::Queued;
        return {queued ? DayState::Queued : DayState::Collecting, queued ? "queued" : "collecting", {}};
    }
    if (const auto outcome = OutcomeOfToday(dbconn, locationID, now)) {
        return LineOf(*outcome);
    }
    const auto schedule = ReadSchedule(dbconn, locationID);
    const auto due = schedule ? DueAfter(*schedule, now) : std::nullopt;
    return due ? DayLine{DayState::NotYetDue, DueText(*due, now), {}}
               : DayLine{DayState::NoSchedule, "no schedule", {}};
}

DayLine LineOfDay(core::Database& dbconn, std::int64_t locationID, const core::DateTime& day,
                  const core::DateTime& now) {
    if (const auto outcome = OutcomeOf(dbconn, locationID, core::IsoText(day).substr(0, 10))) {
        return LineOf(*outcome);
    }
    const auto schedule = ReadSchedule(dbconn, locationID);
    if (!schedule) {
        return {DayState::NoSchedule, "no schedule", {}};
    }
    const auto due = DueOn(*schedule, day);
    if (!due) {
        return {DayState::NotYetDue, "not due", {}};
    }
    return *due > now ? DayLine{DayState::NotYetDue, DueText(*due, day), {}} : DayLine{DayState::NotYetDue, "", {}};
}

bool IsMissing(core::Database& dbconn, const Schedule& schedule, const core::DateTime& now) {
    const auto due = LatestDue(schedule, now);
    if (!due) {
        return false;
    }
    if (const auto outcome = OutcomeOf(dbconn, schedule.locationID, core::IsoText(*due).substr(0, 10))) {
        return outcome->result != reading::Result::Collected;
    }
    const auto row =
        dbconn.First("select sampledtoday from configdata_master where locationID=?", {schedule.locationID});
    return row && !(*row)[0].Bool();
}

DayCount CountDay(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now) {
    DayCount count;
    for (const Schedule& schedule : ReadSchedules(dbconn)) {
        const auto due = DueOn(schedule, day);
        if (!due || *due > now || !HasOutcomes(dbconn, schedule.locationID, day)) {
            continue;
        }
        const auto outcome = OutcomeOf(dbconn, schedule.locationID, core::IsoText(day).substr(0, 10));
        if (!outcome || Rank(outcome->result) > 1) {
            ++count.missing;
        } else if (outcome->result == reading::Result::Partly) {
            ++count.partly;
        }
    }
    return count;
}

}  // namespace collection
