#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "archive/bsap/Routines.h"
#include "protocols/line/Conversation.h"

namespace archive {

// How a reply is got and when it counts.
struct Asking {
    std::size_t over;  // it must be longer than this, its doubled bytes undone
    FrameTitles titles{};
};

// Sends a request and gives the text of its answer, over which positions count. Nothing: silence, too short, only
// acknowledgements, or no whole frame with a right check, since what a cut or spoilt reply holds would be values under
// other names.
std::optional<std::string> Ask(protocols::Conversation& talk, const std::string& frame, const Asking& asking);

}  // namespace archive
