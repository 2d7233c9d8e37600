#include "signals/lists/SignalText.h"

#include "core/Text.h"
#include "reading/LogicalText.h"

namespace signals {

std::string NameText(const Signal& signal) {
    if (signal.name.empty()) {
        return signalNotFound;
    }
    const std::string kind = reading::SignalTypeName(signal);
    return kind.empty() ? signal.name : signal.name + " (" + kind + ")";
}

std::string ValueText(const Signal& signal) {
    if (signal.text) {
        return *signal.text;
    }
    return signal.logical ? reading::LogicalText(signal.name, signal.value) : core::NumberText(signal.value);
}

Words WordsOf(const Signal& signal) {
    return {reading::LogicalText(signal.name, 1), reading::LogicalText(signal.name, 0)};
}

std::vector<std::string> SignalRow(std::size_t number, const Signal& signal) {
    if (signal.name.empty()) {
        return {std::to_string(number), signalNotFound, "", ""};
    }
    return {std::to_string(number), NameText(signal), ValueText(signal), signal.unit};
}

}  // namespace signals
