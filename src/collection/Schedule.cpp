#include "collection/Schedule.h"

#include <utility>

#include "core/Text.h"

namespace collection {

namespace {

constexpr std::int64_t secondsADay = 86400;
constexpr int farthestDay = 62;  // a 31st is at most so many days away

constexpr const char* columns =
    "select locationID, consumer, duration, day, format(contracthour,'HH:MM AMPM') as hour from configdata_master ";

std::optional<Schedule> ScheduleIn(const core::Row& row) {
    Schedule schedule{row.Long("locationID"), row.Text("consumer"), row.Text("duration"), row.Number("day"), 0};
    const std::string hour = row.Text("hour");  // "08:05 PM"
    if (!HasSchedule(schedule.duration) || hour.size() != 8) {
        return std::nullopt;
    }
    schedule.minute = (std::stoi(hour) % 12 + (hour[6] == 'P' ? 12 : 0)) * 60 + std::stoi(hour.substr(3));
    return schedule;
}

std::int64_t Midnight(const core::DateTime& at) {
    return core::ToSeconds({at.year, at.month, at.day, 0, 0, 0});
}

// The contract hour of a day counted from the day of `now`, if the station is due then.
std::optional<core::DateTime> DueInDays(const Schedule& schedule, const core::DateTime& now, std::int64_t days) {
    return DueOn(schedule, core::FromSeconds(Midnight(now) + days * secondsADay));
}

}  // namespace

core::DateTime MinuteOf(core::DateTime at) {
    at.second = 0;
    return at;
}

bool HasSchedule(const std::string& duration) {
    return core::SameText(duration, "Daily") || core::SameText(duration, "Weekly") ||
           core::SameText(duration, "Monthly");
}

std::vector<Schedule> ReadSchedules(core::Database& dbconn) {
    std::vector<Schedule> schedules;
    for (const core::Row& row : dbconn.Query(std::string(columns) + "order by locationID")) {
        if (auto schedule = ScheduleIn(row)) {
            schedules.push_back(std::move(*schedule));
        }
    }
    return schedules;
}

std::optional<Schedule> ReadSchedule(core::Database& dbconn, std::int64_t locationID) {
    const auto row = dbconn.First(std::string(columns) + "where locationID=?", {locationID});
    return row ? ScheduleIn(*row) : std::nullopt;
}

std::optional<core::DateTime> DueOn(const Schedule& schedule, const core::DateTime& day) {
    return IsDue(schedule.duration, schedule.day, day)
               ? std::optional(core::FromSeconds(Midnight(day) + schedule.minute * 60))
               : std::nullopt;
}

std::optional<core::DateTime> LatestDue(const Schedule& schedule, const core::DateTime& now) {
    for (std::int64_t days = 0; days <= farthestDay; ++days) {
        if (const auto due = DueInDays(schedule, now, -days); due && *due <= now) {
            return due;
        }
    }
    return std::nullopt;
}

std::optional<core::DateTime> DueAfter(const Schedule& schedule, const core::DateTime& now) {
    for (std::int64_t days = 0; days <= farthestDay; ++days) {
        if (const auto due = DueInDays(schedule, now, days); due && *due > now) {
            return due;
        }
    }
    return std::nullopt;
}

bool IsDue(const std::string& duration, double day, const core::DateTime& today) {
    if (core::SameText(duration, "Daily")) {
        return true;
    }
    if (core::SameText(duration, "Weekly")) {
        return day == today.DayOfWeek();
    }
    return core::SameText(duration, "Monthly") && day == today.day;
}

std::optional<NextStation> NextDue(core::Database& dbconn, const core::DateTime& now, bool minuteServed) {
    const core::DateTime minute = MinuteOf(now);
    // The present minute counts as ahead until its tick.
    const core::DateTime behind = minuteServed ? minute : core::FromSeconds(core::ToSeconds(minute) - 1);
    std::optional<NextStation> next;
    for (const Schedule& schedule : ReadSchedules(dbconn)) {
        const auto due = DueAfter(schedule, behind);
        if (due && (!next || *due < next->at)) {
            next = {schedule.consumer, *due};
        }
    }
    return next;
}

std::vector<ScheduleLine> ScheduleLines(core::Database& dbconn) {
    std::vector<ScheduleLine> lines;
    for (const core::Row& row :
         dbconn.Query("select consumer, contracthour, sampledtoday, locationID from configdata_master")) {
        lines.push_back({row.Long("locationID"), row.Text("consumer"), row.Text("contracthour").substr(0, 5),
                         row.Bool("sampledtoday") ? "Yes" : "No"});
    }
    return lines;
}

}  // namespace collection
