#include "desk/kit/Page.h"

#include <QAbstractButton>
#include <QKeyEvent>

#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "desk/kit/Boxes.h"

namespace desk {

Page::Page(Desk& desk, const QString& title) : desk_(desk) {
    Title(title);
}

void Page::Title(const QString& title) {
    setWindowTitle(title + QString::fromStdString(desk_.shared.versionsuffix));
}

void Page::TakeFocus() {
    if (focusWidget() != nullptr) {
        focusWidget()->setFocus();
    } else {
        focusNextChild();
    }
}

void Page::Guarded(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& failure) {
        desk_.logs.WriteRtuErr(failure.what());
        desk_.feedback.Status(failure.what());
    }
}

void Page::Show(const QString& text, QMessageBox::Icon icon) {
    ShowBox(this, text, windowTitle(), icon);
}

void Page::Ask(const QString& text, std::function<void()> yes, std::function<void()> no) {
    AskBox(this, text, windowTitle(), std::move(yes), std::move(no));
}

void Page::CloseCommand(QAbstractButton* command) {
    closeCommand_ = command;
}

void Page::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && closeCommand_ != nullptr && closeCommand_->isVisible()) {
        closeCommand_->click();
        return;
    }
    auto* command = qobject_cast<QAbstractButton*>(focusWidget());
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && command != nullptr) {
        command->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace desk
