#include "fieldsim/QuantumUnit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "fieldsim/Checks.h"

namespace fieldsim {

namespace {

constexpr std::size_t kRequestLength = 9;
constexpr std::size_t kFieldWidth = 13;
// The whole reply. Masters on a line with echo keep the last 137 characters of what they received.
constexpr std::size_t kReplyLength = 137;

constexpr std::size_t HeadLength(int message) {
    return message == 3 ? 22 : 23;
}

std::string TwoDigits(int number) {
    return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

// The number of the message that a whole request asks of this station; 0 for anything else.
int MessageOf(std::string_view frame, int station) {
    const std::string start = '\x02' + TwoDigits(station) + "A0";
    const std::string_view checked = frame.substr(0, kRequestLength - 2);
    const bool good =
        frame.starts_with(start) && frame[6] == '\0' && ByteAt(frame, 7) == QuantumSum(checked) && frame[8] == '\x03';
    return good && frame[5] >= '1' && frame[5] <= '3' ? frame[5] - '0' : 0;
}

std::string Digits(const char* format, double value) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

}  // namespace

const std::array<const char*, 8>& QuantumNames(int message) {
    static constexpr std::array<std::array<const char*, 8>, 3> names = {{
        {"Cumulative Mass", "Cumulative Standard Volume", "Cumulative Flowing Volume", "Cumulative Energy",
         "Current Mass Flowrate", "Current Standard Volume Flowrate", "Current Flowing Volume Flowrate",
         "Current Energy FlowRate"},
        {"Last 24 hrs MASS", "Last 24 hrs Standard Volume", "Last 24 hrs Flowing Volume", "Last 24 hrs Energy",
         "Current  24 hrs MASS", "Current  24 hrs Standard Volume", "Current  24 hrsFlowing Volume",
         "Current  24 hrs Energy"},
        {"DD MM YY HH MM SS", "Temperature", "Pressure", "Density Used", "DP Used", "Standard Density",
         "Calorific Value", "SG"},
    }};
    return names[static_cast<std::size_t>(std::clamp(message, 1, 3) - 1)];
}

std::string QuantumField(double value, bool decimalComma) {
    const double size = std::fabs(value);
    std::string field;
    if (size == 0 || (size >= 0.1 && size < 1e5)) {
        field = Digits("%.5f", value);
    } else if (size < 1e12 && size == std::floor(size)) {
        field = Digits("%.0f", value);
    } else {
        field = Digits(value < 0 ? "%.6E" : "%.7E", value);  // "1.2345000E-03": the sign stands in the 11th place
    }
    if (decimalComma) {
        std::replace(field.begin(), field.end(), '.', ',');
    }
    field.resize(kFieldWidth, ' ');
    return field;
}

std::vector<Answer> QuantumUnit::Receive(std::string_view bytes, const Moment& now) {
    buffer_ += bytes;
    std::vector<Answer> answers;
    while (buffer_.size() >= kRequestLength) {
        const int message = MessageOf(buffer_, station_);
        if (message == 0) {
            buffer_.erase(0, 1);
            continue;
        }
        if (message != options_.silentMessage) {
            const std::string echo = options_.echo ? buffer_.substr(0, kRequestLength) : std::string();
            answers.push_back({echo + Reply(message, now), options_.answerMs});
        }
        buffer_.erase(0, kRequestLength);
    }
    return answers;
}

// Head with start, station, message and the unit's clock; eight fields; blanks, checksum and end.
std::string QuantumUnit::Reply(int message, const Moment& now) {
    std::string reply = '\x02' + TwoDigits(station_) + "A" + TwoDigits(message);
    const core::DateTime& at = now.local;
    reply += TwoDigits(at.day) + TwoDigits(at.month) + TwoDigits(at.year) + TwoDigits(at.hour) + TwoDigits(at.minute) +
             TwoDigits(at.second);
    reply.resize(HeadLength(message), ' ');
    for (const char* name : QuantumNames(message)) {
        const Signal* signal = values_->Find(name);
        reply += QuantumField(signal != nullptr ? values_->Serve(*signal, now) : 0, options_.decimalComma);
    }
    reply.resize(kReplyLength - 2, ' ');
    reply += static_cast<char>(QuantumSum(reply));
    return reply + '\x03';
}

}  // namespace fieldsim
