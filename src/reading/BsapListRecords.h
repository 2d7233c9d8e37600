#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Quality.h"

namespace reading {

// A signal of a station's list as the station sends it.
struct ListSignal {
    double value = 0;  // rounded to 6 decimals; a logical one is 1 or 0
    int typecode = 0;
    bool logical = false;
    std::string unit;                   // without the NULs and blanks around it
    int MSD = 0;                        // the signal's address, for writes
    std::optional<std::string> text{};  // what a text signal holds; it has no value and no unit
    std::string name{};                 // where names were asked for; empty: the station has no such signal
    bool outOfRange = false;            // the value is 0 because what came is out of the range of a float
};

core::Quality QualityOf(const ListSignal& signal);

// "Analog Alarm": what a type code stands for; empty for a text.
std::string SignalTypeName(const ListSignal& signal);
// "Analog Alarm(6)": the same with the code behind it.
std::string SignalTypeText(const ListSignal& signal);

// What the records of a reply hold.
enum class RecordFields {
    Values,         // numbers and switches by their places in a list: there every other type code is an analog
    ValuesOrTexts,  // of signals that were asked for one by one
    Names,          // the same, each with its name
};

// How the records of a list reply are laid out.
struct RecordForm {
    std::size_t firstRecord = 1;   // position from 1
    bool units = true;             // long records: six characters of units in each
    bool isTeleCorrector = false;  // its type code 32 is a logical one
    RecordFields fields = RecordFields::Values;
};

struct ListRecords {
    std::vector<ListSignal> signals;
    // The records filled their place in the reply to its last byte. Otherwise bytes are missing, or are not records,
    // and which record is which cannot be told. Always true for records without units, whose places in the reply are
    // longer than they are.
    bool whole = true;
};

// The records of a list reply whose pairs are undone, up to its trailer. A record that is cut short by the trailer is
// not among them.
ListRecords ReadRecords(std::string_view reply, const RecordForm& form);

}  // namespace reading
