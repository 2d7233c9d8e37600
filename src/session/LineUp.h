#pragma once

#include <string>

#include "protocols/bsap/BsapLink.h"
#include "protocols/line/Conversation.h"

// The line of a session, from the closed port to the station that answers, and back.
namespace session {

inline constexpr const char* lineInUse =
    "The line is in use: stations are being collected. Connect again when it is free.";

struct LineUpOutcome {
    bool up = false;
    bool called = false;    // there is a call to hang up
    std::string failure{};  // why it is not up; empty when the conversation ended. The operator was told in a box
};

// How one kind of screen signs on to a BSAP station, and what it says of one that does not answer.
struct LineUpOptions {
    protocols::SignOnOptions signOn{};
    int signOnTries = 3;
    const char* dead = "RTU Dead";
};

// Opens the port, or the connection to a station on the network, dials a station that has a number, and signs on to one
// that speaks BSAP. FieldLine::StopConnecting ends it at once.
LineUpOutcome BringLineUp(protocols::Conversation& talk, const LineUpOptions& options = {});

// Hangs up a call with that guard time, and closes the port. Nothing is sent on a line that was taken away.
void TakeLineDown(protocols::Conversation& talk, bool called, double guardMs);

}  // namespace session
