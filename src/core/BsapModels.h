#pragma once

#include <string>

namespace core {

// Whether the screens speak BSAP with a station, by its model and the protocol of its row: every CW model and the
// CW_Micro do, whatever the row says.
bool SpeaksBsap(const std::string& modelno, const std::string& protocol);

}  // namespace core
