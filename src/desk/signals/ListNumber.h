#pragma once

#include <optional>

class QLineEdit;

namespace desk {

// Makes a field take digits and backspace only, as a list's number.
void TakesDigits(QLineEdit& txtListNo);

// The number of a list that was typed, 0 to 255: it goes out as one byte. Nothing for anything else.
std::optional<int> ListNumber(const QLineEdit& txtListNo);

inline constexpr const char* noListNumber = "Enter the number of a list, from 0 to 255";

}  // namespace desk
