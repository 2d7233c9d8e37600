#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "core/Text.h"

namespace core {

// What is known of a stored value: how its last reading ended. A value that was never read has none.
enum class Quality {
    Good,
    NotReceived,   // asked for in the last reading, and nothing came; the value is an earlier one
    Refused,       // the station refused to give it
    OutOfRange,    // what came is no number of the wire format
    NotConfirmed,  // written, and not read back
};

// As stored in the column `quality`, in the order of Quality.
inline constexpr std::array<std::string_view, 5> qualityTexts = {"good", "not received", "refused", "out of range",
                                                                 "not confirmed"};

constexpr std::string_view QualityText(Quality quality) {
    return qualityTexts[static_cast<std::size_t>(quality)];
}

// Nothing for a text that is none.
inline std::optional<Quality> QualityOf(std::string_view text) {
    const auto at = std::find_if(qualityTexts.begin(), qualityTexts.end(),
                                 [&](std::string_view known) { return SameText(known, text); });
    return at == qualityTexts.end() ? std::nullopt : std::optional(static_cast<Quality>(at - qualityTexts.begin()));
}

}  // namespace core
