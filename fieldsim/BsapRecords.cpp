#include "fieldsim/BsapRecords.h"

#include <algorithm>

#include "core/Text.h"
#include "fieldsim/BsapBytes.h"

namespace fieldsim {

namespace {

constexpr std::size_t kUnitCharacters = 6;
constexpr int kTextType = 67;

std::string Units(const std::string& unit) {
    std::string text = core::ToCodePage(unit).value_or(std::string());
    text.resize(kUnitCharacters, '\0');
    return text;
}

int TypeCode(const Signal& signal) {
    if (signal.kind == Kind::Text) {
        return kTextType;
    }
    const int usual = signal.kind == Kind::Logical ? 0 : 2;
    return signal.typecode >= 0 ? signal.typecode : usual;
}

// A text that a master wrote is the bytes that it sent.
std::string TextOnLine(const std::string& text) {
    return core::ToCodePage(text).value_or(text).substr(0, kLongestText);
}

}  // namespace

std::string SignalRecord(const Signal& signal, double value, const std::string& text, int msd, const RecordForm& form) {
    std::string record(1, static_cast<char>(TypeCode(signal)));
    if (signal.kind == Kind::Text && form.texts) {
        record += TextOnLine(text) + '\0';
    } else {
        record += signal.kind == Kind::Logical ? std::string(1, value != 0 ? '\x01' : '\x00') : FloatLowFirst(value);
        record += form.units ? Units(signal.unit) : std::string();
    }
    record += LowFirst(msd);
    return form.name ? record + NameOnLine(signal.description) + '\0' : record;
}

std::string NameOnLine(const std::string& description) {
    return core::ToCodePage(description).value_or(std::string()).substr(0, kLongestText);
}

// Each piece between the stars at the first place where it fits: what follows the last of them does not matter.
bool BeginsLike(std::string_view name, std::string_view pattern) {
    const std::string upper = core::UpperText(name);
    const std::string wanted = core::UpperText(pattern);
    std::size_t star = wanted.find('*');
    std::size_t from = std::min(star, wanted.size());
    bool found = upper.starts_with(wanted.substr(0, from));
    while (found && star != std::string::npos) {
        const std::size_t next = wanted.find('*', star + 1);
        const std::string piece = wanted.substr(star + 1, next == std::string::npos ? next : next - star - 1);
        const std::size_t at = upper.find(piece, from);
        found = at != std::string::npos;
        from = found ? at + piece.size() : from;
        star = next;
    }
    return found;
}

bool HasAttribute(std::string_view name, std::string_view attribute) {
    const std::size_t dot = name.rfind('.');
    return dot != std::string_view::npos && core::SameText(name.substr(dot + 1), attribute);
}

}  // namespace fieldsim
