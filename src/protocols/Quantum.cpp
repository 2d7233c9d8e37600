#include "protocols/Quantum.h"

#include <algorithm>
#include <cmath>

#include "core/Text.h"

namespace protocols {

namespace {

constexpr std::size_t fieldWidth = 13;
constexpr std::size_t replyLength = 137;
constexpr std::size_t exponentSignAt = 10;

// What stands in front of the fields.
constexpr std::size_t HeadLength(int message) {
    return message == 3 ? 22 : 23;
}

char FirstDigit(int number) {
    return std::to_string(number).front();
}

// A field as "1.2345E-03". The sign counts only at its place, the exponent is in the last two characters.
double ExponentNumber(std::string_view field, std::size_t exponentAt) {
    const double mantissa = core::Val(field.substr(0, exponentAt));
    const std::string_view lastTwo = field.substr(field.size() - std::min<std::size_t>(2, field.size()));
    const double power = std::pow(10.0, std::max(0.0, std::floor(core::Val(lastTwo))));
    const bool negative = field.size() > exponentSignAt && field[exponentSignAt] == '-';
    return negative ? mantissa / power : mantissa * power;
}

double FieldNumber(std::string_view field) {
    const std::size_t exponentAt = field.find('E');
    const double number = exponentAt == std::string_view::npos ? core::Val(field) : ExponentNumber(field, exponentAt);
    return std::isfinite(number) ? number : 0;
}

}  // namespace

std::string BuildQuantumRequest(int station, const std::string& command, int message) {
    std::string frame = "\x02";
    frame += FirstDigit(station / 10);
    frame += FirstDigit(station % 10);
    frame += command.substr(0, 1);
    frame += FirstDigit(message / 256);
    frame += FirstDigit(message % 256);
    frame += '\0';
    frame += static_cast<char>(QuantumChecksum(frame));
    frame += '\x03';
    return frame;
}

int QuantumChecksum(std::string_view frame) {
    constexpr std::size_t maskAt = 4;
    int sum = 0;
    for (const char c : frame) {
        sum += c & 127;
    }
    const int check = ((sum & 255) ^ 255) + 1;
    return check & (frame.size() > maskAt && frame[maskAt] == '0' ? 255 : 127);
}

const std::array<std::string_view, 8>& QuantumNames(int message) {
    static constexpr std::array<std::array<std::string_view, 8>, quantumMessages> names = {{
        {"Cumulative Mass", "Cumulative Standard Volume", "Cumulative Flowing Volume", "Cumulative Energy",
         "Current Mass Flowrate", "Current Standard Volume Flowrate", "Current Flowing Volume Flowrate",
         "Current Energy FlowRate"},
        {"Last 24 hrs MASS", "Last 24 hrs Standard Volume", "Last 24 hrs Flowing Volume", "Last 24 hrs Energy",
         "Current  24 hrs MASS", "Current  24 hrs Standard Volume", "Current  24 hrsFlowing Volume",
         "Current  24 hrs Energy"},
        {"DD MM YY HH MM SS", "Temperature", "Pressure", "Density Used", "DP Used", "Standard Density",
         "Calorific Value", "SG"},
    }};
    return names[static_cast<std::size_t>(std::clamp(message, 1, quantumMessages) - 1)];
}

std::array<double, 8> DecodeQuantumReply(const std::string& reply, int message) {
    std::string rest = core::ReplaceAll(reply.substr(std::min(HeadLength(message), reply.size())), ",", ".");
    std::array<double, 8> values{};
    for (double& value : values) {
        value = FieldNumber(core::Trim(std::string_view(rest).substr(0, fieldWidth)));
        // The blanks in front of the next field go too, so the fields stand close together.
        rest = core::Trim(std::string_view(rest).substr(std::min(fieldWidth, rest.size())));
    }
    return values;
}

std::string CutQuantumEcho(const std::string& reply, const std::string& request) {
    const bool echoed = !request.empty() && reply.find(request) != std::string::npos;
    return echoed ? reply.substr(reply.size() - std::min(replyLength, reply.size())) : reply;
}

}  // namespace protocols
