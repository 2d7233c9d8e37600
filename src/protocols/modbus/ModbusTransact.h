#pragma once

#include <string>

#include "protocols/line/Conversation.h"
#include "protocols/modbus/ModbusReply.h"

namespace protocols {

// Who is told of a failed transaction.
enum class FailureReport {
    Log,     // RTU_Err.log, in unattended work; there an exception is an answer
    Box,     // the operator
    Caller,  // whoever called, by the result
};

// How a transaction of one kind of screen differs from that of another. Waits are counts of commtimeouts; in prompt
// pacing that for the answer ends with it, and the others fall away behind a whole reply.
struct TransactOptions {
    FailureReport failures;
    int tries;
    const char* sending;  // status texts
    const char* waiting;
    const char* converting;
    int waitsBefore;  // in front of the first try
    int waitsForAnswer;
    int waitsAfterAnswer;  // before the reply is parsed, and again behind that
    // A reply to a read is an answer only if it names the slave and the function that were asked, and has just as many
    // values. For floats.
    bool onlyItsOwn = false;
};

// The scheduled run: five waits, no retry.
inline constexpr TransactOptions scheduledTransact = {FailureReport::Log,
                                                      1,
                                                      "Scheduler :: Sending Request",
                                                      "Scheduler :: Wating for response",
                                                      "Scheduler :: Converting Response....",
                                                      1,
                                                      2,
                                                      1};

// A screen in front of the operator.
inline constexpr TransactOptions onlineTransact = {
    FailureReport::Box, 3, "Sending Request", "Waiting for response", "Converting Response....", 1, 1, 0};

// Its writes: one wait a try.
inline constexpr TransactOptions onlineWrite = {
    FailureReport::Caller, 3, "Sending Request", "Waiting for response", "Converting Response....", 0, 1, 0};

// Asks the station for `count` registers or coils from `reg` on, as numbered on the line, in the framing of its mode,
// and decodes the reply into talk.modbus. The station's slave address and talk.modbus decide the rest.
//
// In RTU and ASCII framing the reply is matched to its request only by being what arrived during the wait. A request
// that cannot be built is not sent: a box, and no response. A conversation that is told to end returns at once, and
// what is missing then is reported nowhere; one whose line is wanted sends nothing more.
ModbusReply ModbusTransact(Conversation& talk, int reg, int count, int command,
                           const TransactOptions& options = scheduledTransact);

// What the operator is told of a failed transaction in a box; a CR ends its lines.
const char* FailureText(ModbusReply::Kind kind);

// Whether the reply to a read is one to take values from.
bool IsAnswer(const ModbusReply& reply, const TransactOptions& options);

enum class WriteOutcome {
    Done,      // the station acknowledged this very write
    NotBuilt,  // no frame carries it, nothing was sent; a box said so
    Refused,   // an exception; talk.modbus.mbvalues[1] is its code
    Failed,    // no reply that acknowledges it
};

// Writes into register or coil `reg`, as numbered on the line: a float by function 16 into two registers or, by
// talk.modbus.rtu32bit, into one, an integer of 16 bits with a sign by function 6, a coil on (1) or off by function 5.
// A late answer to another write counts as none. ASCII framing carries one datum, so for it a float cannot be built.
WriteOutcome ModbusWrite(Conversation& talk, core::ValueKind datum, int reg, double value,
                         const TransactOptions& options = scheduledTransact);

}  // namespace protocols
