#include "collection/Scheduler.h"

#include <algorithm>
#include <utility>

#include "collection/Schedule.h"
#include "core/Settings.h"
#include "stations/SampledMark.h"

namespace collection {

namespace {

constexpr std::uint32_t unsentEveryMs = 30 * 60000;

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

Scheduler::Scheduler(reading::Workplace& place, Reporter& reporter)
    : place_(place), reporter_(reporter), missed_(place.dbconn), retries_(place.dbconn) {}

void Scheduler::Tick() {
    const core::DateTime now = place_.clock.Now();
    core::Guarded(place_.logs, [this] {
        const int minutes = core::ReadSetting(place_.dbconn, core::Setting::StationMinutes);
        for (auto& [name, line] : lines_) {
            line->EndOverdue(minutes);
        }
    });
    core::Guarded(place_.logs, [&] { QueueMissed(now); });
    core::Guarded(place_.logs, [&] { QueueDue(now); });
    core::Guarded(place_.logs, [&] {
        for (Turn& turn : retries_.Due(now)) {
            QueueTurn(std::move(turn));
        }
    });
    Serve();
    // What no server took is tried again from time to time, for the first time when the program has started.
    if (!mailed_ || place_.clock.Milliseconds() - *mailed_ >= unsentEveryMs) {
        Mail();
    }
    if (!leaving_ && !Busy()) {
        core::Guarded(place_.logs, [&] { missed_.AllServed(false); });
    }
}

void Scheduler::Serve() {
    for (auto& [name, line] : lines_) {
        line->Serve();
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
    return QueueTurn(std::move(turn));
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

std::vector<std::int64_t> Scheduler::InHand() const {
    std::vector<std::int64_t> stations;
    for (const auto& [name, line] : lines_) {
        if (line->InHand()) {
            stations.push_back(line->InHand()->locationID);
        }
    }
    return stations;
}

std::optional<std::int64_t> Scheduler::InHandOn(const core::Station& station) const {
    const auto line = lines_.find(protocols::LineName(station));
    return line != lines_.end() && line->second->InHand() ? std::optional(line->second->InHand()->locationID)
                                                          : std::nullopt;
}

bool Scheduler::Queued(std::int64_t locationID) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const auto& line) { return line.second->Queue().Holds(locationID); });
}

InQueue Scheduler::StandOf(std::int64_t locationID) const {
    const auto inHand = InHand();
    if (std::find(inHand.begin(), inHand.end(), locationID) != inHand.end()) {
        return InQueue::Collecting;
    }
    return Queued(locationID) ? InQueue::Queued : InQueue::No;
}

bool Scheduler::Busy() const {
    return mailing_ ||
           std::any_of(lines_.begin(), lines_.end(), [](const auto& line) { return line.second->Running(); });
}

void Scheduler::Leave() {
    leaving_ = true;
    place_.lines.EndConversations(programEnds);
    for (auto& [name, line] : lines_) {
        line->Leave();
    }
    place_.clock.Wake();
    const bool waits = std::any_of(lines_.begin(), lines_.end(), [](const auto& line) {
        return line.second->Running() || !line.second->Queue().Empty();
    });
    if (!waits) {
        core::Guarded(place_.logs, [this] { missed_.AllServed(true); });
    }
}

// Queueing -----------------------------------------------------------------------------------------------------------

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
        if (!IsDue(turn.duration, row[3].Number(), now)) {
            // A station of the selection that is not due today is marked as not sampled.
            scheduled = scheduled || HasSchedule(turn.duration);
            stations::MarkSampled(place_.dbconn, now, turn.locationID, false);
            Tell(&RunWatcher::Collected, turn);
            continue;
        }
        turn.due = minute;
        if (Holds(turn.locationID, minute) || missed_.Served(turn.locationID, minute)) {
            continue;  // the hour comes twice
        }
        scheduled = scheduled || HasSchedule(turn.duration);
        turns.push_back(std::move(turn));
    }
    // A minute of stations without a schedule, as midnight is, mails nothing.
    Queue(std::move(turns), minute, scheduled);
}

