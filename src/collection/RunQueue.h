#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "collection/Outcome.h"

namespace collection {

// A station's turn that is to come.
struct Turn {
    How how = How::Schedule;
    std::int64_t locationID = 0;
    std::string consumer;
    std::string duration;               // as its row has it
    std::optional<core::DateTime> due;  // the contract hour that it serves
    bool collects = true;               // false: selected by its minute, and not due today
    int round = 0;                      // of a retry, from 1
    std::int64_t batch = 0;             // of the turns that were queued together; 0: none

    // "2026-03-09": the day of the contract hour, or of a moment where there is none.
    std::string GasDay(const core::DateTime& now) const { return core::IsoText(due.value_or(now)).substr(0, 10); }
};

// The turns that wait. Who is due goes first; then what an operator asked for, then late hours, then retries; each of
// them in the order in which they came.
class RunQueue {
  public:
    void Add(Turn turn);
    std::optional<Turn> Next();
    // The same; among those that are as urgent as the next one, the first that is preferred.
    using Preferred = std::function<bool(const Turn& turn)>;
    std::optional<Turn> Next(const Preferred& preferred);
    // Whether that one is preferred.
    bool NextIs(const Preferred& preferred) const;
    bool Empty() const;

    // Whether a turn of the station waits in which it is collected.
    bool Holds(std::int64_t locationID) const;
    // Whether one waits that serves this contract hour.
    bool Holds(std::int64_t locationID, const core::DateTime& due) const;
    // Whether the schedule's own turns wait, those of this minute or missed ones.
    bool HoldsScheduled() const { return !waiting_[0].empty() || !waiting_[2].empty(); }

  private:
    std::array<std::deque<Turn>, 4> waiting_;  // by urgency
};

}  // namespace collection
