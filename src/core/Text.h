#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Texts as the station's screens, files and wires hold them.
namespace core {

// Without the blanks at both ends (blanks, tabs, CR, LF and NUL count).
std::string Trim(std::string_view text);

// Every `what` of `text` replaced by `with`. An empty `what` changes nothing.
std::string ReplaceAll(std::string text, std::string_view what, std::string_view with);

// Equal but for the case of ASCII letters.
bool SameText(std::string_view a, std::string_view b);

std::string UpperText(std::string_view text);

// The leading number of a text, read leniently: blanks in front are passed over, what does not parse counts as 0.
// The decimal mark is a point whatever the machine's locale. Never NaN or infinite.
double Val(std::string_view text);

// The whole of a text as a number that single precision holds, blanks around it passed over: what an operator entered
// for a station. Nothing for everything else, "1,5", "5%" and "nan" among it.
std::optional<double> EnteredNumber(std::string_view text);

// Equal as far as single precision goes, in which a station keeps its numbers.
bool SameSingle(double a, double b);

// The decimal text of a number as operators read it: up to 15 significant digits, no trailing zeros, "100" for 100.
std::string NumberText(double value);

// The number with just `places` decimals: "12.50". What is no number shows as 0.
std::string FixedText(double value, int places);

// Rounded to `places` decimals, ties to even. Values too large to have decimals come back as they are.
double RoundTo(double value, int places);

// The bytes as hexadecimal numbers without leading zeros, each followed by a blank: the form of log.txt.
std::string HexLine(std::string_view bytes);

// Text from the wire or from an 8-bit store (code page 1252) as UTF-8. Every byte has a character.
std::string FromCodePage(std::string_view bytes);

// The code point at a place of a UTF-8 text, which moves on behind it; nothing, and the place stays, where the text is
// malformed or the code point is beyond 0xFFFF.
std::optional<std::uint32_t> NextCodePoint(std::string_view utf8, std::size_t& at);

// The 8-bit form of a UTF-8 text; nothing when a character has none.
std::optional<std::string> ToCodePage(std::string_view utf8);

}  // namespace core
