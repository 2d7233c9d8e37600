#include "desk/core/Boxes.h"

#include <QMessageBox>

namespace desk {

void ShowBox(QWidget* over, const QString& text, const QString& title) {
    auto* box = new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, over);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
}

}  // namespace desk
