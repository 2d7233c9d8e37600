#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "core/Text.h"

// What a station speaks, and how. Set where a record is read; nothing else compares the texts of the register.
namespace core {

enum class Protocol { Modbus, Bsap, Quantum };

// Of Modbus.
enum class Framing {
    Rtu,
    Ascii,
    Tcp,  // a header with a transaction number and a length in place of a check
};

// What a value of a station is.
enum class ValueKind { Float, Integer, Logical };

// When the wait for a reply ends.
enum class Pacing {
    Stated,  // when the time that the device is given has passed
    Prompt,  // as soon as the reply is whole and checked, at the latest then
};

// Which of the two registers of a Modbus float comes first.
enum class WordOrder { HighFirst, LowFirst };

// The texts of a kind as its column has them, in the order of its enum. Compared without case.
inline constexpr std::array<std::string_view, 3> protocolTexts = {"Modbus", "BSAP", "Quantum"};
inline constexpr std::array<std::string_view, 3> framingTexts = {"RTU", "ASCII", "TCP"};
// Of a row of a station's map, in its column `type`.
inline constexpr std::array<std::string_view, 3> valueKindTexts = {"Float", "Integer", "Coil(Boolean)"};
inline constexpr std::array<std::string_view, 2> pacingTexts = {"stated", "prompt"};
inline constexpr std::array<std::string_view, 2> wordOrderTexts = {"high", "low"};

// The kind that a text names; nothing for a text that names none.
template <typename Kind, std::size_t count>
std::optional<Kind> KindOf(const std::array<std::string_view, count>& texts, std::string_view text) {
    const auto at = std::find_if(texts.begin(), texts.end(),
                                 [&](std::string_view known) { return SameText(known, Trim(std::string(text))); });
    return at == texts.end() ? std::nullopt : std::optional(static_cast<Kind>(at - texts.begin()));
}

template <typename Kind, std::size_t count>
constexpr std::string_view TextOf(const std::array<std::string_view, count>& texts, Kind kind) {
    return texts[static_cast<std::size_t>(kind)];
}

inline std::optional<Protocol> ProtocolOf(std::string_view text) {
    return KindOf<Protocol>(protocolTexts, text);
}

inline std::optional<Framing> FramingOf(std::string_view text) {
    return KindOf<Framing>(framingTexts, text);
}

inline std::optional<ValueKind> ValueKindOf(std::string_view text) {
    return KindOf<ValueKind>(valueKindTexts, text);
}

// The same for a row of any map: the templates of BSAP call a switch "Boolean", and every other text is a float.
inline ValueKind RowKindOf(std::string_view text) {
    return SameText(Trim(std::string(text)), "Boolean") ? ValueKind::Logical
                                                        : ValueKindOf(text).value_or(ValueKind::Float);
}

// "Modbus", "BSAP", "Quantum".
inline std::string TextOf(Protocol protocol) {
    return std::string(TextOf(protocolTexts, protocol));
}

// "RTU", "ASCII", "TCP".
inline std::string TextOf(Framing framing) {
    return std::string(TextOf(framingTexts, framing));
}

// "Float", "Integer", "Coil(Boolean)".
inline std::string TextOf(ValueKind kind) {
    return std::string(TextOf(valueKindTexts, kind));
}

}  // namespace core
