#include "desk/kit/Boxes.h"

namespace desk {

namespace {

QMessageBox* NewBox(QWidget* over, const QString& text, const QString& title, QMessageBox::Icon icon,
                    QMessageBox::StandardButtons buttons) {
    auto* box = new QMessageBox(icon, title, text, buttons, over);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    return box;
}

}  // namespace

void ShowBox(QWidget* over, const QString& text, const QString& title, QMessageBox::Icon icon) {
    NewBox(over, text, title, icon, QMessageBox::Ok)->open();
}

void AskBox(QWidget* over, const QString& text, const QString& title, std::function<void()> yes,
            std::function<void()> no, QMessageBox::StandardButton safe) {
    auto* box = NewBox(over, text, title, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(safe);
    box->setEscapeButton(safe);
    QObject::connect(box, &QMessageBox::finished, over, [yes = std::move(yes), no = std::move(no)](int answer) {
        const auto& next = answer == QMessageBox::Yes ? yes : no;
        if (next) {
            next();
        }
    });
    box->open();
}

}  // namespace desk
