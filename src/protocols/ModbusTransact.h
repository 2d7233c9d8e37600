#pragma once

#include <string>

#include "protocols/Conversation.h"
#include "protocols/ModbusReply.h"

namespace protocols {

// How a transaction of one kind of screen differs from that of another. Waits are counts of commtimeouts.
struct TransactOptions {
    bool unattended;  // failures go to RTU_Err.log and an exception is an answer; otherwise a box for every failure
    int tries;
    const char* sending;  // status texts
    const char* waiting;
    const char* converting;
    int waitsForAnswer;
    int waitsAfterAnswer;  // before the reply is parsed, and again behind that
};

// The scheduled run: five waits, no retry.
inline constexpr TransactOptions scheduledTransact = {
    true, 1, "Scheduler :: Sending Request", "Scheduler :: Wating for response", "Scheduler :: Converting Response....",
    2,    1};

// A screen in front of the operator.
inline constexpr TransactOptions onlineTransact = {
    false, 3, "Sending Request", "Waiting for response", "Converting Response....", 1, 0};

// Asks the station for `count` registers or coils from `reg` on, as numbered on the line, in the framing of its mode,
// and decodes the reply into talk.modbus. The station's slave address and talk.modbus decide the rest.
//
// The reply is matched to its request only by being what arrived during the wait. The text of a failed one is empty;
// online, the text of an exception too. A request that cannot be built is not sent: a box, and no response. A
// conversation that is told to end returns at once, and what is missing then is reported nowhere.
ModbusReply ModbusTransact(Conversation& talk, int reg, int count, int command,
                           const TransactOptions& options = scheduledTransact);

// Writes a float into the station's register `reg`, as numbered on the line: function 16, two registers or one by
// talk.modbus.rtu32bit, paced and reported as a scheduled read. Tells whether the station acknowledged this very write;
// a late answer to another one counts as none. A station in ASCII framing has no frame that carries a float, so for it
// the request cannot be built.
bool ModbusWrite(Conversation& talk, int reg, double value);

}  // namespace protocols
