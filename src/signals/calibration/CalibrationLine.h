#pragma once

#include <cstdint>
#include <functional>

#include "reading/Workplace.h"

namespace collection {
class Scheduler;
}
namespace session {
class Session;
}

namespace signals {

// Brings a calibration to the line of a session's station: the session's own, which is signed on to anew, else that of
// a call for it. A station that does not speak BSAP is refused. For `work`, `over` and what is thrown see
// session::OnStationLine.
void OnCalibrationLine(const reading::Workplace& place, const collection::Scheduler& scheduler,
                       session::Session& session, std::function<void(protocols::Conversation& talk)> work,
                       std::function<void()> over);

}  // namespace signals
