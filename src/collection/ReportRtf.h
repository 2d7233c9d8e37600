#pragma once

#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Database.h"

namespace collection {

// The rows of daily_rep, in their order, as a landscape A4 page in RTF: a line a station, numbers to two places, the
// totals at the foot. Many stations flow on to further pages, which repeat the headings. Any text may be a name: what
// RTF gives a meaning to is escaped, and what is no text becomes "?".
std::string ReportRtf(const std::vector<core::Row>& rows, const core::DateTime& day);

}  // namespace collection
