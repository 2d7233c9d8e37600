#pragma once

#include <string_view>

#include "core/Station.h"
#include "core/Text.h"

namespace session {

// Whether a station speaks a protocol: "Modbus", "BSAP" or "Quantum".
inline bool Speaks(const core::Station& station, std::string_view protocol) {
    return core::SameText(station.protocol, protocol);
}

}  // namespace session
