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
    return bsap::writtenAnalog + std::string(bytes.rbegin(), bytes.rend());
}

std::string LogicalPart(bool on) {
    return {on ? bsap::writtenOn : bsap::writtenOff};
}

constexpr char oneSignal = 1;

}  // namespace

std::string Bsap::LoadVersion() const {
    return {LowByte(state_.loadversion1), LowByte(state_.loadversion2), bsap::behindVersion};
}

std::string Bsap::POLL_RTU(int address) {
    return BuildPoll(counters_, address);
}

std::string Bsap::POLL_RTU_1(int address) {
    return BuildAcknowledgement(counters_, address);
}

std::string Bsap::SignOn_RTU(int address, const std::string& password) {
    return BuildApplicationFrame(counters_, address, bsap::signOn, Closed(password));
}

std::string Bsap::GetVersion_RTU(int address) {
    return BuildApplicationFrame(counters_, address, bsap::readVersion, Closed("#ON.."));
}

std::string Bsap::get_LIST(int address, int listNumber, bool first) {
    std::string data(state_.listnames   ? bsap::fieldsWithNames
                     : state_.listunits ? bsap::fieldsWithUnits
                                        : bsap::fieldsWithoutUnits);
    data += LoadVersion() + LowByte(listNumber);
    if (!first) {
        data += LowByte(state_.listnext1);
        data += LowByte(state_.listnext2);
    } else if (isCW_) {
        data += "\0\0"s;
    }
    return BuildApplicationFrame(counters_, address, first ? bsap::firstOfList : bsap::nextOfList, data);
}

std::string Bsap::Write_value(int address, double value, std::int32_t signalAddress, core::ValueKind kind) {
    return BuildApplicationFrame(counters_, address, bsap::writeValues,
                                 LoadVersion() + oneSignal + SignalAddress(signalAddress) +
                                     (kind == core::ValueKind::Logical ? LogicalPart(value > 0) : AnalogPart(value)));
}

std::string Bsap::Write_value_str(int address, const std::string& text, std::int32_t signalAddress) {
    return BuildApplicationFrame(
        counters_, address, bsap::writeValues,
        LoadVersion() + oneSignal + SignalAddress(signalAddress) + bsap::writtenText + Closed(text));
}

std::string Bsap::Write_Mul_value(int address, std::span<const double> values,
                                  std::span<const std::int32_t> signalAddresses, std::size_t firstIndex,
                                  std::size_t count) {
    const std::size_t present = std::min(values.size(), signalAddresses.size());
    const std::size_t begin = std::min(firstIndex, present);
    const std::size_t end = begin + std::min(count, present - begin);
    std::string data = LoadVersion() + LowByte(static_cast<long long>(end - begin));
    for (std::size_t i = begin; i < end; ++i) {
        data += SignalAddress(signalAddresses[i]) + AnalogPart(values[i]);
    }
    return BuildApplicationFrame(counters_, address, bsap::writeValues, data);
}

std::string Bsap::get_by_address(int address, std::int32_t signalAddress) {
    return BuildApplicationFrame(counters_, address, bsap::readByAddress,
                                 LoadVersion() + oneSignal + SignalAddress(signalAddress));
}

std::string Bsap::get_by_name(int address, int count, std::span<const std::string> names) {
    constexpr std::size_t columns = 3;
    constexpr int mostNames = 99;
    const int present = static_cast<int>((names.size() + columns - 1) / columns);
    const int sent = std::clamp(count, 0, std::min(present, mostNames));
    // The stations take the count as the hexadecimal reading of its decimal digits.
    std::string data = {LowByte(DigitsAsHex(sent))};
    for (std::size_t row = 0; row < static_cast<std::size_t>(sent); ++row) {
        data += Closed(names[row * columns]);
    }
    return BuildApplicationFrame(counters_, address, bsap::readByName, data);
}

std::string Bsap::get_by_single_name(int address, const std::string& name) {
    return BuildApplicationFrame(counters_, address, bsap::readByName, oneSignal + Closed(name));
}

std::string Bsap::write_by_name(int address, const std::string& name, double value, core::ValueKind kind) {
    return BuildApplicationFrame(
        counters_, address, bsap::writeByName,
        Closed(name) + (kind == core::ValueKind::Logical ? LogicalPart(true) : AnalogPart(value)));
}

std::string Bsap::get_signal_search(int address, const std::string& pattern, int kind, int firstParameter,
                                    int secondParameter) {
    std::string data = {LowByte(firstParameter), LowByte(secondParameter)};
    data += "\0\0"s + SearchFlag(kind) + Closed(pattern);
    return BuildApplicationFrame(counters_, address, bsap::searchSignals, data);
}

char Bsap::SearchFlag(int kind) const {
    if (kind == 1) {
        return isCW_ ? '\x82' : '\x80';
    }
    return isCW_ ? '\x20' : '\x00';
}

}  // namespace protocols
