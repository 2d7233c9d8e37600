#pragma once

#include <functional>

#include "protocols/quantum/Quantum.h"
#include "reading/ValueStore.h"
#include "reading/Workplace.h"

namespace reading {

struct QuantumOptions {
    bool unattended;  // a silent unit goes to RTU_Err.log, otherwise to a box
    double answerMs;  // for the answer to each message
};

// Asks a Quantum unit for its three messages, again while fields of a reply are missing, up to three times a message. A
// field that stays missing is stored as 0 and marked as not received. The values of each go to their rows by
// description as soon as it is in, and `stored` is called; behind the last the day's LogParam row is written. False:
// the unit was silent, or the conversation ended. Throws DatabaseError.
bool ReadQuantum(Workplace& place, protocols::Conversation& talk, const QuantumOptions& options, ValueStore& store,
                 const std::function<void(int message, const protocols::QuantumReply& reply)>& stored);

}  // namespace reading
