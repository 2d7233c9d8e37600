#pragma once

#include <cstdint>
#include <functional>

#include "reading/Workplace.h"
#include "session/LineUp.h"

namespace collection {
class Scheduler;
}

namespace session {

class Session;

// How one kind of screen comes to the line of its station.
struct StationLineOptions {
    bool ofSession = true;    // by the line of the station's session, if that is up
    bool ownCall = true;      // else by a call of its own
    bool signsOn = false;     // as `lineUp` says, also on a session's line, which has been signed on to
    LineUpOptions lineUp{};   // of its own call; with keepsLine a session's line is kept as well
    int extraWaitMs = 0;      // added to the commtimeout on a dialled session's line
    const char* noLine = "";  // told when no line is up and it makes no call; empty: nothing is told
};

// Brings the work of a screen to a station. `work` is called at most once, when the station has been signed on to;
// `over` once, when all is done and a line of its own is down again: at once, or behind a read of the session's loop.
// What fails is told to the feedback of `place`, which must stay until then; what `work` throws is in RTU_Err.log.
// Throws DatabaseError when the register cannot be read; `over` has been called then, too.
void OnStationLine(const reading::Workplace& place, const collection::Scheduler& scheduler, Session* session,
                   const StationLineOptions& options, std::int64_t locationID,
                   std::function<void(protocols::Conversation& talk)> work, std::function<void()> over);

}  // namespace session
