#pragma once

#include <QAbstractButton>
#include <QMessageBox>

#include "demo/screens/Stage.h"
#include "desk/kit/Page.h"

// What an operator does on a page.
namespace demo {

inline void Press(desk::Page& page, const char* command) {
    page.findChild<QAbstractButton*>(command)->click();
}

// The same, until what it began is over.
inline void Press(Stage& stage, desk::Page& page, const char* command) {
    Press(page, command);
    stage.Settle();
}

// Says Yes to the question over a page.
inline void Agree(desk::Page& page) {
    for (QMessageBox* box : page.findChildren<QMessageBox*>()) {
        box->button(QMessageBox::Yes)->click();
    }
}

inline void CloseBoxes(desk::Page& page) {
    for (QMessageBox* box : page.findChildren<QMessageBox*>()) {
        box->close();
    }
}

}  // namespace demo
