#include <algorithm>
#include <array>
#include <utility>

#include "core/Text.h"
#include "stations/StationRules.h"

// The line settings text "9600,N,8,1" and the dialog in which it is composed.
namespace stations {

namespace {

using Texts = std::vector<std::string>;

struct PortField {
    std::string PortChoices::*value;
    const char* control;
    const char* blank;
};

// The fields in the order of their check.
constexpr std::array<PortField, 4> portFields = {{
    {&PortChoices::baudrate, "cmbbautrate", "Baudrate should not be Blank"},
    {&PortChoices::databits, "cmbdatabits", "Databits should not be Blank"},
    {&PortChoices::parity, "cmbparity", "Parity should not be Blank"},
    {&PortChoices::stopbits, "cmbstopbits", "Stopbits should not be Blank"},
}};

Texts Split(const std::string& settings) {
    Texts parts(1);
    for (const char c : settings) {
        if (c == ',') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    std::transform(parts.begin(), parts.end(), parts.begin(), [](const auto& part) { return core::Trim(part); });
    return parts;
}

bool IsNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// The parity whose letter this is; empty when it is none.
std::string ParityOf(const std::string& letter) {
    const auto& names = Parities();
    const auto name = std::find_if(names.begin(), names.end(),
                                   [&](const auto& parity) { return core::SameText(parity.substr(0, 1), letter); });
    return name == names.end() ? std::string() : *name;
}

}  // namespace

const Texts& DataBits() {
    static const Texts list = {"5", "6", "7", "8"};
    return list;
}

const Texts& Parities() {
    static const Texts list = {"Odd", "Even", "None"};
    return list;
}

const Texts& StopBits() {
    static const Texts list = {"1", "1.5", "2"};
    return list;
}

bool IsPortSettings(const std::string& settings) {
    const Texts parts = Split(settings);
    return parts.size() == 4 && IsNumber(parts[0]) && core::Val(parts[0]) > 0 && !ParityOf(parts[1]).empty() &&
           IsInList(DataBits(), parts[2]) && IsInList(StopBits(), parts[3]);
}

PortChoices ReadPortChoices(const std::string& settings) {
    if (!IsPortSettings(settings)) {
        return {};
    }
    const Texts parts = Split(settings);
    return {.baudrate = parts[0], .databits = parts[2], .parity = ParityOf(parts[1]), .stopbits = parts[3]};
}

std::vector<PortRefusal> BlankPortChoices(const PortChoices& choices) {
    std::vector<PortRefusal> blanks;
    for (const PortField& field : portFields) {
        if (core::Trim(choices.*field.value).empty()) {
            blanks.push_back({field.blank, field.control});
        }
    }
    return blanks;
}

std::string JoinPortChoices(const PortChoices& choices) {
    const std::string parity = IsInList(Parities(), choices.parity) ? core::Trim(choices.parity) : "None";
    return core::Trim(choices.baudrate) + "," + core::UpperText(parity.substr(0, 1)) + "," +
           core::Trim(choices.databits) + "," + core::Trim(choices.stopbits);
}

}  // namespace stations
