#include "reading/BsapListRecords.h"

#include <algorithm>
#include <cstdint>

#include "core/Text.h"
#include "protocols/WireNumbers.h"
#include "protocols/bsap/BsapConstants.h"
#include "protocols/bsap/BsapLayout.h"

namespace reading {

namespace {

namespace bsap = protocols::bsap;

constexpr std::size_t unitLength = 6;

// A record, long form: type code, value, units, MSD address low byte first. The short form has no units.
struct RecordLayout {
    std::size_t valueLength;
    std::size_t step;  // to the next record, in both forms

    std::size_t UnitAt() const { return 1 + valueLength; }
    std::size_t MsdAt(bool units) const { return UnitAt() + (units ? unitLength : 0); }
    std::size_t Length(bool units) const { return MsdAt(units) + 2; }
};

constexpr RecordLayout analogRecord = {.valueLength = 4, .step = 13};
constexpr RecordLayout logicalRecord = {.valueLength = 1, .step = 10};

bool IsLogical(int typecode, bool isTeleCorrector) {
    switch (typecode) {
        case bsap::otherLogicalType:
        case bsap::logicalType:
        case bsap::logicalAlarmType:
            return true;
        case bsap::teleCorrectorLogicalType:
            return isTeleCorrector;
        default:
            return false;
    }
}

unsigned ByteAt(std::string_view record, std::size_t at) {
    return static_cast<unsigned char>(record[at]);
}

// Low byte first.
std::uint32_t AnalogWord(std::string_view record) {
    std::uint32_t word = 0;
    for (std::size_t at = analogRecord.valueLength; at >= 1; --at) {
        word = word << 8U | ByteAt(record, at);
    }
    return word;
}

std::string UnitText(std::string_view characters) {
    return core::Trim(core::ReplaceAll(core::FromCodePage(characters), std::string_view("\0", 1), " "));
}

int AddressAt(std::string_view record, std::size_t at) {
    return static_cast<int>(ByteAt(record, at) + 256 * ByteAt(record, at + 1));
}

ListSignal ReadNumber(std::string_view record, const RecordLayout& layout, bool units) {
    ListSignal signal;
    signal.typecode = static_cast<int>(ByteAt(record, 0));
    signal.logical = &layout == &logicalRecord;
    if (signal.logical) {
        signal.value = ByteAt(record, 1) != 0 ? 1 : 0;
    } else {
        const std::uint32_t word = AnalogWord(record);
        signal.value = core::RoundTo(protocols::WireFloat(word), 6);
        signal.outOfRange = protocols::IsOutOfRange(word);
    }
    if (units) {
        signal.unit = UnitText(record.substr(layout.UnitAt(), unitLength));
    }
    signal.MSD = AddressAt(record, layout.MsdAt(units));
    return signal;
}

// Takes records from the front of what is left of a reply.
class RecordReader {
  public:
    RecordReader(std::string_view records, const RecordForm& form) : rest_(records), form_(form) {}

    bool AtEnd() const { return rest_.empty(); }

    // The next record; nothing when the rest is none, or not all of one.
    std::optional<ListSignal> Next() {
        const int typecode = static_cast<int>(ByteAt(rest_, 0));
        const bool isText = form_.fields != RecordFields::Values && typecode == bsap::textType;
        auto signal = isText ? TextRecord() : NumberRecord(typecode);
        if (signal && form_.fields == RecordFields::Names) {
            const auto name = TakeText();
            if (!name) {
                return std::nullopt;
            }
            signal->name = core::Trim(*name);
        }
        return signal;
    }

  private:
    std::optional<ListSignal> NumberRecord(int typecode) {
        const RecordLayout& layout = IsLogical(typecode, form_.isTeleCorrector) ? logicalRecord : analogRecord;
        if (layout.Length(form_.units) > rest_.size()) {
            return std::nullopt;
        }
        ListSignal signal = ReadNumber(rest_, layout, form_.units);
        rest_.remove_prefix(std::min(layout.step, rest_.size()));
        return signal;
    }

    // Type code, the text up to 00, MSD address low byte first.
    std::optional<ListSignal> TextRecord() {
        ListSignal signal;
        signal.typecode = bsap::textType;
        rest_.remove_prefix(1);
        signal.text = TakeText();
        if (!signal.text || rest_.size() < 2) {
            return std::nullopt;
        }
        signal.MSD = AddressAt(rest_, 0);
        rest_.remove_prefix(2);
        return signal;
    }

    // Up to the next 00, and behind it.
    std::optional<std::string> TakeText() {
        const std::size_t end = rest_.find('\0');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        std::string text = core::FromCodePage(rest_.substr(0, end));
        rest_.remove_prefix(end + 1);
        return text;
    }

    std::string_view rest_;
    const RecordForm& form_;
};

}  // namespace

core::Quality QualityOf(const ListSignal& signal) {
    return signal.outOfRange ? core::Quality::OutOfRange : core::Quality::Good;
}

std::string SignalTypeName(const ListSignal& signal) {
    if (signal.text) {
        return {};
    }
    if (signal.logical) {
        return signal.typecode == bsap::logicalAlarmType ? "Logical Alarm" : "Logical";
    }
    switch (signal.typecode) {
        case bsap::analogType:
            return "Analog";
        case bsap::analogAlarmType:
            return "Analog Alarm";
        case bsap::systemSignalType:
            return "System Signal";
        default:
            return "Unknown";
    }
}

std::string SignalTypeText(const ListSignal& signal) {
    return SignalTypeName(signal) + "(" + std::to_string(signal.typecode) + ")";
}

ListRecords ReadRecords(std::string_view reply, const RecordForm& form) {
    ListRecords records;
    const std::size_t begin = form.firstRecord - 1;
    const std::size_t end = reply.size() < protocols::replyTrailer ? 0 : reply.size() - protocols::replyTrailer;
    if (begin > end) {
        records.whole = !form.units;
        return records;
    }
    RecordReader reader(reply.substr(begin, end - begin), form);
    while (!reader.AtEnd()) {
        auto signal = reader.Next();
        if (!signal) {
            records.whole = !form.units;
            break;
        }
        records.signals.push_back(std::move(*signal));
    }
    return records;
}

}  // namespace reading
