#pragma once

#include <QMessageBox>
#include <QString>
#include <functional>

namespace desk {

// Shows a message over a form, which takes no input until the operator has read it. It returns at once: a box that
// waited in a loop of its own would hold up the run below it for as long as it stands, all night if nobody is there.
// Whoever sets the focus does it before: behind the box it is where it was.
void ShowBox(QWidget* over, const QString& text, const QString& title, QMessageBox::Icon icon = QMessageBox::Warning);

// Asks with Yes and No over a form, and returns at once. `yes` or `no` is called with the answer. `safe` is the default
// and Escape: No, since what is asked for cannot be undone, unless the question is put the other way round.
void AskBox(QWidget* over, const QString& text, const QString& title, std::function<void()> yes,
            std::function<void()> no = {}, QMessageBox::StandardButton safe = QMessageBox::No);

}  // namespace desk
