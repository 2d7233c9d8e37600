#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"

// When a station is due: the columns duration, day and contracthour of its row.
namespace collection {

// Whether a station is due on a day: "Daily" always; "Weekly" when `day` is the day of the week, Sunday being 1;
// "Monthly" when `day` is the day of the month; any other duration, such as "NO", never.
bool IsDue(const std::string& duration, double day, const core::DateTime& today);

struct NextStation {
    std::string consumer;
    core::DateTime at;
};

// The station that is collected next: the earliest, and of these the one with the lowest location. The minute of `now`
// counts until its tick has served it. Nothing when no station has a schedule. Throws DatabaseError.
std::optional<NextStation> NextDue(core::Database& dbconn, const core::DateTime& now, bool minuteServed);

// A station's line in the view of the schedule: "hh:mm", and "Yes" or "No".
struct ScheduleLine {
    std::string consumer;
    std::string contracthour;
    std::string sampledtoday;
};

// All stations in the order of the register. Throws DatabaseError.
std::vector<ScheduleLine> ScheduleLines(core::Database& dbconn);

}  // namespace collection
