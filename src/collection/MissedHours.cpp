#include "collection/MissedHours.h"

#include <cstdlib>
#include <string>

#include "collection/Outcome.h"

namespace collection {

namespace {

constexpr std::int64_t secondsAMinute = 60;
constexpr std::int64_t secondsADay = 86400;
// What a clock is set back by at most when summer time ends. What was recorded farther ahead has not happened yet.
constexpr std::int64_t summerTime = 2 * 3600;
constexpr std::int64_t writtenDownEvery = 15 * secondsAMinute;

core::DateTime Later(const core::DateTime& at, std::int64_t seconds) {
    return core::FromSeconds(core::ToSeconds(at) + seconds);
}

}  // namespace

std::vector<MissedHour> MissedHours::Tick(const core::DateTime& now) {
    const core::DateTime minute = MinuteOf(now);
    core::DateTime from = lastTick_ ? *lastTick_ : Begin(minute);
    if (from > Later(minute, summerTime)) {
        DoubtFuture(now);
        from = Later(minute, -secondsADay);
    } else if (lastTick_ && from < Later(minute, -summerTime)) {
        TrustPast(now);
    }
    lastTick_ = minute;
    std::vector<MissedHour> missed;
    if (from >= Later(minute, -secondsAMinute)) {
        return missed;
    }
    for (Schedule& schedule : ReadSchedules(dbconn_)) {
        const auto due = LatestDue(schedule, minute);
        if (due && *due > from && *due < minute && !DayServed(schedule.locationID, *due)) {
            missed.push_back({std::move(schedule), *due});
        }
    }
    return missed;
}

core::DateTime MissedHours::Begin(const core::DateTime& minute) {
    const auto row = dbconn_.First("select servedto from schedule_state");
    writtenDown_ = row ? core::MomentOf((*row)[0].Text()) : std::nullopt;
    if (!writtenDown_) {
        WriteDown(Later(minute, -secondsAMinute));
    }
    return *writtenDown_;
}

void MissedHours::AllServed(bool atOnce) {
    if (!lastTick_ || writtenDown_ == lastTick_) {
        return;
    }
    const auto passed = writtenDown_ ? core::ToSeconds(*lastTick_) - core::ToSeconds(*writtenDown_) : writtenDownEvery;
    if (atOnce || std::abs(passed) >= writtenDownEvery) {
        WriteDown(*lastTick_);
    }
}

void MissedHours::WriteDown(const core::DateTime& minute) {
    dbconn_.InTransaction([&] {
        dbconn_.Execute("delete from schedule_state");
        dbconn_.Execute("insert into schedule_state(servedto) values(?)", {core::IsoText(minute)});
    });
    writtenDown_ = minute;
}

bool MissedHours::Served(std::int64_t locationID, const core::DateTime& due) const {
    return dbconn_
        .First(
            "select 1 from outcome where locationID=? and gasday=? and due=? and how in ('schedule', 'late') and "
            "ifnull(reason, '')<>? and doubtful is null",
            {locationID, core::IsoText(due).substr(0, 10), core::IsoText(due), programEnds})
        .has_value();
}

// A run of the schedule has had the gas day to its end, or somebody has collected it.
bool MissedHours::DayServed(std::int64_t locationID, const core::DateTime& due) const {
    return dbconn_
        .First(
            "select 1 from outcome where locationID=? and gasday=? and (how in ('schedule', 'late') and "
            "ifnull(reason, '')<>? or result='collected') and doubtful is null",
            {locationID, core::IsoText(due).substr(0, 10), programEnds})
        .has_value();
}

// The clock was set back by more than summer time: it was ahead, and the days that it claims to have served are yet to
// come; or it is wrong now, as where a machine starts without the time. Until that shows, such rows serve no hour and
// speak for no day. Nothing is deleted.
void MissedHours::DoubtFuture(const core::DateTime& now) {
    const std::string moment = core::IsoText(now);
    dbconn_.InTransaction([&] {
        dbconn_.Execute("update outcome set doubtful=true where begun > ?", {moment});
        dbconn_.Execute("update gasday set doubtful=true where readat > ?", {moment});
    });
}

// The clock was set forward past them: they were right, and it was wrong in between.
void MissedHours::TrustPast(const core::DateTime& now) {
    const std::string moment = core::IsoText(now);
    dbconn_.InTransaction([&] {
        dbconn_.Execute("update outcome set doubtful=null where doubtful and begun <= ?", {moment});
        dbconn_.Execute("update gasday set doubtful=null where doubtful and readat <= ?", {moment});
    });
}

bool MissedHours::Ticked(const core::DateTime& at) const {
    return lastTick_ == MinuteOf(at);
}

}  // namespace collection
