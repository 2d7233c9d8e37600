#pragma once

#include <string>
#include <vector>

#include "core/Clock.h"
#include "reports/DailyReport.h"

namespace reports {

// The lines of a day as a landscape A4 page in RTF: a line a station, numbers to two places, the totals at the foot. A
// figure that was not received is "no data" and stands in no total, and neither does a cumulative one. Many stations
// flow on to further pages, which repeat the headings. Any text may be a name: what RTF gives a meaning to is escaped,
// and what is no text becomes "?".
std::string ReportRtf(const std::vector<DailyLine>& lines, const core::DateTime& day);

}  // namespace reports
