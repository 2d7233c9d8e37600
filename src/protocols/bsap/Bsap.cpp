#include "protocols/bsap/Bsap.h"

#include <algorithm>

#include "protocols/WireNumbers.h"
#include "protocols/bsap/BsapFrame.h"

namespace protocols {

namespace {

using namespace std::string_literals;

std::string Closed(const std::string& text) {
    return text + '\0';
}

std::string SignalAddress(std::int32_t address) {
    return {LowByte(address), HighByte(address)};
}

// Type byte and single-precision number, low byte first: the reverse of the order in which Modbus sends it.
std::string AnalogPart(double value) {
    const auto bytes = FloatToBytes(value);
    return "\x0B"s + std::string(bytes.rbegin(), bytes.rend());
}

}  // namespace

std::string Bsap::LoadVersion() const {
    return {LowByte(state_.loadversion1), LowByte(state_.loadversion2), '\xFF'};
}

std::string Bsap::POLL_RTU(int address) {
    return BuildPoll(counters_, address);
}

std::string Bsap::POLL_RTU_1(int address) {
    return BuildAcknowledgement(counters_, address);
}

std::string Bsap::SignOn_RTU(int address, const std::string& password) {
    return BuildApplicationFrame(counters_, address, SequenceOrder::LowHighDigits, "\x70\x05\x01"s + Closed(password));
}

std::string Bsap::GetVersion_RTU(int address) {
    return BuildApplicationFrame(counters_, address, SequenceOrder::LowHigh, "\x04\x02\x01\xFF\x11"s + Closed("#ON.."));
}

std::string Bsap::get_LIST(int address, int listNumber, bool first) {
    std::string function = first ? "\x0C"s : "\x0D"s;
    if (state_.listnames) {
        function += "\x05\xF9\x01"s;
    } else {
        function += state_.listunits ? "\x01\xF0"s : "\x01\xD0"s;
    }
    function += LoadVersion() + LowByte(listNumber);
    if (!first) {
        function += LowByte(state_.listnext1);
        function += LowByte(state_.listnext2);
    } else if (isCW_) {
        function += "\0\0"s;
    }
    return BuildApplicationFrame(counters_, address, SequenceOrder::HighLow, function);
}

std::string Bsap::Write_value(int address, double value, std::int32_t signalAddress, core::ValueKind kind) {
    const std::string logical = value > 0 ? "\x09"s : "\x0A"s;
    return BuildApplicationFrame(counters_, address, SequenceOrder::LowHigh,
                                 "\x80"s + LoadVersion() + "\x01"s + SignalAddress(signalAddress) +
                                     (kind == core::ValueKind::Logical ? logical : AnalogPart(value)));
}

std::string Bsap::Write_value_str(int address, const std::string& text, std::int32_t signalAddress) {
    return BuildApplicationFrame(
        counters_, address, SequenceOrder::LowHigh,
        "\x80"s + LoadVersion() + "\x01"s + SignalAddress(signalAddress) + "\x0D"s + Closed(text));
}

std::string Bsap::Write_Mul_value(int address, std::span<const double> values,
                                  std::span<const std::int32_t> signalAddresses, std::size_t firstIndex,
                                  std::size_t count) {
    const std::size_t present = std::min(values.size(), signalAddresses.size());
    const std::size_t begin = std::min(firstIndex, present);
    const std::size_t end = begin + std::min(count, present - begin);
    std::string function = "\x80"s + LoadVersion() + LowByte(static_cast<long long>(end - begin));
    for (std::size_t i = begin; i < end; ++i) {
        function += SignalAddress(signalAddresses[i]) + AnalogPart(values[i]);
    }
    return BuildApplicationFrame(counters_, address, SequenceOrder::LowHigh, function);
}

std::string Bsap::get_by_address(int address, std::int32_t signalAddress) {
    return BuildApplicationFrame(counters_, address, SequenceOrder::HighLow,
                                 "\x00\x05\xF8\x01"s + LoadVersion() + "\x01"s + SignalAddress(signalAddress));
}

std::string Bsap::get_by_name(int address, int count, std::span<const std::string> names) {
    constexpr std::size_t columns = 3;
    constexpr int mostNames = 99;
    const int present = static_cast<int>((names.size() + columns - 1) / columns);
    const int sent = std::clamp(count, 0, std::min(present, mostNames));
    // The stations take the count as the hexadecimal reading of its decimal digits.
    std::string function = "\x04\x05\xF8\x01\xFF"s + LowByte(DigitsAsHex(sent));
    for (std::size_t row = 0; row < static_cast<std::size_t>(sent); ++row) {
        function += Closed(names[row * columns]);
    }
    return BuildApplicationFrame(counters_, address, SequenceOrder::HighLow, function);
}

std::string Bsap::get_by_single_name(int address, const std::string& name) {
    return BuildApplicationFrame(counters_, address, SequenceOrder::HighLow,
                                 "\x04\x05\xF8\x01\xFF\x01"s + Closed(name));
}

std::string Bsap::write_by_name(int address, const std::string& name, double value, core::ValueKind kind) {
    return BuildApplicationFrame(
        counters_, address, SequenceOrder::HighLow,
        "\x84\xFF\x01"s + Closed(name) + (kind == core::ValueKind::Logical ? "\x09"s : AnalogPart(value)));
}

std::string Bsap::get_signal_search(int address, const std::string& pattern, int kind, int firstParameter,
                                    int secondParameter) {
    std::string function = "\x08\x05\xF9\x01\xFF"s + LowByte(firstParameter) + LowByte(secondParameter);
    function += "\0\0"s + SearchFlag(kind) + Closed(pattern);
    return BuildApplicationFrame(counters_, address, SequenceOrder::HighLow, function);
}

char Bsap::SearchFlag(int kind) const {
    if (kind == 1) {
        return isCW_ ? '\x82' : '\x80';
    }
    return isCW_ ? '\x20' : '\x00';
}

}  // namespace protocols
