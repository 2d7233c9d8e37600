#pragma once

#include <optional>
#include <vector>

#include "collection/Schedule.h"
#include "core/Clock.h"
#include "core/Database.h"

namespace collection {

// A contract hour that passed unserved.
struct MissedHour {
    Schedule schedule;
    core::DateTime due;
};

// Knows which contract hours nobody served: the program did not run, the machine slept, the clock was set forward,
// summer time began, or the power was cut or the program ended while they waited or were in hand. What was served is
// known from `outcome`, and up to which minute all was served from `schedule_state`; so neither a first start nor a new
// station has a past to catch up.
class MissedHours {
  public:
    explicit MissedHours(core::Database& dbconn) : dbconn_(dbconn) {}

    // A minute's tick: what was missed before it, of each station its latest contract hour at most. A station that is
    // due in this very minute has missed nothing. Throws DatabaseError.
    std::vector<MissedHour> Tick(const core::DateTime& now);

    // All turns up to the last tick have their outcome. `atOnce`: this is written down now; else every 15 minutes.
    // Throws DatabaseError.
    void AllServed(bool atOnce);

    // Whether a contract hour was served as such. So an hour that comes twice is served once. Throws DatabaseError.
    bool Served(std::int64_t locationID, const core::DateTime& due) const;

    // Whether the minute of a moment has had its tick.
    bool Ticked(const core::DateTime& at) const;

  private:
    core::DateTime Begin(const core::DateTime& minute);
    void DoubtFuture(const core::DateTime& now);
    void TrustPast(const core::DateTime& now);
    bool DayServed(std::int64_t locationID, const core::DateTime& due) const;
    void WriteDown(const core::DateTime& minute);

    core::Database& dbconn_;
    std::optional<core::DateTime> lastTick_;     // its minute
    std::optional<core::DateTime> writtenDown_;  // as in the table
};

}  // namespace collection
