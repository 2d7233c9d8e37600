#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "core/Users.h"

namespace Ui {
class frmLogin;
}
class QLineEdit;

namespace desk {

// Shows a message with a title over the form. It does not wait for the operator: see ShowBox.
using MessageBox = std::function<void(const QString& text, const QString& title)>;

// Who is there? The first screen, and again after a log-off.
class frmLogin : public QDialog {
    Q_OBJECT

  public:
    frmLogin(core::Database& dbconn, core::MAIN_Module& shared, core::Logs& logs, MessageBox box);
    ~frmLogin() override;

    // Tells on the screen that stations are collected while nobody is logged in.
    void ShowUnattended();

    // The logged-in flag.
    bool LoggedIn() const { return loggedIn_; }

  Q_SIGNALS:
    void LoginDone();
    // Closed while nobody is logged in: the program ends.
    void Abandoned();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void cmdOk();
    void cmdchange();
    void cmdsave();
    void Enter();
    // Shows what is wrong with an outcome and puts the focus where it can be mended. True: nothing is.
    bool Accepted(core::LoginOutcome outcome);
    void ShowNewPassword(bool shown);
    static void Select(QLineEdit* field);

    core::Database& dbconn_;
    core::MAIN_Module& shared_;
    core::Logs& logs_;
    MessageBox box_;
    bool loggedIn_ = false;
    std::unique_ptr<Ui::frmLogin> ui_;
};

}  // namespace desk
