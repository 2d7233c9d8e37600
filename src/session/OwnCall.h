#pragma once

#include <functional>

#include "core/Station.h"
#include "reading/Workplace.h"
#include "session/LineUp.h"

namespace collection {
class Scheduler;
}

namespace session {

// A call that a screen makes for one piece of work: takes the line, brings it up, does `work` and takes the line down
// again. The texts and boxes go to the feedback of `place`; each failure is told there. Returns whether the line came
// up; while stations are collected it does not. A scheduled run may take the line away meanwhile, as from a session,
// unless the options keep it.
// What `work` throws comes out when the line is down.
bool OwnCall(const reading::Workplace& place, const collection::Scheduler& scheduler, const core::Station& station,
             const LineUpOptions& options, const std::function<void(protocols::Conversation& talk)>& work);

}  // namespace session
