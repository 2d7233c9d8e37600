#pragma once

#include <optional>
#include <string>

#include "archive/bsap/Routines.h"
#include "protocols/line/Conversation.h"

namespace archive {

// Sends a request and gives the text of its answer, over which positions count. Nothing: silence, only
// acknowledgements, or no whole frame with a right check, since what a cut or spoilt reply holds would be values under
// other names.
std::optional<std::string> Ask(protocols::Conversation& talk, const std::string& frame, const FrameTitles& titles);

}  // namespace archive
