#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"

namespace core {
class Database;
}

// A station's lists as they were before its program was changed, and as they are after it. Every function throws
// DatabaseError.
namespace signals {

enum class Side { Before, After };

// The cells of a row as the fetch shows them: running number from 1, name with its kind, value, unit.
using ChangeRow = std::vector<std::string>;

// When the sides were last collected, "24/11/2026"; nothing: not yet.
struct ChangeDates {
    std::optional<std::string> before;
    std::optional<std::string> after;
};
ChangeDates ReadChangeDates(core::Database& dbconn, std::int64_t locationID);

// The lists that were collected of a station, on either side, in the order of their numbers.
std::vector<int> CollectedLists(core::Database& dbconn, std::int64_t locationID);

// Stores a list in place of what that side has of it, all in one transaction. The before side's date is then this day's
// and the after side's is gone: what was collected after is of an older change. The after side's date is the station's,
// also of one that has no date before.
void StoreChange(core::Database& dbconn, Side side, std::int64_t locationID, int listNumber,
                 const std::vector<ChangeRow>& rows, const core::DateTime& now);

// A stored list in the order of its rows; empty when that side has none.
std::vector<ChangeRow> StoredChange(core::Database& dbconn, Side side, std::int64_t locationID, int listNumber);

}  // namespace signals
