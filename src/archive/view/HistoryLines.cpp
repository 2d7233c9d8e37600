#include "archive/view/HistoryLines.h"

#include <algorithm>
#include <cmath>

namespace archive {

namespace {

constexpr double day = 24 * 3600;

// More than this many times the usual distance is a gap.
constexpr double gapFactor = 1.5;

double UsualDistance(const std::vector<HistoryRow>& rows) {
    std::vector<double> distances;
    std::optional<std::int64_t> before;
    for (const HistoryRow& row : rows) {
        if (row.at) {
            const std::int64_t at = core::ToSeconds(*row.at);
            if (before) {
                distances.push_back(static_cast<double>(at - *before));
            }
            before = at;
        }
    }
    if (distances.empty()) {
        return 0;
    }
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return *middle;
}

void Keep(std::vector<HistoryPoint>& kept, const HistoryPoint* first, const HistoryPoint* last) {
    const auto lower = [](const HistoryPoint& a, const HistoryPoint& b) { return a.value < b.value; };
    const HistoryPoint* low = std::min_element(first, last, lower);
    const HistoryPoint* high = std::max_element(first, last, lower);
    std::vector<const HistoryPoint*> stay{first, low, high, last - 1};
    std::sort(stay.begin(), stay.end());
    stay.erase(std::unique(stay.begin(), stay.end()), stay.end());
    for (const HistoryPoint* point : stay) {
        kept.push_back(*point);
    }
}

}  // namespace

TimeSpan SpanOf(const std::vector<HistoryRow>& rows) {
    const auto real = [](const HistoryRow& row) { return row.at.has_value(); };
    const auto first = std::find_if(rows.begin(), rows.end(), real);
    if (first == rows.end()) {
        return {};
    }
    const auto last = std::find_if(rows.rbegin(), rows.rend(), real);
    const auto from = static_cast<double>(core::ToSeconds(*first->at));
    const auto to = static_cast<double>(core::ToSeconds(*last->at));
    return from < to ? TimeSpan{from, to} : TimeSpan{from - 3600, to + 3600};
}

HistoryLine LineOf(const std::vector<HistoryRow>& rows, std::size_t column) {
    const double widest = UsualDistance(rows) * gapFactor;
    HistoryLine line;
    bool broken = true;
    for (const HistoryRow& row : rows) {
        if (!row.at) {
            continue;
        }
        const auto value = std::find_if(row.values.begin(), row.values.end(),
                                        [column](const HistoryValue& one) { return one.column == column; });
        if (value == row.values.end()) {
            broken = true;
            continue;
        }
        const auto at = static_cast<double>(core::ToSeconds(*row.at));
        if (broken || at - line.back().back().at > widest) {
            line.emplace_back();
        }
        broken = false;
        line.back().push_back({at, value->value});
    }
    return line;
}

HistoryLine Thinned(const HistoryLine& line, const TimeSpan& span, std::size_t steps) {
    const auto stepOf = [&](const HistoryPoint& point) {
        return std::floor((point.at - span.from) / (span.to - span.from) * static_cast<double>(steps));
    };
    const auto earlier = [](const HistoryPoint& point, double at) { return point.at < at; };
    HistoryLine thin;
    for (const auto& piece : line) {
        if (piece.back().at < span.from || piece.front().at > span.to) {
            continue;
        }
        auto first = std::lower_bound(piece.begin(), piece.end(), span.from, earlier);
        auto last = std::lower_bound(first, piece.end(), span.to, earlier);
        first -= first != piece.begin() ? 1 : 0;
        last += last != piece.end() ? 1 : 0;
        std::vector<HistoryPoint> kept;
        while (first != last) {
            const auto next =
                std::find_if(first, last, [&](const auto& point) { return stepOf(point) != stepOf(*first); });
            Keep(kept, &*first, &*first + (next - first));
            first = next;
        }
        if (!kept.empty()) {
            thin.push_back(std::move(kept));
        }
    }
    return thin;
}

std::vector<TimeTick> TicksOf(const TimeSpan& span, std::size_t atMost) {
    const double wanted = (span.to - span.from) / static_cast<double>(std::max<std::size_t>(atMost, 2) - 1);
    double step = day;
    for (const double round : {1.0, 5.0, 15.0, 60.0, 300.0, 900.0, 3600.0, 3 * 3600.0, 6 * 3600.0, 12 * 3600.0, day}) {
        step = round;
        if (round >= wanted) {
            break;
        }
    }
    while (step < wanted) {
        step *= 2;
    }
    std::vector<TimeTick> ticks;
    for (double at = std::ceil(span.from / step) * step; at <= span.to; at += step) {
        const core::DateTime time = core::FromSeconds(static_cast<std::int64_t>(at));
        const std::string date = core::DateText(time);
        ticks.push_back({at, step >= day  ? date
                             : step >= 60 ? date.substr(0, 5) + " " + core::TimeText(time).substr(0, 5)
                                          : core::TimeText(time)});
    }
    return ticks;
}

}  // namespace archive
