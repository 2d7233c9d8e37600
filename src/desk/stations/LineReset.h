#pragma once

#include "desk/kit/Desk.h"

namespace desk {

// Sets hung lines free: an open port is closed, then 100 ms pass; twice. Nothing is done to a line that a conversation
// holds. The status bar says what was done. Returns at once.
void ResetLine(Desk& desk);

}  // namespace desk
