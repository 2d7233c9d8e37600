#pragma once

class QApplication;

namespace desk {

// Each window of the program is the active one when it is shown, and the one behind it when it is hidden. A window
// manager sees to that; on a bare X server, such as that of a kiosk, nobody else does, and commands have no keys.
// Windows with Qt::WA_ShowWithoutActivating are left alone.
void ActivateWindows(QApplication& application);

}  // namespace desk
