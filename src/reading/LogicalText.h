#pragma once

#include <string>
#include <string_view>

namespace reading {

// The word for a logical value by its parameter's description (blanks around it don't count), as the collection's texts
// show it: one word when the absolute value is 1, another for every other value. The number's text for a description
// without words.
std::string LogicalText(std::string_view description, double value);

}  // namespace reading
