#pragma once

#include <QLineEdit>

#include "desk/kit/Grid.h"
#include "desk/session/frmdata.h"
#include "support/ScreenDesk.h"

// The register editor, as it is worked with by keys.
namespace support {

// The dialog over a page, in front; null when there is none.
inline desk::frmdata* Dialog(const QWidget& page) {
    for (auto* dialog : page.findChildren<desk::frmdata*>()) {
        if (dialog->isVisible() && QTest::qWaitForWindowActive(dialog)) {
            return dialog;
        }
    }
    return nullptr;
}

// Enter on a row of a grid.
inline desk::frmdata& OpenRow(const QWidget& page, const char* grid, int row) {
    auto& rows = The<desk::Grid>(page, grid);
    rows.SelectRow(row);
    QTest::keyClick(&rows, Qt::Key_Return);
    desk::frmdata* dialog = Dialog(page);
    if (dialog == nullptr) {
        throw std::runtime_error("no dialog over the row");
    }
    return *dialog;
}

// Types an address into the dialog, whose field is selected, and presses Enter.
inline void EnterAddress(desk::frmdata& dialog, const QString& address) {
    QWidget& field = The(dialog, "txtstartaddress");
    QTest::keyClicks(&field, address);
    QTest::keyClick(&field, Qt::Key_Return);
    QCoreApplication::processEvents();
}

inline void GiveAddress(const QWidget& page, const char* grid, int row, const QString& address) {
    EnterAddress(OpenRow(page, grid, row), address);
    EXPECT_EQ(Dialog(page), nullptr) << address.toStdString();
    Return(page);
}

}  // namespace support
