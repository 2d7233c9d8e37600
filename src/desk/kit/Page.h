#pragma once

#include <QMessageBox>
#include <QWidget>
#include <functional>

#include "desk/kit/Desk.h"

class QAbstractButton;

namespace desk {

// A screen of the shell. Its caption stands over it; Escape gives its closing command, Enter the command in focus.
class Page : public QWidget {
    Q_OBJECT

  public:
    // `title` is followed by the version in the caption.
    Page(Desk& desk, const QString& title);

    // The page has come to the front: it was opened, or what it opened is closed.
    virtual void Activated() {}

    // The focus goes to where it was in this page; at first to its first field.
    void TakeFocus();

  Q_SIGNALS:
    // The page asks to be closed; the Navigator does it.
    void Closed();

  protected:
    void Close() { Q_EMIT Closed(); }

    void Title(const QString& title);

    // Runs a command. What fails in the database or on the disk ends the command: the form stays as it is, the text is
    // in the status bar and in RTU_Err.log.
    void Guarded(const std::function<void()>& work);

    // Message boxes over this page; both return at once. Set the focus before: behind the box it is where it was.
    void Show(const QString& text, QMessageBox::Icon icon = QMessageBox::Warning);
    void Ask(const QString& text, std::function<void()> yes, std::function<void()> no = {});

    // What Escape does while it is visible and enabled.
    void CloseCommand(QAbstractButton* command);

    void keyPressEvent(QKeyEvent* event) override;

    Desk& desk_;

  private:
    QAbstractButton* closeCommand_ = nullptr;
};

}  // namespace desk
