#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "protocols/bsap/BsapLayout.h"

namespace protocols {

// The byte at a position from 1; nothing behind the end of the text.
std::optional<int> ByteAtPosition(std::string_view reply, std::size_t position);

// The check of a whole frame is right. A bit that falls over on the line would otherwise be a value.
bool HasRightCheck(std::string_view frame);

}  // namespace protocols
