#include "fieldsim/ArchiveFile.h"

#include <algorithm>

namespace fieldsim {

namespace {

constexpr std::int64_t kDay = 24 * 3600;

}  // namespace

TimeBytes ToTimeBytes(const core::DateTime& at) {
    const std::int64_t seconds = core::ToSeconds(at) - core::ToSeconds({1976, 12, 31, 0, 0, 0});
    const auto days = static_cast<std::uint64_t>(seconds / kDay);
    const auto units = static_cast<std::uint64_t>(seconds % kDay / 4);
    return {static_cast<std::uint8_t>(days), static_cast<std::uint8_t>(days >> 8U), static_cast<std::uint8_t>(units),
            static_cast<std::uint8_t>(units >> 8U)};
}

void ArchiveFile::RecordUntil(const core::DateTime& now) {
    if (!recording) {
        return;
    }
    Recording& made = *recording;
    const std::int64_t since = core::ToSeconds(now) - made.fromSecond;
    const std::int64_t newest = since - since % made.everySeconds + made.fromSecond;
    const bool first = !made.lastMade;
    std::int64_t at = first ? newest - static_cast<std::int64_t>(made.records) * made.everySeconds : *made.lastMade;
    while ((at += made.everySeconds) <= newest) {
        const int number = oldest + static_cast<int>(records.size());
        const core::DateTime time = core::FromSeconds(at);
        records.push_back(
            {time, {}, number + 1, number + 1001, made.values ? made.values(time) : std::vector<double>()});
        if (records.size() > std::max<std::size_t>(made.room, 1)) {
            records.pop_front();
            ++oldest;
        }
    }
    // A clock that was put back makes nothing until it is past the newest record again.
    made.lastMade = first ? newest : std::max(*made.lastMade, newest);
}

void AuditTrail::RecordUntil(const core::DateTime& now) {
    if (before) {
        const std::vector<AuditEvent> made = before(now);
        events.insert(events.begin(), made.begin(), made.end());
        before = nullptr;
    }
}

}  // namespace fieldsim
