#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/Clock.h"
#include "core/Quality.h"

namespace core {
class Database;
class Row;
}  // namespace core

namespace reading {

// What may be claimed of a stored value, for whoever shows, prints or mails it.
struct Claim {
    std::optional<double> value;  // nothing: no figure may be shown, also where lastvalue has one
    std::string unit;
    std::optional<core::Quality> quality;  // nothing: never read
    std::string readat;                    // as stored; empty: never
    bool ofThisRun = false;                // a value that was received since the run began
    // What stands beside the value, or in its place: "of 08/03/2026 08:00:07", "refused", "not read yet". Empty for a
    // good value of this run.
    std::string mark;
};

// Of a row of configdata_detail with lastvalue, unit, quality and readat. What was read before `since` counts as an
// earlier value: the begin of a run, or of the day that a report is for.
Claim ClaimOf(const core::Row& row, const core::DateTime& since);

// Of the first row of a description in the map of a station's stream; nothing when it has none. Throws DatabaseError.
std::optional<Claim> ClaimOf(core::Database& dbconn, std::int64_t locationID, int streamno,
                             std::string_view description, const core::DateTime& since);

// A stored moment as people read it: "08/03/2026 08:00:07".
std::string MomentText(const std::string& iso);

}  // namespace reading
