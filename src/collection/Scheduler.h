#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "collection/DayLine.h"
#include "collection/LineRun.h"
#include "collection/MissedHours.h"
#include "collection/Retries.h"
#include "reading/Workplace.h"

namespace collection {

// Follows the schedule as it happens.
class RunWatcher {
  public:
    virtual ~RunWatcher() = default;

    // The station's turn has come, and it is due.
    virtual void Collecting(std::int64_t locationID) = 0;

    // Its turn is over, and its mark in the register is set. A station that was selected but not due comes here at
    // once.
    virtual void Collected(std::int64_t locationID) = 0;
};

// What becomes of what was collected: the day's report and its mail. Both may wait, and end early as soon as `ended`
// holds.
class Reporter {
  public:
    virtual ~Reporter() = default;

    // The stations of the contract hour `day` have been served.
    virtual void sendmail(const core::DateTime& day, const std::function<bool()>& ended) = 0;

    // Sends what could not be sent before.
    virtual void SendUnsent(const std::function<bool()>& ended) = 0;
};

// What runs by itself each minute: collects the stations whose contract hour is the present minute, records the outcome
// of each, and mails the day's report behind them. Each line has its own turns, one after the other; lines are served
// side by side. What an operator asks for, contract hours that were missed, and retries follow behind whoever is due on
// the line.
class Scheduler {
  public:
    Scheduler(reading::Workplace& place, Reporter& reporter);
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    // The minute's tick: queues who is due and serves. Ends an attempt whose time is up. Never throws, and never waits.
    void Tick();

    // Begins with the stations that wait, where nothing is being collected on their line and nobody keeps it. Never
    // throws, and never waits.
    void Serve();

    // An operator wants a station to be collected. It is queued; Serve or the next tick comes to it. False: there is no
    // such station, or it waits already or is in hand. Throws DatabaseError.
    bool CollectNow(std::int64_t locationID);

    // The same for every station whose latest contract hour has passed and is not collected. Tells how many were
    // queued. Throws DatabaseError.
    int CollectMissing();

    // Clears sampledtoday of every station that was last tried on another day of the month. Throws DatabaseError.
    void ResetDailyFlags();

    // Who is told of each station from now on; null: nobody.
    void Watch(RunWatcher* watcher) { watcher_ = watcher; }

    // Whether the minute of a moment has had its tick.
    bool Served(const core::DateTime& at) const { return missed_.Ticked(at); }

    // The stations that are being collected, by line.
    std::vector<std::int64_t> InHand() const;
    // The one on the line of a station.
    std::optional<std::int64_t> InHandOn(const core::Station& station) const;

    // Whether the station waits for its turn. A station that waits or is in hand is not to be deleted.
    bool Queued(std::int64_t locationID) const;

    InQueue StandOf(std::int64_t locationID) const;

    // Stations are being collected, or their mail is being sent.
    bool Busy() const;

    // The program ends: the waits of the conversations in hand end, their lines are hung up and closed, and no further
    // station is tried. Whoever calls this waits until Busy() is over.
    void Leave();
    bool Leaving() const { return leaving_; }

  private:
    // The turns that were queued together: behind the last of them the report goes out.
    struct Batch {
        core::DateTime day;
        std::size_t turns = 0;  // that are not over
        bool mails = false;
    };

    void QueueDue(const core::DateTime& now);
    void QueueMissed(const core::DateTime& now);
    void Queue(std::vector<Turn> turns, const core::DateTime& day, bool mails);
    bool QueueTurn(Turn turn);
    LineRun& LineOf(const core::Station& station);
    bool Holds(std::int64_t locationID, const core::DateTime& due) const;
    bool StillWanted(const Turn& turn) const;
    void Over(const Turn& turn);
    void Idle();
    void Mail();
    void Tell(void (RunWatcher::*event)(std::int64_t), const Turn& turn);

    reading::Workplace& place_;
    Reporter& reporter_;
    MissedHours missed_;
    Retries retries_;
    std::map<std::string, std::unique_ptr<LineRun>> lines_;  // by name
    std::map<std::int64_t, Batch> batches_;
    std::int64_t lastBatch_ = 0;
    RunWatcher* watcher_ = nullptr;
    std::deque<core::DateTime> reports_;   // days whose report is to go out
    std::optional<std::uint32_t> mailed_;  // ms, when mail was last tried
    bool mailing_ = false;
    bool leaving_ = false;
};

}  // namespace collection
