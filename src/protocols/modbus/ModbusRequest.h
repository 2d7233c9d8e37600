#pragma once

#include <string>
#include <vector>

#include "core/Clock.h"
#include "protocols/line/Conversation.h"
#include "protocols/modbus/ModbusCheck.h"

// The requests of a Modbus master, as the bytes that go over the line.
namespace protocols {

// A frame, or why there is none: a text that begins with "Bad" or "Illegal".
struct ModbusRequest {
    std::string frame;
    std::string problem;

    bool Built() const { return problem.empty(); }
};

// `command` is one of the functions 1 to 7, 15 and 16; `slave` 0 to 247; `reg` 0 to 65535, the register or coil as it
// goes over the line. `data` holds the data from its first element on, without an end marker: for a read one datum, the
// number of registers or coils. Each lies between -65536 and 65536; a negative one is sent as, and becomes, its value
// plus 65536. A datum goes out as its nearest integer, ties to even, in its lowest 16 bits.
ModbusRequest BuildRtuRequest(int command, int slave, double reg, std::vector<float>& data);

// The same in ASCII framing, which carries one datum and no more: it has no quantity and byte count for the functions
// 15 and 16, and sends the datum of function 5 as it is.
ModbusRequest BuildAsciiRequest(int command, int slave, double reg, std::vector<float>& data,
                                AsciiCheck check = AsciiCheck::Required);

// Writes one value, in RTU framing. Function 16 writes a float of single precision into two registers, or into one when
// the station holds a whole float in it (`rtu32bit`); function 5 switches on for exactly 1, else off; the others send a
// datum as above. A float that single precision cannot hold is a bad data value.
ModbusRequest BuildWriteFrame(const ModbusState& modbus, double value, int reg, int command, int slave);

// Sets the station's clock, in RTU framing: year, month, day, hour, minute and second as six floats from `reg` on.
ModbusRequest BuildClockWriteFrame(const ModbusState& modbus, const core::DateTime& now, int reg, int slave);

}  // namespace protocols
