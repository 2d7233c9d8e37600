#pragma once

#include <string>

#include "protocols/Conversation.h"

// The line of a session, from the closed port to the station that answers, and back.
namespace session {

struct LineUpOutcome {
    bool up = false;
    bool called = false;    // there is a call to hang up
    std::string failure{};  // why it is not up; empty when the conversation ended. The operator was told in a box
};

// Opens the port, dials a station that has a number, and signs on to one that speaks BSAP.
LineUpOutcome BringLineUp(protocols::Conversation& talk);

// Hangs up a call with that guard time, and closes the port. Nothing is sent on a line that was taken away.
void TakeLineDown(protocols::Conversation& talk, bool called, double guardMs);

}  // namespace session
