#pragma once

#include <cstdint>
#include <functional>

#include "archive/bsap/Routines.h"
#include "reading/Workplace.h"
#include "session/LineUp.h"

// The way to the line of a station for whatever works on it beside the session's own call: between two reads of the
// session, or by a call that is made for it.
namespace session {

class Session;

// How one kind of screen comes to the line of its station.
struct StationLineOptions {
    bool ofSession = true;         // by the line of the station's session, if that is up
    bool ownCall = true;           // else by a call of its own
    bool signsOn = false;          // as `lineUp` says, also on a session's line, which has been signed on to
    bool keepsLine = false;        // a scheduled run waits until the work is over, see KeptLine
    LineUpOptions lineUp{};        // of its own call
    double behindSessionMs = 500;  // from the session's last read to the first request
    int extraWaitMs = 0;           // added to the commtimeout on a dialled session's line
    int node = 0;                  // asked whatever address the station has; 0: its own
    const char* bsapOnly = "";     // told of a station that does not speak BSAP; empty: any will do
    const char* noLine = "";       // told when no line is up and it makes no call; empty: nothing is told
};

// frmarchive makes a call of its own, frmCW_archive uses a session's line or calls, frmparaarchive never calls.
StationLineOptions WayOfArchive(archive::Screen screen);
StationLineOptions WayOfModbusArchive();
// Lists and searches: a session's line and no other, or without a session a call.
StationLineOptions WayOfSignals(bool hasSession);
// The lists before and after a change of the program, which are worth nothing when they are cut off.
StationLineOptions WayOfChange();
StationLineOptions WayOfCalibration();

// Brings the work of a screen to a station, in a conversation: the session's, or one of its own. `work` is called at
// most once, when the station has been signed on to; `over` once, when all is done and a line of its own is down again.
// Both may be called before this returns. What fails is told to the feedback of `place`, which must stay until then, as
// what the two work with; what they throw is in RTU_Err.log. Throws DatabaseError when the register cannot be read;
// `over` has been called then, too.
void OnStationLine(const reading::Workplace& place, Session* session, const StationLineOptions& options,
                   std::int64_t locationID, std::function<void(protocols::Conversation& talk)> work,
                   std::function<void()> over);

}  // namespace session
