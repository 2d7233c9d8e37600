#pragma once

#include <QString>

class QWidget;

namespace desk {

// Shows a message over a form, which takes no input until the operator has read it. It returns at once: a box that
// waited in a loop of its own would hold up the run below it for as long as it stands, all night if nobody is there.
void ShowBox(QWidget* over, const QString& text, const QString& title);

}  // namespace desk
