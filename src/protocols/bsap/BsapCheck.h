#pragma once

#include <cstdint>
#include <string_view>

namespace protocols {

// The check of a BSAP frame: CRC-16 with the reversed polynomial 8408, from FFFF on, not inverted at the end. It goes
// over the line low byte first.
//
// `frame` is the frame as it is sent, from DLE STX to DLE ETX, its body escaped. The check covers the body with its
// doubled bytes counted once, and the ETX. A frame that does not follow the escaping gets the value at which the
// scanner stands when the frame ends.
std::uint16_t BsapCheck(std::string_view frame);

}  // namespace protocols
