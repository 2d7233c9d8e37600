#include "core/Text.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace core {

namespace {

// Code page 1252 from 0x80 to 0x9F; the five undefined codes stand for themselves.
constexpr std::array<std::uint16_t, 32> upperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0';
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void AppendUtf8(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

std::string ReplaceAll(std::string text, std::string_view what, std::string_view with) {
    if (what.empty()) {
        return text;
    }
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        text.replace(at, what.size(), with);
    }
    return text;
}

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string UpperText(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return out;
}

double Val(std::string_view text) {
    while (!text.empty() && (IsBlank(text.front()) || text.front() == '+')) {
        text.remove_prefix(1);
    }
    // "inf" and "nan" parse as numbers elsewhere; here they are text.
    if (text.empty() || std::string_view("0123456789.").find(text[text.size() > 1 && text[0] == '-' ? 1 : 0]) ==
                            std::string_view::npos) {
        return 0;
    }
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && std::isfinite(value) ? value : 0;
}

std::optional<double> EnteredNumber(std::string_view text) {
    const std::string trimmed = Trim(text);
    const char* const end = trimmed.data() + trimmed.size();
    double number = 0;
    const auto read = std::from_chars(trimmed.data(), end, number);
    const bool isNumber = read.ec == std::errc() && read.ptr == end && std::fabs(number) <= FLT_MAX;
    return isNumber ? std::optional(number) : std::nullopt;
}

bool SameSingle(double a, double b) {
    return std::fabs(a - b) <= 1e-6 * std::max(1.0, std::fabs(a));
}

std::string NumberText(double value) {
    if (value == 0) {
        return "0";
    }
    std::array<char, 32> buffer{};
    // The shortest digits that mean this number are the first 15 when they are no more than that, and found in a third
    // of the time. Most numbers of a station have few.
    const double size = std::abs(value);
    if (size >= 1e-4 && size < 1e12) {
        const auto shortest =
            std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
        if (shortest.ec == std::errc() && shortest.ptr - buffer.data() <= 15) {
            return {buffer.data(), shortest.ptr};
        }
    }
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 15);
    return {buffer.data(), result.ptr};
}

std::string FixedText(double value, int places) {
    std::string text(400, '\0');
    const int length = std::snprintf(text.data(), text.size(), "%.*f", places, std::isfinite(value) ? value : 0.0);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

double RoundTo(double value, int places) {
    const double scale = std::pow(10.0, places);
    if (std::abs(value) > 1e15 / scale) {
        return value;
    }
    const double rounded = std::nearbyint(value * scale) / scale;
    return rounded == 0 ? 0 : rounded;
}

std::string HexLine(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size() * 3);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 15) {
            out += digits[byte >> 4];
        }
        out += digits[byte & 15];
        out += ' ';
    }
    return out;
}

std::string FromCodePage(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        AppendUtf8(out, byte >= 0x80 && byte < 0xA0 ? upperControls[byte - 0x80] : byte);
    }
    return out;
}

std::optional<std::uint32_t> NextCodePoint(std::string_view utf8, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(utf8[at]);
    const int following = lead < 0x80 ? 0 : (lead & 0xE0) == 0xC0 ? 1 : (lead & 0xF0) == 0xE0 ? 2 : -1;
    if (following < 0 || at + static_cast<std::size_t>(following) >= utf8.size()) {
        return std::nullopt;
    }
    std::uint32_t code = following == 0 ? lead : following == 1 ? lead & 0x1F : lead & 0x0F;
    for (int i = 1; i <= following; ++i) {
        const auto next = static_cast<unsigned char>(utf8[at + static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80) {
            return std::nullopt;
        }
        code = (code << 6) | (next & 0x3F);
    }
    at += static_cast<std::size_t>(following) + 1;
    return code;
}

std::optional<std::string> ToCodePage(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto code = NextCodePoint(utf8, at);
        if (!code) {
            return std::nullopt;
        }
        const auto* const special = std::find(upperControls.begin(), upperControls.end(), *code);
        if (special != upperControls.end()) {
            out += static_cast<char>(0x80 + (special - upperControls.begin()));
        } else if (*code < 0x100 && !(*code >= 0x80 && *code < 0xA0)) {
            out += static_cast<char>(*code);
        } else {
            return std::nullopt;
        }
    }
    return out;
}

}  // namespace core
