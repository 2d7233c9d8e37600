#pragma once

#include <cstdint>
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

// The schedule of a station, resolved.
struct Schedule {
    std::int64_t locationID = 0;
    std::string consumer;
    std::string duration;  // "Daily", "Weekly" or "Monthly"
    double day = 0;        // see IsDue
    int minute = 0;        // of the day: the contract hour
};

// The full minute in which a moment lies.
core::DateTime MinuteOf(core::DateTime at);

// Whether a duration is one of a schedule.
bool HasSchedule(const std::string& duration);

// The stations that have one, by location: a known duration and a contract hour that is a time of day. Throws
// DatabaseError.
std::vector<Schedule> ReadSchedules(core::Database& dbconn);
std::optional<Schedule> ReadSchedule(core::Database& dbconn, std::int64_t locationID);

// The contract hour on a day, if the station is due on it.
std::optional<core::DateTime> DueOn(const Schedule& schedule, const core::DateTime& day);

// The contract hours next to a moment: the latest up to its minute, and the first behind its minute. Nothing when there
// is none within 62 days, as for a day 31 that is 40.
std::optional<core::DateTime> LatestDue(const Schedule& schedule, const core::DateTime& now);
std::optional<core::DateTime> DueAfter(const Schedule& schedule, const core::DateTime& now);

struct NextStation {
    std::string consumer;
    core::DateTime at;
};

// The station that is collected next: the earliest, and of these the one with the lowest location. The minute of `now`
// counts until its tick has served it. Nothing when no station has a schedule. Throws DatabaseError.
std::optional<NextStation> NextDue(core::Database& dbconn, const core::DateTime& now, bool minuteServed);

// A station's line in the view of the schedule: "hh:mm", and "Yes" or "No".
struct ScheduleLine {
    std::int64_t locationId = 0;
    std::string consumer;
    std::string contracthour;
    std::string sampledtoday;
};

// All stations in the order of the register. Throws DatabaseError.
std::vector<ScheduleLine> ScheduleLines(core::Database& dbconn);

}  // namespace collection
