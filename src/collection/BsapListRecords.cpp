#include "collection/BsapListRecords.h"

#include <cstdint>

#include "core/Text.h"
#include "protocols/BsapReply.h"
#include "protocols/ModbusNumbers.h"

namespace collection {

namespace {

constexpr std::size_t unitLength = 6;

// A record, long form: type code, value, units, MSD address low byte first. The short form has no units.
struct RecordLayout {
    std::size_t valueLength;
    std::size_t step;  // to the next record, in both forms

    std::size_t UnitAt() const { return 1 + valueLength; }
    std::size_t MsdAt(bool units) const { return UnitAt() + (units ? unitLength : 0); }
    std::size_t Length(bool units) const { return MsdAt(units) + 2; }
};

constexpr RecordLayout analogRecord = {4, 13};
constexpr RecordLayout logicalRecord = {1, 10};

bool IsLogical(int typecode, bool isTeleCorrector) {
    switch (typecode) {
        case 68:
        case 0:
        case 4:
            return true;
        case 32:
            return isTeleCorrector;
        default:
            return false;
    }
}

unsigned ByteAt(std::string_view record, std::size_t at) {
    return static_cast<unsigned char>(record[at]);
}

// Low byte first.
double AnalogValue(std::string_view record) {
    std::uint32_t word = 0;
    for (std::size_t at = analogRecord.valueLength; at >= 1; --at) {
        word = word << 8U | ByteAt(record, at);
    }
    return core::RoundTo(protocols::BitsToFloat(word), 6);
}

std::string UnitText(std::string_view characters) {
    return core::Trim(core::ReplaceAll(core::FromCodePage(characters), std::string_view("\0", 1), " "));
}

ListSignal ReadSignal(std::string_view record, const RecordLayout& layout, bool units) {
    ListSignal signal;
    signal.typecode = static_cast<int>(ByteAt(record, 0));
    signal.logical = &layout == &logicalRecord;
    signal.value = signal.logical ? (ByteAt(record, 1) != 0 ? 1 : 0) : AnalogValue(record);
    if (units) {
        signal.unit = UnitText(record.substr(layout.UnitAt(), unitLength));
    }
    const std::size_t msd = layout.MsdAt(units);
    signal.MSD = static_cast<int>(ByteAt(record, msd) + 256 * ByteAt(record, msd + 1));
    return signal;
}

std::string TypeName(const ListSignal& signal) {
    if (signal.logical) {
        return signal.typecode == 4 ? "Logical Alarm" : "Logical";
    }
    switch (signal.typecode) {
        case 2:
            return "Analog";
        case 6:
            return "Analog Alarm";
        case 50:
            return "System Signal";
        default:
            return "Unknown";
    }
}

}  // namespace

std::string SignalTypeText(const ListSignal& signal) {
    return TypeName(signal) + "(" + std::to_string(signal.typecode) + ")";
}

ListRecords ReadRecords(std::string_view reply, const RecordForm& form) {
    ListRecords records;
    std::size_t at = form.firstRecord - 1;
    const std::size_t end = reply.size() < protocols::replyTrailer ? 0 : reply.size() - protocols::replyTrailer;
    while (at < end) {
        const bool logical = IsLogical(static_cast<int>(ByteAt(reply, at)), form.isTeleCorrector);
        const RecordLayout& layout = logical ? logicalRecord : analogRecord;
        if (at + layout.Length(form.units) > end) {
            break;
        }
        records.signals.push_back(ReadSignal(reply.substr(at), layout, form.units));
        at += layout.step;
    }
    records.whole = !form.units || at == end;
    return records;
}

}  // namespace collection
