#pragma once

#include <string>
#include <vector>

#include "reading/BsapListRecords.h"

// A station's signals as the operator reads them.
namespace signals {

using Signal = reading::ListSignal;

// In place of the name of a signal that the station no longer has.
inline constexpr const char* signalNotFound = "Signal Not Found";

// The name with its kind in brackets: "METER1.FLOW.RATE (Analog Alarm)"; a text signal's stands alone.
std::string NameText(const Signal& signal);

// A number, a text, or the word for a switch, which goes by the signal's name.
std::string ValueText(const Signal& signal);

// The words of a switch: for 1, and for every other value.
struct Words {
    std::string first;
    std::string other;
};
Words WordsOf(const Signal& signal);

// The cells of a grid: running number, name, value, unit.
std::vector<std::string> SignalRow(std::size_t number, const Signal& signal);

}  // namespace signals
