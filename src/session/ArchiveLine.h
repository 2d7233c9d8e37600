#pragma once

#include <cstdint>
#include <functional>

#include "archive/bsap/Routines.h"
#include "reading/Workplace.h"

namespace collection {
class Scheduler;
}

namespace session {

class Session;

// Brings the work of an archive screen to a station. Each screen has its own way to the line:
//
//   frmarchive      makes a call of its own
//   frmCW_archive   uses the line of `session` if that is up, else makes a call of its own
//   frmparaarchive  uses the line of `session` and never calls
//
// `work` is called at most once, when the station has been signed on to; `over` once, when all is done and a line of
// its own is down again: at once, or behind a read of the session's loop. What fails is told to the feedback of
// `place`, which must stay until then. Throws DatabaseError when the register cannot be read, `over` having been
// called.
void OnArchiveLine(const reading::Workplace& place, const collection::Scheduler& scheduler, Session* session,
                   archive::Screen screen, std::int64_t locationID,
                   std::function<void(protocols::Conversation& talk)> work, std::function<void()> over);

}  // namespace session
