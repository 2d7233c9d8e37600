#pragma once

#include <string>
#include <vector>

#include "archive/view/HistoryView.h"

// The columns of a history as lines over time. Times are seconds as core::ToSeconds counts them.
namespace archive {

struct HistoryPoint {
    double at = 0;
    double value = 0;
};

struct TimeSpan {
    double from = 0;
    double to = 0;
};

// From the first real time of the rows to the last; an hour on both sides of a single one, nothing without any.
TimeSpan SpanOf(const std::vector<HistoryRow>& rows);

// A line in pieces: between two pieces is a gap.
using HistoryLine = std::vector<std::vector<HistoryPoint>>;

// A column of the rows, which are in order of time. It breaks at a row that lacks the value, and where no record is
// stored for more than one and a half times the usual distance of the records: no line leads over hours that nobody
// knows. A record without a real time has no place on it.
HistoryLine LineOf(const std::vector<HistoryRow>& rows, std::size_t column);

// The part of a line in a span, and the next point on each side of it, in about so many steps: of the points within one
// step the first, the lowest, the highest and the last stay, so that no peak is lost.
HistoryLine Thinned(const HistoryLine& line, const TimeSpan& span, std::size_t steps);

struct TimeTick {
    double at = 0;
    std::string text;  // "09/03/2026", "09/03 06:00" or "06:00:15", by what the ticks are apart; no text comes twice
};

// Round times in a span of a second or more, at most so many (2 at least): minutes, hours, days, or a power of two of
// days.
std::vector<TimeTick> TicksOf(const TimeSpan& span, std::size_t atMost);

}  // namespace archive
