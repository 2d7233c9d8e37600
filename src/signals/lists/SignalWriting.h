#pragma once

#include <optional>
#include <string>
#include <utility>

#include "protocols/line/Conversation.h"
#include "session/WriteLevels.h"
#include "signals/lists/SignalText.h"

namespace core {
class Database;
}

// A signal of a station written by its address, and read back.
namespace signals {

// The signals of a station's own lists carry no level as its parameters do: the settings say which level writes them,
// and which one calibrates. All throw DatabaseError.
bool MayWriteSignals(core::Database& dbconn, const std::string& currentuser);
bool MayCalibrate(core::Database& dbconn, const std::string& currentuser);
// The same for one signal: what the station's map knows as measured or counted is the super-user's alone.
bool MayWriteSignal(core::Database& dbconn, const core::Station& station, const Signal& signal,
                    const std::string& currentuser);
inline constexpr const char* lowerLevel = session::lowerLevel;

// By which a station's program is known: both bytes of its load version. Another program has other addresses.
using Program = std::pair<int, int>;
inline Program ProgramOf(const protocols::Conversation& talk) {
    return {talk.bsap.loadversion1, talk.bsap.loadversion2};
}

// What an operator wants a signal to be.
struct SignalWrite {
    Signal signal;
    double value = 0;
    std::optional<std::string> text{};  // instead of the value, in the station's code page
    std::string shown;                  // either, as it was entered
    std::optional<Program> program{};   // that gave the signal its address
};

// Takes an entered text for a signal: for a switch one of its words, for every other one a number, or else a text.
// Nothing when it is empty or has a character that a station has not.
std::optional<SignalWrite> CheckEntry(const Signal& signal, const std::string& entered);

enum class WriteEnd {
    Taken,     // the station shows the value
    NotTaken,  // it shows another one
    Gone,      // it no longer has the signal
    Unknown,   // it does not say, or the line was taken away
    NotSent,   // another program is in the station by now
};

struct WriteResult {
    WriteEnd end = WriteEnd::Unknown;
    Signal signal;        // as read back; as it was when that is not known
    std::string message;  // for the operator; empty when all is well
};

// Writes, reads back, and leaves the line in the audit trail: the same for all models. Throws DatabaseError before
// anything is sent.
WriteResult pending_request(protocols::Conversation& talk, const SignalWrite& write);

}  // namespace signals
