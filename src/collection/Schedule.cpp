#include "collection/Schedule.h"

#include <cstdlib>

#include "core/Text.h"

namespace collection {

namespace {

constexpr std::int64_t secondsADay = 86400;
constexpr int farthestDay = 62;  // a 31st is at most so many days away

// The time of day in the last "h:m" of a text, in seconds.
std::int64_t SecondsOfDay(const std::string& contracthour) {
    const std::size_t colon = contracthour.find(':');
    if (colon == std::string::npos) {
        return 0;
    }
    const std::size_t blank = contracthour.rfind(' ', colon);
    const double hour = core::Val(contracthour.substr(blank == std::string::npos ? 0 : blank + 1));
    const double minute = core::Val(contracthour.substr(colon + 1));
    return static_cast<std::int64_t>(hour) * 3600 + static_cast<std::int64_t>(minute) * 60;
}

}  // namespace

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
    const std::int64_t present = core::ToSeconds(now);
    const std::int64_t minute = present - now.second;
    const std::int64_t midnight = minute - now.hour * 3600 - now.minute * 60;
    std::optional<NextStation> next;
    std::int64_t earliest = 0;
    for (const core::Row& row :
         dbconn.Query("select consumer, contracthour, duration, day from configdata_master where duration <> 'NO' "
                      "order by locationID")) {
        for (std::int64_t day = 0; day <= farthestDay; ++day) {
            const std::int64_t at = midnight + day * secondsADay + SecondsOfDay(row[1].Text());
            const bool isAhead = at > minute || (at == minute && !minuteServed);
            if (isAhead && IsDue(row[2].Text(), row[3].Number(), core::FromSeconds(at))) {
                if (!next || at < earliest) {
                    next = {row[0].Text(), core::FromSeconds(at)};
                    earliest = at;
                }
                break;
            }
        }
    }
    return next;
}

std::vector<ScheduleLine> ScheduleLines(core::Database& dbconn) {
    std::vector<ScheduleLine> lines;
    for (const core::Row& row : dbconn.Query("select consumer, contracthour, sampledtoday from configdata_master")) {
        lines.push_back(
            {row.Text("consumer"), row.Text("contracthour").substr(0, 5), row.Bool("sampledtoday") ? "Yes" : "No"});
    }
    return lines;
}

}  // namespace collection
