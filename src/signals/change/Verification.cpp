#include "signals/change/Verification.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/Text.h"
#include "signals/change/ChangeStore.h"

namespace signals {

namespace {

constexpr int places = 5;

std::string DifferenceText(double difference) {
    const std::string text = core::FixedText(difference, places);
    return text == "-0.00000" ? "0.00000" : text;
}

// A field of a line: what would break it stands as a blank.
std::string Field(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
    return text + "\t";
}

}  // namespace

std::optional<double> NumberOf(std::string_view text) {
    const std::string trimmed = core::Trim(text);
    std::string_view digits = trimmed;
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
        if (digits.starts_with('-')) {
            return std::nullopt;
        }
    }
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool whole = result.ec == std::errc() && result.ptr == digits.data() + digits.size();
    // "inf" and "nan" are texts.
    return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

VerifiedRow CompareValues(const std::string& before, const std::string& after) {
    VerifiedRow row;
    row.before = before;
    row.after = after;
    const auto now = NumberOf(after);
    if (!now) {
        row.differs = before != after;
        return row;
    }
    const auto then = NumberOf(before);
    const double difference = *now - then.value_or(0);
    const bool told = then && std::isfinite(difference);
    row.difference = told ? DifferenceText(difference) : noNumber;
    row.differs = !told || difference != 0;
    return row;
}

std::vector<std::string> VerifiedCells(const VerifiedRow& row) {
    std::vector<std::string> cells{
        std::to_string(row.number), std::to_string(row.list), row.name, row.unit, row.before, row.after};
    if (row.difference) {
        cells.push_back(*row.difference);
    }
    return cells;
}

std::string VerificationText(const std::vector<VerifiedRow>& rows) {
    std::string text;
    for (const char* caption : verificationCaptions) {
        text += Field(caption);
    }
    text += "\r\n";
    for (const VerifiedRow& row : rows) {
        for (const std::string& cell : VerifiedCells(row)) {
            text += Field(cell);
        }
        text += "\r\n";
    }
    return text;
}

Verification::Verification(core::Database& dbconn, std::int64_t locationID)
    : dbconn_(dbconn), locationID_(locationID), lists_(CollectedLists(dbconn, locationID)) {}

std::vector<VerifiedRow> Verification::Next() {
    const int list = lists_.at(done_++);
    const auto before = StoredChange(dbconn_, Side::Before, locationID_, list);
    const auto after = StoredChange(dbconn_, Side::After, locationID_, list);
    if (before.size() != after.size()) {
        uneven_.push_back({list, before.size(), after.size()});
    }
    std::vector<VerifiedRow> rows;
    const std::size_t pairs = std::min(before.size(), after.size());
    rows.reserve(pairs);
    for (std::size_t n = 0; n < pairs; ++n) {
        VerifiedRow row = CompareValues(before[n].at(2), after[n].at(2));
        row.number = ++number_;
        row.list = list;
        row.name = before[n].at(1);
        row.unit = before[n].at(3);
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace signals
