#include "mail/MailHeaders.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "core/Text.h"

namespace mail {

namespace {

constexpr std::size_t longestPlain = 60;  // characters of a header that stands as it is
constexpr std::size_t longestWord = 40;   // characters behind which an encoded word ends, at the next UTF-8 character
constexpr std::size_t wordLimit = 60;     // and where it ends in any case

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool IsPlain(const std::string& line) {
    return line.size() <= longestPlain && line.find("=?") == std::string::npos &&
           std::all_of(line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x7F; });
}

// A character that means itself in every notation, or its byte behind a mark.
std::string Escaped(char c, char mark) {
    if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
        return {c};
    }
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    return {mark, digits[byte >> 4], digits[byte & 15]};
}

std::string EncodedWords(const std::string& line) {
    std::string words;
    std::string word;
    const auto endWord = [&] {
        words += (words.empty() ? "=?utf-8?Q?" : "\r\n =?utf-8?Q?") + word + "?=";
        word.clear();
    };
    for (const char c : line) {
        const bool startsCharacter = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
        if (word.size() >= (startsCharacter ? longestWord : wordLimit)) {
            endWord();
        }
        word += Escaped(c, '=');
    }
    endWord();
    return words;
}

// Minutes that the machine's zone is ahead of UTC at a local time.
long ZoneMinutes(const core::DateTime& at) {
    std::tm local{};
    local.tm_year = at.year - 1900;
    local.tm_mon = at.month - 1;
    local.tm_mday = at.day;
    local.tm_hour = at.hour;
    local.tm_min = at.minute;
    local.tm_sec = at.second;
    local.tm_isdst = -1;
    std::mktime(&local);
    return local.tm_gmtoff / 60;
}

std::string MessageId(const MailMessage& message, const core::DateTime& now, const std::string& unique) {
    const std::size_t at = message.sender.rfind('@');
    const std::string host = at == std::string::npos ? "localhost" : message.sender.substr(at + 1);
    return "<" + std::to_string(core::ToSeconds(now)) + "." + unique + "@" + host + ">";
}

}  // namespace

bool IsAddress(const std::string& text) {
    return !text.empty() && text.find_first_of(" <>,;\"") == std::string::npos &&
           std::none_of(text.begin(), text.end(), IsControl);
}

std::string NotOneAddress(const std::string& text) {
    constexpr std::size_t shown = 60;
    return "\"" + OneLine(text.size() > shown ? text.substr(0, shown) + "..." : text) + "\" is not one mail address";
}

std::string Bracketed(const std::string& address) {
    return "<" + address + ">";
}

std::string OneLine(const std::string& text) {
    std::string line = text;
    std::replace_if(line.begin(), line.end(), IsControl, ' ');
    return line;
}

std::string HeaderText(const std::string& text) {
    const std::string line = OneLine(text);
    return IsPlain(line) ? line : EncodedWords(line);
}

std::string MailDate(const core::DateTime& at) {
    constexpr std::array days = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const long zone = ZoneMinutes(at);
    const long off = zone < 0 ? -zone : zone;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %04d %s %c%02ld%02ld",
                  days.at(static_cast<std::size_t>(at.DayOfWeek() - 1)), at.day,
                  months.at(static_cast<std::size_t>(at.month - 1)), at.year, core::TimeText(at).c_str(),
                  zone < 0 ? '-' : '+', off / 60, off % 60);
    return text.data();
}

std::string Disposition(const std::string& fileName) {
    const bool isPlain = std::all_of(fileName.begin(), fileName.end(), [](char c) {
        return !IsControl(c) && static_cast<unsigned char>(c) < 0x7F && c != '"' && c != '\\';
    });
    if (isPlain) {
        return "Content-Disposition: attachment; filename=\"" + fileName + "\"";
    }
    std::string encoded;
    for (const char c : fileName) {
        encoded += Escaped(c, '%');
    }
    return "Content-Disposition: attachment; filename*=utf-8''" + encoded;
}

std::vector<std::string> MailHeaders(const MailMessage& message, const core::DateTime& now, const std::string& unique) {
    std::vector<std::string> headers = {"Date: " + MailDate(now), "Message-ID: " + MessageId(message, now, unique),
                                        "From: " + Bracketed(message.sender)};
    if (!message.to.empty()) {
        headers.push_back("To: " + Bracketed(message.to));
    }
    if (!message.cc.empty()) {
        headers.push_back("Cc: " + Bracketed(message.cc));
    }
    headers.push_back("Subject: " + HeaderText(message.subject));
    return headers;
}

}  // namespace mail
