#include "desk/shell/frmLogin.h"

#include <QCloseEvent>
#include <QFont>
#include <QKeyEvent>

#include "core/Database.h"
#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "ui_frmLogin.h"

namespace desk {

frmLogin::frmLogin(core::Database& dbconn, core::MAIN_Module& shared, core::Logs& logs, MessageBox box)
    : dbconn_(dbconn), shared_(shared), logs_(logs), box_(std::move(box)), ui_(std::make_unique<Ui::frmLogin>()) {
    ui_->setupUi(this);
    setWindowTitle("Login" + QString::fromStdString(shared_.versionsuffix));
    QFont title = ui_->lbltitle->font();
    title.setPointSizeF(title.pointSizeF() * 2);
    title.setBold(true);
    ui_->lbltitle->setFont(title);
    // Both blocks of fields in one column.
    ui_->lbluser->setMinimumWidth(ui_->lblconfirmpass->sizeHint().width());
    ui_->cmdreveal->Reveals({ui_->txtpassword});
    ui_->cmdrevealnew->Reveals({ui_->txtnewpass, ui_->txtconfirmpass});
    connect(ui_->cmdOk, &QPushButton::clicked, this, &frmLogin::cmdOk);
    connect(ui_->cmdchange, &QPushButton::clicked, this, &frmLogin::cmdchange);
    connect(ui_->cmdsave, &QPushButton::clicked, this, &frmLogin::cmdsave);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmLogin::close);
}

frmLogin::~frmLogin() = default;

void frmLogin::ShowUnattended() {
    ui_->lblunattended->setVisible(true);
}

void frmLogin::showEvent(QShowEvent* event) {
    loggedIn_ = false;
    ui_->txtpassword->clear();
    ShowNewPassword(false);
    Select(ui_->txtuser);
    QDialog::showEvent(event);
}

// Enter moves on from field to field; in the password, and on a command, it does what is next.
void frmLogin::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Enter();
    } else if (event->key() == Qt::Key_Escape) {
        loggedIn_ = false;
        close();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void frmLogin::Enter() {
    // Not hasFocus(): without a window manager the keys come, but no window is active.
    if (focusWidget() == ui_->txtpassword) {
        cmdOk();
    } else if (auto* command = qobject_cast<QPushButton*>(focusWidget())) {
        command->click();
    } else {
        focusNextChild();
    }
}

void frmLogin::closeEvent(QCloseEvent* event) {
    event->setAccepted(loggedIn_);
    if (!loggedIn_) {
        Q_EMIT Abandoned();
    }
}

void frmLogin::Select(QLineEdit* field) {
    field->setFocus();
    field->selectAll();
}

bool frmLogin::Accepted(core::LoginOutcome outcome) {
    switch (outcome) {
        case core::LoginOutcome::LoggedIn:
            return true;
        case core::LoginOutcome::Refused:
            box_("Invalid UserName or Password , try again!", "Login");
            Select(ui_->txtuser);
            break;
        case core::LoginOutcome::AlreadyLoggedOn:
            box_("User Already Logged On..", "Login");
            Select(ui_->txtpassword);
            break;
    }
    return false;
}

void frmLogin::cmdOk() {
    core::Guarded(logs_, [this] {
        if (Accepted(core::Login(dbconn_, shared_, logs_, ui_->txtuser->text().toStdString(),
                                 ui_->txtpassword->text().toStdString()))) {
            loggedIn_ = true;
            Q_EMIT LoginDone();
        }
    });
}

void frmLogin::cmdchange() {
    core::Guarded(logs_, [this] {
        if (Accepted(core::CheckPassword(dbconn_, ui_->txtuser->text().toStdString(),
                                         ui_->txtpassword->text().toStdString()))) {
            ShowNewPassword(true);
            ui_->txtnewpass->setFocus();
        }
    });
}

void frmLogin::cmdsave() {
    // Blanks alone are empty: the password is stored without those at its ends.
    if (ui_->txtnewpass->text().trimmed().isEmpty()) {
        box_("Please Enter New Password", "Login");
        Select(ui_->txtnewpass);
        return;
    }
    if (ui_->txtnewpass->text() != ui_->txtconfirmpass->text()) {
        box_("Please Confirm Password", "Login");
        Select(ui_->txtconfirmpass);
        return;
    }
    core::Guarded(logs_, [this] {
        if (!core::ChangePassword(dbconn_, ui_->txtuser->text().toStdString(), ui_->txtnewpass->text().toStdString())) {
            box_("The new password holds a character that cannot be stored", "Login");
            Select(ui_->txtnewpass);
            return;
        }
        box_("Password Changed", "Login");
        ShowNewPassword(false);
        ui_->txtpassword->setFocus();
    });
}

// The user whose password is being changed stays the one who was checked.
void frmLogin::ShowNewPassword(bool shown) {
    ui_->fra_change->setVisible(shown);
    ui_->txtnewpass->clear();
    ui_->txtconfirmpass->clear();
    ui_->txtuser->setEnabled(!shown);
    ui_->cmdchange->setEnabled(!shown);
    ui_->cmdsave->setEnabled(shown);
    (shown ? ui_->cmdsave : ui_->cmdOk)->setDefault(true);
}

}  // namespace desk
