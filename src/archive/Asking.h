#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "archive/Routines.h"
#include "protocols/Conversation.h"

namespace archive {

// How a reply is got and when it counts.
struct Asking {
    std::size_t over;  // it must be longer than this, its doubled bytes undone
    bool polls;
    FrameTitles titles{};
};

// Sends a request and gives the answer with its doubled bytes undone. Nothing: silence, too short, or no whole frame
// with a right check, since what a cut or spoilt reply holds would be values under other names.
std::optional<std::string> Ask(protocols::Conversation& talk, const std::string& frame, const Asking& asking);

}  // namespace archive