void Scheduler::QueueMissed(const core::DateTime& now) {
    std::vector<Turn> turns;
    for (const MissedHour& hour : missed_.Tick(now)) {
        if (!Holds(hour.schedule.locationID, hour.due)) {
            turns.push_back(TurnOf(How::Late, hour.schedule, hour.due));
        }
    }
    if (!turns.empty()) {
        const core::DateTime day = *turns.back().due;
        Queue(std::move(turns), day, true);
    }
}

void Scheduler::Queue(std::vector<Turn> turns, const core::DateTime& day, bool mails) {
    Batch batch{day, 0, mails};
    ++lastBatch_;
    for (Turn& turn : turns) {
        turn.batch = lastBatch_;
        batch.turns += QueueTurn(std::move(turn)) ? 1 : 0;
    }
    if (batch.turns > 0) {
        batches_[lastBatch_] = batch;
    } else if (mails) {
        reports_.push_back(day);
        Mail();
    }
}

// False: the register has no such station any more.
bool Scheduler::QueueTurn(Turn turn) {
    const auto station = core::ReadStation(place_.dbconn, turn.locationID);
    if (station) {
        LineOf(*station).Add(std::move(turn));
    }
    return station.has_value();
}

LineRun& Scheduler::LineOf(const core::Station& station) {
    const std::string name = protocols::LineName(station);
    auto& line = lines_[name];
    if (line == nullptr) {
        line =
            std::make_unique<LineRun>(place_, name, place_.lines.Of(station),
                                      LineRun::Owner{[this](const Turn& turn) { return StillWanted(turn); },
                                                     [this](const Turn& turn) { Tell(&RunWatcher::Collecting, turn); },
                                                     [this](const Turn& turn, const Outcome& outcome, bool again) {
                                                         retries_.Note(turn, outcome, again);
                                                         if (!leaving_) {
                                                             Tell(&RunWatcher::Collected, turn);
                                                         }
                                                     },
                                                     [this](const Turn& turn) {
                                                         QueueTurn(turn);
                                                         Serve();
                                                     },
                                                     [this](const Turn& turn) { Over(turn); }, [this] { Idle(); }});
    }
    return *line;
}

// The turn of a contract hour waits or is in hand.
bool Scheduler::Holds(std::int64_t locationID, const core::DateTime& due) const {
    return std::any_of(lines_.begin(), lines_.end(), [&](const auto& known) {
        const auto& inHand = known.second->InHand();
        return (inHand && inHand->locationID == locationID && inHand->due == due) ||
               known.second->Queue().Holds(locationID, due);
    });
}

// Serving ------------------------------------------------------------------------------------------------------------

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

void Scheduler::Over(const Turn& turn) {
    const auto batch = batches_.find(turn.batch);
    if (batch == batches_.end() || --batch->second.turns > 0) {
        return;
    }
    if (batch->second.mails && !leaving_) {
        reports_.push_back(batch->second.day);
        Mail();
    }
    batches_.erase(batch);
}

void Scheduler::Idle() {
    const bool waits = std::any_of(lines_.begin(), lines_.end(), [](const auto& line) {
        return line.second->Running() || !line.second->Queue().Empty();
    });
    if (!leaving_ && !waits) {
        core::Guarded(place_.logs, [&] { missed_.AllServed(true); });
    }
}

// The reports that are to go out, and behind them what could not be sent before.
void Scheduler::Mail() {
    if (mailing_ || leaving_) {
        return;
    }
    mailing_ = true;
    place_.clock.Start([this] {
        const auto ended = [this] { return leaving_; };
        do {
            mailed_ = place_.clock.Milliseconds();
            if (!reports_.empty()) {
                const core::DateTime day = reports_.front();
                reports_.pop_front();
                core::Guarded(place_.logs, [&] { reporter_.sendmail(day, ended); });
            } else {
                core::Guarded(place_.logs, [&] { reporter_.SendUnsent(ended); });
            }
        } while (!reports_.empty() && !leaving_);
        mailing_ = false;
    });
}

void Scheduler::Tell(void (RunWatcher::*event)(std::int64_t), const Turn& turn) {
    if (watcher_ != nullptr) {
        (watcher_->*event)(turn.locationID);
    }
}

}  // namespace collection
