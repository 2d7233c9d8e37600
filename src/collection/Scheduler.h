#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "collection/CollectionRun.h"
#include "collection/Mail.h"
#include "collection/Workplace.h"

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

// What runs by itself each minute: collects the stations whose contract hour is the present minute, one after the
// other, records the outcome of each, and mails the day's report behind them.
class Scheduler {
  public:
    Scheduler(Workplace& place, MailTransport& mail) : place_(place), mail_(mail) {}

    // The minute's tick. A tick that comes while stations are being collected selects its own stations at its own
    // minute and puts them behind the ones in hand; the call in hand serves them. While a conversation keeps the line
    // the stations wait: Serve collects them. Never throws.
    void Tick();

    // Collects the stations that wait, unless they are being collected or the line is still kept. Never throws.
    void Serve();

    // Clears sampledtoday of every station that was last tried on another day of the month. Throws DatabaseError.
    void ResetDailyFlags();

    // Who is told of each station from now on; null: nobody.
    void Watch(RunWatcher* watcher) { watcher_ = watcher; }

    // Whether the minute of a moment has had its tick.
    bool Served(const core::DateTime& at) const;

    // The station that is being collected.
    std::optional<std::int64_t> InHand() const { return inHand_; }

    // Stations are being collected, or their mail is being sent.
    bool Busy() const { return running_; }

    // The program ends: the waits of the conversation in hand end, its line is hung up and closed, and no further
    // station is tried. Whoever calls this waits until Busy() is over.
    void Leave();
    bool Leaving() const { return leaving_; }

  private:
    // A station of the selection of a minute.
    struct DueStation {
        std::int64_t locationID = 0;
        std::string consumer;
        std::string duration;
        bool due = false;
    };

    std::vector<DueStation> SelectDue() const;
    void ServeMinute(const std::vector<DueStation>& stations);
    void ServeStation(const DueStation& station);
    void Collect(const DueStation& station, RunState& state);
    void Record(const DueStation& station, bool failed);
    void Tell(void (RunWatcher::*event)(std::int64_t), const DueStation& station);

    Workplace& place_;
    MailTransport& mail_;
    std::deque<std::vector<DueStation>> minutes_;
    RunWatcher* watcher_ = nullptr;
    std::optional<std::int64_t> inHand_;
    core::DateTime lastTick_;
    bool running_ = false;
    bool leaving_ = false;
};

}  // namespace collection
