#pragma once

#include <bitset>
#include <cstddef>
#include <string>

#include "protocols/line/Conversation.h"
#include "protocols/modbus/ModbusCheck.h"

namespace protocols {

struct ModbusReply {
    enum class Kind {
        Values,      // decoded
        NoResponse,  // shorter than any reply
        CrcError,    // the check bytes differ
        Exception,   // the station refused; mbvalues[1] is its code
        Empty,       // a length that does not fit, or a function that is not decoded
    };

    Kind kind = Kind::NoResponse;
    // How many values stand in mbvalues from index 1 on.
    std::size_t count = 0;
    // The values, by their index in mbvalues, that are 0 because what came is out of the range of a float.
    std::bitset<126> outOfRange{};

    // The station sent something that counts as its answer; an exception is one.
    bool Answered() const { return kind == Kind::Values || kind == Kind::Exception; }
};

// Check a reply and decode it into mbvalues, its first value at index 1, by the function in it and by `floatread`.
// Values behind index 125 are left out. Index 1 is also where a failure stands: -32100 for a short reply or a length
// that does not fit, the third byte after a bad check, the code of an exception.
//
// Floats are in the word order of `modbus`. Integers are signed, and their check word stands behind them in mbvalues.
ModbusReply ParseRtuReply(ModbusState& modbus, const std::string& reply);

// From the colon to CR and LF; what stands in front of it is noise. With a second colon there is another reply, or an
// echo, and which of them is the answer cannot be told: nothing is decoded. Only coils and floats are decoded.
//
// By the required check a wrong LRC passes: it has never been looked at in this framing. By the standard one it is a
// CrcError.
ModbusReply ParseAsciiReply(ModbusState& modbus, const std::string& reply, AsciiCheck check = AsciiCheck::Required);

}  // namespace protocols
