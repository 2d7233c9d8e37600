#pragma once

#include <string>
#include <string_view>

#include "fieldsim/Signals.h"

// How a BSAP station writes its signals down, and how it compares their names.
namespace fieldsim {

inline constexpr std::size_t kLongestText = 64;  // of a signal that is a text, and of a name; in characters

struct RecordForm {
    bool units = true;   // six characters of them
    bool name = false;   // behind the record, closed by 00
    bool texts = false;  // a text is written as one
};

// The record of a number: type, float low byte first, units, address low byte first, name. That of a logical has one
// byte of value. A text: type 67, the text closed by 00, address, name. In a form without texts it is a number with the
// type 67 and the value 0: masters that read no names step over it as over a number.
std::string SignalRecord(const Signal& signal, double value, const std::string& text, int msd, const RecordForm& form);

// A name as it stands on the line.
std::string NameOnLine(const std::string& description);

// The name begins with the pattern, in which each `*` stands for any characters, or none. Case does not count.
bool BeginsLike(std::string_view name, std::string_view pattern);

// What stands behind the last dot of the name is this, in any case.
bool HasAttribute(std::string_view name, std::string_view attribute);

}  // namespace fieldsim
