#include "desk/stations/LineReset.h"

#include "collection/Scheduler.h"
#include "core/Clock.h"
#include "core/Feedback.h"
#include "protocols/line/LineLease.h"

namespace desk {

void ResetLine(Desk& desk) {
    const auto line = desk.scheduler.Busy() ? nullptr : desk.line.TakeIfFree();
    if (line == nullptr) {
        desk.feedback.Status("The line is in use and was not reset");
        return;
    }
    for (int turn = 1; turn <= 2; ++turn) {
        if (line->PortOpen()) {
            line->PortOpen(false);
        }
        desk.clock.WaitMs(100);
    }
    desk.feedback.Status("The line was reset");
}

}  // namespace desk
