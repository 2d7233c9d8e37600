#include "collection/Scheduler.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "collection/Schedule.h"
#include "core/Settings.h"
#include "core/Text.h"
#include "stations/SampledMark.h"

namespace collection {

namespace {

constexpr int maxAttempts = 3;
constexpr double pauseMs = 500;
constexpr std::uint32_t msAMinute = 60000;
constexpr std::uint32_t unsentEveryMs = 30 * msAMinute;
constexpr std::int64_t secondsADay = 86400;

std::string LineText(const core::Station& station) {
    if (!station.ip.empty()) {
        return "IP " + station.ip;
    }
    return "COM" + std::to_string(station.comport) + (station.phoneno.empty() ? "" : " " + station.phoneno);
}

Turn TurnOf(How how, const Schedule& schedule, std::optional<core::DateTime> due) {
    Turn turn;
    turn.how = how;
    turn.locationID = schedule.locationID;
    turn.consumer = schedule.consumer;
    turn.duration = schedule.duration;
    turn.due = due;
    return turn;
}

}  // namespace

void Scheduler::Tick() {
    const core::DateTime now = place_.clock.Now();
    core::Guarded(place_.logs, [this] { EndOverdue(); });
    core::Guarded(place_.logs, [&] { QueueMissed(now); });
    core::Guarded(place_.logs, [&] { QueueDue(now); });
    core::Guarded(place_.logs, [&] {
        for (Turn& turn : retries_.Due(now)) {
            queue_.Add(std::move(turn));
        }
    });
    Serve();
}

void Scheduler::Serve() {
    if (running_) {
        return;
    }
    if (place_.line.Kept()) {
        if (!queue_.Empty()) {
            place_.feedback.Status("Stations are due: their collection waits for the line");
        }
        return;
    }
    running_ = true;
    bool served = false;
    do {
        while (const auto turn = leaving_ ? std::nullopt : queue_.Next()) {
            ServeTurn(*turn);
            served = true;
        }
        if (!leaving_) {
            core::Guarded(place_.logs, [this] { MailUnsent(); });
        }
    } while (!queue_.Empty() && !leaving_);  // a tick has come while the mail was on its way
    running_ = false;
    if (!leaving_) {
        core::Guarded(place_.logs, [&] { missed_.AllServed(served); });
    }
}

bool Scheduler::CollectNow(std::int64_t locationID) {
    if (StandOf(locationID) != InQueue::No) {
        return false;
    }
    const auto row =
        place_.dbconn.First("select consumer, duration from configdata_master where locationID=?", {locationID});
    if (!row) {
        return false;
    }
    Turn turn;
    turn.how = How::Hand;
    turn.locationID = locationID;
    turn.consumer = (*row)[0].Text();
    turn.duration = (*row)[1].Text();
    queue_.Add(std::move(turn));
    return true;
}

int Scheduler::CollectMissing() {
    const core::DateTime now = place_.clock.Now();
    int queued = 0;
    for (const Schedule& schedule : ReadSchedules(place_.dbconn)) {
        if (IsMissing(place_.dbconn, schedule, now) && CollectNow(schedule.locationID)) {
            ++queued;
        }
    }
    return queued;
}

void Scheduler::ResetDailyFlags() {
    const int day = place_.clock.Now().day;
    place_.dbconn.Execute("update configdata_master set sampledtoday = false, sampleddate = ? where sampleddate <> ?",
                          {day, day});
}

InQueue Scheduler::StandOf(std::int64_t locationID) const {
    if (inHand_ == locationID) {
        return InQueue::Collecting;
    }
    return Queued(locationID) ? InQueue::Queued : InQueue::No;
}

void Scheduler::Leave() {
    leaving_ = true;
    place_.line.EndConversation(programEnds);
    place_.clock.Wake();
    if (!running_ && queue_.Empty()) {
        core::Guarded(place_.logs, [this] { missed_.AllServed(true); });
    }
}

void Scheduler::QueueDue(const core::DateTime& now) {
    const core::DateTime minute = MinuteOf(now);
    std::vector<Turn> turns;
    bool scheduled = false;
    for (const core::Row& row :
         place_.dbconn.Query("select locationID, consumer, duration, day from configData_master where "
                             "format(contracthour,'HH:MM AMPM') = format(?,'HH:MM AMPM') order by locationId",
                             {core::TimeText(now)})) {
        Turn turn;
        turn.locationID = row[0].Long();
        turn.consumer = row[1].Text();
        turn.duration = row[2].Text();
        turn.collects = IsDue(turn.duration, row[3].Number(), now);
        if (turn.collects) {
            turn.due = minute;
            const bool inHand = inHand_ == turn.locationID && inHandDue_ == minute;
            if (inHand || queue_.Holds(turn.locationID, minute) || missed_.Served(turn.locationID, minute)) {
                continue;  // the hour comes twice
            }
        }
        scheduled = scheduled || HasSchedule(turn.duration);
        turns.push_back(std::move(turn));
    }
    if (!turns.empty()) {
        // A minute of stations without a schedule, as midnight is, mails nothing.
        turns.back().mails = scheduled;
    }
    for (Turn& turn : turns) {
        queue_.Add(std::move(turn));
    }
}

void Scheduler::QueueMissed(const core::DateTime& now) {
    std::vector<Turn> turns;
    for (const MissedHour& hour : missed_.Tick(now)) {
        const bool inHand = inHand_ == hour.schedule.locationID && inHandDue_ == hour.due;
        if (!inHand && !queue_.Holds(hour.schedule.locationID, hour.due)) {
            turns.push_back(TurnOf(How::Late, hour.schedule, hour.due));
        }
    }
    if (!turns.empty()) {
        turns.back().mails = true;
    }
    for (Turn& turn : turns) {
        queue_.Add(std::move(turn));
    }
}

void Scheduler::EndOverdue() {
    if (!inHand_) {
        return;
    }
    const int minutes = core::ReadSetting(place_.dbconn, core::Setting::StationMinutes);
    if (minutes > 0 &&
        (place_.clock.Milliseconds() - attemptBegun_) / msAMinute >= static_cast<std::uint32_t>(minutes)) {
        overdue_ = true;
        place_.line.EndConversation("The " + std::to_string(minutes) + " minutes of an attempt were up");
    }
}

void Scheduler::ServeTurn(const Turn& turn) {
    core::Guarded(place_.logs, [&] { ServeStation(turn); });
    inHand_.reset();
    if (turn.mails && !leaving_) {
        core::Guarded(place_.logs, [&] { MailReport(turn); });
    }
}

void Scheduler::ServeStation(const Turn& turn) {
    if (!turn.collects) {
        // A station of the selection that is not due today is marked as not sampled.
        stations::MarkSampled(place_.dbconn, place_.clock.Now(), turn.locationID, false);
        Tell(&RunWatcher::Collected, turn);
        return;
    }
    const auto station = core::ReadStation(place_.dbconn, turn.locationID);
    if (!station || !StillWanted(turn)) {
        return;
    }
    inHand_ = turn.locationID;
    inHandDue_ = turn.due;
    Tell(&RunWatcher::Collecting, turn);
    Collect(turn, *station);
    inHand_.reset();
    if (!leaving_) {
        Tell(&RunWatcher::Collected, turn);
    }
}

// What was missed, or gave nothing, may have been collected while its turn waited; or the next contract hour has come,
// and what the station has now is of another gas day.
bool Scheduler::StillWanted(const Turn& turn) const {
    if (turn.how != How::Late && turn.how != How::Retry) {
        return true;
    }
    const core::DateTime now = place_.clock.Now();
    const auto schedule = ReadSchedule(place_.dbconn, turn.locationID);
    if (!schedule || LatestDue(*schedule, now) != turn.due) {
        return false;
    }
    const auto outcome = OutcomeOf(place_.dbconn, turn.locationID, turn.GasDay(now));
    return !outcome || outcome->result != reading::Result::Collected;
}

void Scheduler::Collect(const Turn& turn, const core::Station& station) {
    Outcome outcome;
    outcome.locationID = turn.locationID;
    outcome.how = turn.how;
    outcome.line = LineText(station);
    const core::DateTime begun = place_.clock.Now();
    outcome.begun = core::IsoText(begun);
    // By hand: the latest contract hour that has passed.
    Turn served = turn;
    if (turn.how == How::Hand) {
        const auto schedule = ReadSchedule(place_.dbconn, turn.locationID);
        served.due = schedule ? LatestDue(*schedule, begun) : std::nullopt;
    }
    outcome.gasday = served.GasDay(begun);
    outcome.due = served.due ? core::IsoText(*served.due) : std::string();

    place_.feedback.Status("Data Collecting from Location " + turn.consumer);
    if (core::SameText(turn.duration, "Daily")) {
        place_.clock.WaitMs(pauseMs, [this] { return leaving_; });
    }
    const reading::RunState state = Attempts(turn, outcome);
    outcome.ended = core::IsoText(place_.clock.Now());
    Record(served, state, outcome);
}

reading::RunState Scheduler::Attempts(const Turn& turn, Outcome& outcome) {
    reading::RunState state;
    state.runfailed = true;
    std::optional<reading::RunState> best;
    overdue_ = false;
    while (state.runfailed && state.attemptcount < maxAttempts && !leaving_ && !overdue_) {
        state.runfailed = false;
        if (core::SameText(turn.duration, "Weekly")) {
            place_.feedback.Status("Collecting Data");
        }
        attemptBegun_ = place_.clock.Milliseconds();
        collectiong_Data(place_, turn.locationID, state);
        // A later attempt that got less does not undo what an earlier one stored.
        if (!best || Rank(state.result) <= Rank(best->result)) {
            best = state;
        }
        place_.clock.WaitMs(pauseMs, [this] { return leaving_; });
        ++state.attemptcount;
        ++outcome.attempts;
    }
    if (!best) {
        state.result = reading::Result::BrokenOff;
        state.reason = programEnds;
        best = state;
    }
    outcome.attempts = state.dials > 0 ? state.dials : outcome.attempts;
    outcome.asked = best->asked;
    outcome.received = best->received;
    outcome.result = best->result;
    outcome.reason = best->reason;
    best->runfailed = state.runfailed;
    return *best;
}

void Scheduler::Record(const Turn& turn, const reading::RunState& state, const Outcome& outcome) {
    const core::DateTime now = place_.clock.Now();
    // A figure that was read a day after its contract hour is another day's.
    const bool isOfTheDay = !turn.due || core::ToSeconds(now) - core::ToSeconds(*turn.due) < secondsADay;
    const bool byItself = turn.how == How::Schedule || turn.how == How::Late;
    place_.dbconn.InTransaction([&] {
        if (isOfTheDay) {
            RecordGasDay(place_.dbconn, turn.locationID, outcome.gasday, now, state.figures);
        }
        RecordOutcome(place_.dbconn, outcome);
        // A station that was cut off by the end of the program keeps its mark, as does one that is collected and was
        // only tried once more.
        const auto today = byItself ? std::nullopt : OutcomeOfToday(place_.dbconn, turn.locationID, now);
        const bool collected = today && today->result == reading::Result::Collected;
        if (!leaving_) {
            stations::MarkSampled(place_.dbconn, now, turn.locationID, !state.runfailed || collected);
        }
    });
    const bool partlyAsItIs = outcome.result == reading::Result::Partly && !state.runfailed;
    retries_.Note(turn, outcome, !partlyAsItIs);
}

void Scheduler::MailReport(const Turn& turn) {
    mailed_ = place_.clock.Milliseconds();
    reporter_.sendmail(turn.due.value_or(place_.clock.Now()), [this] { return leaving_; });
}

// What no server took is tried again from time to time, for the first time when the program has started.
void Scheduler::MailUnsent() {
    if (mailed_ && place_.clock.Milliseconds() - *mailed_ < unsentEveryMs) {
        return;
    }
    mailed_ = place_.clock.Milliseconds();
    reporter_.SendUnsent([this] { return leaving_; });
}

void Scheduler::Tell(void (RunWatcher::*event)(std::int64_t), const Turn& turn) {
    if (watcher_ != nullptr) {
        (watcher_->*event)(turn.locationID);
    }
}

}  // namespace collection
