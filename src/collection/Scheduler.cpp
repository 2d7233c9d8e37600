#include "collection/Scheduler.h"

#include "collection/Schedule.h"
#include "core/Text.h"

namespace collection {

namespace {

constexpr int maxAttempts = 3;
constexpr double pauseMs = 500;

}  // namespace

void Scheduler::Tick() {
    lastTick_ = place_.clock.Now();
    core::Guarded(place_.logs, [&] {
        auto stations = SelectDue();
        if (!stations.empty()) {
            minutes_.push_back(std::move(stations));
        }
    });
    Serve();
}

void Scheduler::Serve() {
    if (running_) {
        return;
    }
    if (place_.line.Kept()) {
        if (!minutes_.empty()) {
            place_.feedback.Status("Stations are due: their collection waits for the line");
        }
        return;
    }
    running_ = true;
    while (!minutes_.empty() && !leaving_) {
        const auto stations = std::move(minutes_.front());
        minutes_.pop_front();
        ServeMinute(stations);
    }
    running_ = false;
}

bool Scheduler::Served(const core::DateTime& at) const {
    return core::IsoText(at).substr(0, 16) == core::IsoText(lastTick_).substr(0, 16);
}

void Scheduler::ResetDailyFlags() {
    const int day = place_.clock.Now().day;
    place_.dbconn.Execute("update configdata_master set sampledtoday = false, sampleddate = ? where sampleddate <> ?",
                          {day, day});
}

void Scheduler::Leave() {
    leaving_ = true;
    place_.line.EndConversation("The program ends");
    place_.clock.Wake();
}

std::vector<Scheduler::DueStation> Scheduler::SelectDue() const {
    const core::DateTime now = place_.clock.Now();
    std::vector<DueStation> stations;
    for (const core::Row& row :
         place_.dbconn.Query("select locationID, consumer, duration, day from configData_master where "
                             "format(contracthour,'HH:MM AMPM') = format(?,'HH:MM AMPM') order by locationId",
                             {core::TimeText(now)})) {
        stations.push_back({row[0].Long(), row[1].Text(), row[2].Text(), IsDue(row[2].Text(), row[3].Number(), now)});
    }
    return stations;
}

void Scheduler::ServeMinute(const std::vector<DueStation>& stations) {
    for (const DueStation& station : stations) {
        if (leaving_) {
            return;
        }
        core::Guarded(place_.logs, [&] { ServeStation(station); });
    }
    if (!leaving_) {
        core::Guarded(place_.logs, [&] {
            sendmail(place_.dbconn, place_.shared, place_.clock, place_.feedback, place_.logs, mail_,
                     [this] { return leaving_; });
        });
    }
}

void Scheduler::ServeStation(const DueStation& station) {
    RunState state;
    state.runfailed = true;
    if (station.due) {
        inHand_ = station.locationID;
        Tell(&RunWatcher::Collecting, station);
        Collect(station, state);
        inHand_.reset();
    }
    // A station of the selection that is not due today is marked as not sampled; one that was cut off by the end of
    // the program keeps its mark.
    if (!leaving_) {
        Record(station, state.runfailed);
        Tell(&RunWatcher::Collected, station);
    }
}

void Scheduler::Collect(const DueStation& station, RunState& state) {
    place_.feedback.Status("Data Collecting from Location " + station.consumer);
    if (core::SameText(station.duration, "Daily")) {
        place_.clock.WaitMs(pauseMs, [this] { return leaving_; });
    }
    while (state.runfailed && state.attemptcount < maxAttempts && !leaving_) {
        state.runfailed = false;
        if (core::SameText(station.duration, "Weekly")) {
            place_.feedback.Status("Collecting Data");
        }
        collectiong_Data(place_, station.locationID, state);
        place_.clock.WaitMs(pauseMs, [this] { return leaving_; });
        ++state.attemptcount;
    }
}

void Scheduler::Tell(void (RunWatcher::*event)(std::int64_t), const DueStation& station) {
    if (watcher_ != nullptr) {
        (watcher_->*event)(station.locationID);
    }
}

void Scheduler::Record(const DueStation& station, bool failed) {
    place_.dbconn.Execute("update configData_master set sampledtoday = ?, sampleddate = ? where locationid = ?",
                          {!failed, place_.clock.Now().day, station.locationID});
}

}  // namespace collection
