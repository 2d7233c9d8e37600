#pragma once

#include "desk/kit/Desk.h"

namespace desk {

// Sets a hung serial line free: an open port is closed, then 100 ms pass; twice. While a conversation holds the line
// nothing is done to it. The status bar says which it was. The caller may be gone when this returns.
void ResetLine(Desk& desk);

}  // namespace desk
