#pragma once

#include <optional>
#include <string>
#include <string_view>

// The words of the parameters that are switched and not measured. A description selects its pair, blanks around it
// don't count; CW stations encode the same choice with the opposite value, so there are two tables.
namespace session {

// The word of a value: the first of its pair when the absolute value is 1, the other for every other value. Empty for
// a description without words.
std::string valueText(bool isCW, std::string_view description, double value);

// The other word of the pair; the same text when it is none of the two.
std::string ToggledText(bool isCW, std::string_view description, const std::string& text);

// The value that shows as this word: 1 or 0. Nothing when the description has no such word.
std::optional<double> ValueOfText(bool isCW, std::string_view description, const std::string& text);

}  // namespace session
