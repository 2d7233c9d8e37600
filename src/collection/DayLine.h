#pragma once

#include <cstdint>
#include <string>

#include "collection/Outcome.h"
#include "collection/Schedule.h"
#include "core/Clock.h"
#include "core/Database.h"

// A station's day in a few words: for the wall, the reports and the mail.
namespace collection {

enum class DayState {
    NoSchedule,  // nobody is waiting for it
    NotYetDue,
    Queued,
    Collecting,
    Collected,
    Partly,
    Failed,  // its run gave nothing
};

struct DayLine {
    DayState state = DayState::NoSchedule;
    std::string text;    // "due 14:30", "08:01 by schedule", "not reached, 3 dials, 08:02", "no schedule", ...
    std::string reason;  // of what is missing, a sentence; empty: there is none
};

// What the scheduler has in its hands of a station.
enum class InQueue { No, Queued, Collecting };

// A station's line now. Nothing is said of a day before: in the morning, a station that is due in the evening is due.
// Throws DatabaseError.
DayLine LineNow(core::Database& dbconn, std::int64_t locationID, const core::DateTime& now, InQueue inQueue);

// A station's line for the report of a day, as far as it is known at `now`. Of a day without a run, "no schedule", "not
// due" or "due 14:30"; empty when it had a contract hour of which nothing is known, as before this was recorded.
// Throws DatabaseError.
DayLine LineOfDay(core::Database& dbconn, std::int64_t locationID, const core::DateTime& day,
                  const core::DateTime& now);

// Whether a station's latest contract hour has passed without a whole collection. Of a gas day without any run, the
// mark of the day decides: it may have been collected before outcomes were recorded. Throws DatabaseError.
bool IsMissing(core::Database& dbconn, const Schedule& schedule, const core::DateTime& now);

// The stations whose contract hour on a day has passed at `now`: how many have nothing, and how many only a part. Of a
// station without outcomes up to that day nothing is known, and it is not counted. Throws DatabaseError.
struct DayCount {
    int missing = 0;
    int partly = 0;
};
DayCount CountDay(core::Database& dbconn, const core::DateTime& day, const core::DateTime& now);

// The words for a run: "08:01 by schedule", "partly, 240 of 265 values, 08:01", "not reached, 3 dials, 08:02".
DayLine LineOf(const Outcome& outcome);

}  // namespace collection
