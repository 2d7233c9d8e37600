#include "protocols/quantum/Quantum.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "core/Text.h"

namespace protocols {

namespace {

constexpr std::string_view blanks(" \t\r\n\0", 5);

char FirstDigit(int number) {
    return std::to_string(number).front();
}

// A field as "1.2345E-03". The sign counts only at its place, the exponent is in the last two characters.
double ExponentNumber(std::string_view field, std::size_t exponentAt) {
    const double mantissa = core::Val(field.substr(0, exponentAt));
    const std::string_view lastTwo = field.substr(field.size() - std::min<std::size_t>(2, field.size()));
    const double power = std::pow(10.0, std::max(0.0, std::floor(core::Val(lastTwo))));
    const bool negative = field.size() > quantum::exponentSignAt && field[quantum::exponentSignAt] == '-';
    return negative ? mantissa / power : mantissa * power;
}

double FieldNumber(std::string_view field) {
    const std::size_t exponentAt = field.find('E');
    const double number = exponentAt == std::string_view::npos ? core::Val(field) : ExponentNumber(field, exponentAt);
    return std::isfinite(number) ? number : 0;
}

std::size_t DigitsFrom(std::string_view text, std::size_t at) {
    const std::size_t from = at;
    while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0) {
        ++at;
    }
    return at - from;
}

std::size_t SignAt(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '+' || text[at] == '-') ? 1 : 0;
}

// "-12.5", "1.2345678E-03": all of the text, with an exponent of no more than two digits.
bool IsNumber(std::string_view text) {
    std::size_t at = SignAt(text, 0);
    std::size_t digits = DigitsFrom(text, at);
    at += digits;
    if (at < text.size() && text[at] == '.') {
        const std::size_t decimals = DigitsFrom(text, ++at);
        digits += decimals;
        at += decimals;
    }
    if (digits > 0 && at < text.size() && (text[at] == 'E' || text[at] == 'e')) {
        at += 1 + SignAt(text, at + 1);
        const std::size_t exponent = DigitsFrom(text, at);
        return exponent >= 1 && exponent <= 2 && at + exponent == text.size();
    }
    return digits > 0 && at == text.size();
}

// "251126080500": day, month, year, hour, minute, second; a leading zero may be missing. With other characters between
// them, or a clock that was never set, it is as the unit has it.
bool IsDate(std::string_view text) {
    constexpr std::size_t length = 12;
    constexpr std::array<int, length / 2> highest = {31, 12, 99, 23, 59, 59};
    const std::size_t digits = DigitsFrom(text, 0);
    if (digits != text.size()) {
        return digits > 0 && text.find_first_not_of("0123456789 ./:-") == std::string_view::npos;
    }
    if (digits != length && digits != length - 1) {
        return false;
    }
    const std::string padded = std::string(length - digits, '0') + std::string(text);
    for (std::size_t part = 0; part < highest.size(); ++part) {
        if (core::Val(padded.substr(2 * part, 2)) > highest[part]) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string BuildQuantumRequest(int station, const std::string& command, int message) {
    std::string frame(1, quantum::stx);
    frame += FirstDigit(station / 10);
    frame += FirstDigit(station % 10);
    frame += command.substr(0, 1);
    frame += FirstDigit(message / 256);
    frame += FirstDigit(message % 256);
    frame += '\0';
    frame += static_cast<char>(QuantumChecksum(frame));
    frame += quantum::etx;
    return frame;
}

int QuantumChecksum(std::string_view frame) {
    int sum = 0;
    for (const char c : frame) {
        sum += c & 127;
    }
    const int check = ((sum & 255) ^ 255) + 1;
    return check & (frame.size() > quantum::messageHighAt && frame[quantum::messageHighAt] == '0' ? 255 : 127);
}

const std::array<std::string_view, 8>& QuantumNames(int message) {
    static constexpr std::array<std::array<std::string_view, 8>, quantum::messages> names = {{
        {"Cumulative Mass", "Cumulative Standard Volume", "Cumulative Flowing Volume", "Cumulative Energy",
         "Current Mass Flowrate", "Current Standard Volume Flowrate", "Current Flowing Volume Flowrate",
         "Current Energy FlowRate"},
        {"Last 24 hrs MASS", "Last 24 hrs Standard Volume", "Last 24 hrs Flowing Volume", "Last 24 hrs Energy",
         "Current  24 hrs MASS", "Current  24 hrs Standard Volume", "Current  24 hrsFlowing Volume",
         "Current  24 hrs Energy"},
        {"DD MM YY HH MM SS", "Temperature", "Pressure", "Density Used", "DP Used", "Standard Density",
         "Calorific Value", "SG"},
    }};
    return names[static_cast<std::size_t>(std::clamp(message, 1, quantum::messages) - 1)];
}

int QuantumReply::Received() const {
    return static_cast<int>(
        std::count_if(fields.begin(), fields.end(), [](const auto& field) { return field.has_value(); }));
}

QuantumReply DecodeQuantumReply(const std::string& reply, int message) {
    // With its end the last field is whole, however short.
    const bool ended = reply.size() >= quantum::HeadLength(message) + quantum::trailer && reply.back() == quantum::etx;
    const std::string text = core::ReplaceAll(reply.substr(0, reply.size() - (ended ? quantum::trailer : 0)), ",", ".");
    std::string_view rest = std::string_view(text).substr(std::min(quantum::HeadLength(message), text.size()));
    QuantumReply decoded;
    for (std::size_t i = 0; i < decoded.fields.size(); ++i) {
        const std::string field = core::Trim(rest.substr(0, quantum::fieldWidth));
        const bool isDate = message == quantum::messages && i == 0;
        if ((ended || rest.size() >= quantum::fieldWidth) && (isDate ? IsDate(field) : IsNumber(field))) {
            decoded.fields[i] = FieldNumber(field);
        }
        // The blanks in front of the next field go too, so the fields stand close together.
        rest.remove_prefix(std::min(quantum::fieldWidth, rest.size()));
        rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    }
    return decoded;
}

std::string CutQuantumEcho(const std::string& reply, const std::string& request) {
    const std::size_t echo = request.empty() ? std::string::npos : reply.rfind(request);
    return echo == std::string::npos ? reply : reply.substr(echo + request.size());
}

WholeReply WholeQuantumReply(const std::string& request) {
    return {[request](std::string_view received) {
        const std::string reply = CutQuantumEcho(std::string(received), request);
        return reply.size() == quantum::replyLength && reply.back() == quantum::etx;
    }};
}

}  // namespace protocols
