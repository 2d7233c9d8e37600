#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "collection/CollectionRun.h"
#include "collection/DayLine.h"
#include "collection/MissedHours.h"
#include "collection/Retries.h"
#include "collection/RunQueue.h"
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

// What runs by itself each minute: collects the stations whose contract hour is the present minute, one after the
// other, records the outcome of each, and mails the day's report behind them. What an operator asks for, contract hours
// that were missed, and retries follow behind whoever is due.
class Scheduler {
  public:
    Scheduler(reading::Workplace& place, Reporter& reporter)
        : place_(place), reporter_(reporter), missed_(place.dbconn), retries_(place.dbconn) {}

    // The minute's tick. A tick that comes while stations are being collected selects its own stations at its own
    // minute and puts them behind the ones in hand; the call in hand serves them. While a conversation keeps the line
    // the stations wait: Serve collects them. Ends an attempt whose time is up. Never throws.
    void Tick();

    // Collects the stations that wait, unless they are being collected or the line is still kept. Never throws.
    void Serve();

    // An operator wants a station to be collected. It is queued; Serve, called from the event loop, or the next tick
    // comes to it. False: there is no such station, or it waits already or is in hand. Throws DatabaseError.
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

    // The station that is being collected.
    std::optional<std::int64_t> InHand() const { return inHand_; }

    // Whether the station waits for its turn. A station that waits or is in hand is not to be deleted.
    bool Queued(std::int64_t locationID) const { return queue_.Holds(locationID); }

    InQueue StandOf(std::int64_t locationID) const;

    // Stations are being collected, or their mail is being sent.
    bool Busy() const { return running_; }

    // The program ends: the waits of the conversation in hand end, its line is hung up and closed, and no further
    // station is tried. Whoever calls this waits until Busy() is over.
    void Leave();
    bool Leaving() const { return leaving_; }

  private:
    void QueueDue(const core::DateTime& now);
    void QueueMissed(const core::DateTime& now);
    void EndOverdue();
    bool QueueByHand(std::int64_t locationID);
    void ServeTurn(const Turn& turn);
    void ServeStation(const Turn& turn);
    bool StillWanted(const Turn& turn) const;
    void Collect(const Turn& turn, const core::Station& station);
    reading::RunState Attempts(const Turn& turn, Outcome& outcome);
    void Record(const Turn& turn, const reading::RunState& state, const Outcome& outcome);
    void MailReport(const Turn& turn);
    void MailUnsent();
    void Tell(void (RunWatcher::*event)(std::int64_t), const Turn& turn);

    reading::Workplace& place_;
    Reporter& reporter_;
    MissedHours missed_;
    Retries retries_;
    RunQueue queue_;
    RunWatcher* watcher_ = nullptr;
    std::optional<std::int64_t> inHand_;
    std::optional<core::DateTime> inHandDue_;
    std::uint32_t attemptBegun_ = 0;       // ms, of the attempt in hand
    bool overdue_ = false;                 // its time is up
    std::optional<std::uint32_t> mailed_;  // ms, when mail was last tried
    bool running_ = false;
    bool leaving_ = false;
};

}  // namespace collection
