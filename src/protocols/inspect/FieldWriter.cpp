#include "protocols/inspect/FieldWriter.h"

#include <numeric>

#include "core/Text.h"

namespace protocols {

namespace {

constexpr std::string_view lineEnds = "\r\n";

bool IsPrintable(char c) {
    return c >= ' ' && c <= '~';
}

bool IsCommand(std::string_view words) {
    return core::SameText(words.substr(0, 2), "at") || words == "+++";
}

// A field a line, with the line ends around it.
void TakeTextLines(Naming& naming, std::size_t end) {
    while (naming.next < end) {
        const std::string_view rest = naming.line.substr(naming.next, end - naming.next);
        const std::size_t words = std::min(rest.find_first_not_of(lineEnds), rest.size());
        const std::size_t after = std::min(rest.find_first_of(lineEnds, words), rest.size());
        const std::size_t next = std::min(rest.find_first_not_of(lineEnds, after), rest.size());
        const std::string_view text = rest.substr(words, after - words);
        naming.Take(next, IsCommand(text) ? "modem command" : "modem answer", Readable(text));
    }
}

}  // namespace

bool IsText(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return IsPrintable(c) || lineEnds.find(c) != std::string_view::npos; }) &&
           bytes.find_first_not_of(lineEnds) != std::string_view::npos;
}

std::string HexByte(int byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {digits[static_cast<std::size_t>(byte >> 4 & 15)], digits[static_cast<std::size_t>(byte & 15)]};
}

std::string ShortHex(std::string_view bytes) {
    constexpr std::size_t most = 8;
    std::string text;
    for (const char c : bytes.substr(0, most)) {
        text += (text.empty() ? "" : " ") + HexByte(static_cast<unsigned char>(c));
    }
    return bytes.size() > most ? text + " ... (" + std::to_string(bytes.size()) + " bytes)" : text;
}

std::string Readable(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        text += IsPrintable(c) ? std::string(1, c) : "\\x" + HexByte(static_cast<unsigned char>(c));
    }
    return text;
}

std::string CheckWord(bool right, const std::string& expected) {
    return right ? "right" : "wrong, " + expected + " would be right";
}

Body PlainBody(std::string_view line, std::size_t from, std::size_t length) {
    Body body{std::string(line.substr(from, length)), {}};
    body.at.resize(body.bytes.size() + 1);
    std::iota(body.at.begin(), body.at.end(), from);
    return body;
}

int BodyFields::Peek(std::size_t ahead) const {
    return ahead < Left() ? static_cast<unsigned char>(body_.bytes[next_ + ahead]) : -1;
}

void BodyFields::Take(std::size_t count, const std::string& name, const std::string& value) {
    if (cutShort_ || count == 0) {
        return;
    }
    const std::size_t taken = std::min(count, Left());
    cutShort_ = taken < count;
    const std::size_t from = body_.at[next_];
    const std::size_t length = body_.at[next_ + taken] - from;
    fields_.push_back(cutShort_ ? FrameField{from, length, "cut short", name + " is missing"}
                                : FrameField{from, length, name, value});
    next_ += taken;
}

void BodyFields::TakeText(const std::string& name, const std::string& value) {
    const std::string_view text = PeekAll().substr(0, PeekAll().find('\0'));
    Take(text.size() + 1, name, value.empty() ? Readable(text) : value);
}

void Naming::Take(std::size_t count, const std::string& name, const std::string& value) {
    const std::size_t taken = std::min(count, line.size() - next);
    fields.push_back({next, taken, name, value});
    next += taken;
}

void Naming::TakeUnknown(std::size_t count) {
    const std::string_view bytes = Rest().substr(0, count);
    if (IsText(bytes)) {
        TakeTextLines(*this, next + bytes.size());
    } else if (!bytes.empty()) {
        Take(bytes.size(), "not recognised", ShortHex(bytes));
    }
}

}  // namespace protocols
