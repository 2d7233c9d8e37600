#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "session/WriteRequest.h"

// What came of a value that an operator asked to be written: in the map, in the audit trail, in words.
namespace session {

enum class WriteResult {
    Confirmed,     // the station shows the value
    Refused,       // it said no, and has its old value
    NotConfirmed,  // it shows another value, or none
    NotSent,       // nothing went out
    CutOff,        // the line went while it was on its way
};

struct WriteAnswer {
    WriteResult result = WriteResult::NotConfirmed;
    std::optional<double> has{};  // what the station showed afterwards
    std::string reason{};         // why not, where there is more to say
};

struct AnsweredWrite {
    WriteRequest request;
    WriteAnswer answer;
};

// Brings the map in line with the answer, and leaves it in the audit trail: a value that the station has as the line of
// a change, in its required words; all else says that nothing was changed, or that it is not known. What the database
// does not take is in RTU_Err.log.
void Settle(const WriteContext& context, const core::DateTime& now, const AnsweredWrite& write);

// For the operator: "Keypad N2: confirmed", "Keypad N2: not confirmed, the station has 1.000000". Of several: which
// were taken, what became of the one that was not, and which were not sent.
std::string AnswerText(const std::vector<AnsweredWrite>& writes, bool isCW);

// A line of the audit trail that stops nobody: one that cannot be written there goes to RTU_Err.log.
void LeaveAudit(core::Logs& logs, const std::string& user, const std::string& what);

}  // namespace session
