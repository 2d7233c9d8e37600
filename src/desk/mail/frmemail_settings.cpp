#include "desk/mail/frmemail_settings.h"

#include "ui_frmemail_settings.h"

namespace desk {

frmemail_settings::frmemail_settings(Desk& desk)
    : Page(desk, "Mail Settings"), mail_(desk, this), ui_(std::make_unique<Ui::frmemail_settings>()) {
    ui_->setupUi(this);
    Title("Mail Settings");
    // Both blocks of fields in one column.
    ui_->capmailto->setMinimumWidth(ui_->capserverpassword->sizeHint().width());
    ui_->capurl->setMinimumWidth(ui_->capsubject->sizeHint().width());
    CloseCommand(ui_->cmdCancel);
    connect(ui_->cmdsave, &QPushButton::clicked, this, [this] { Guarded([this] { cmdsave(); }); });
    connect(ui_->cmdtest, &QPushButton::clicked, this, [this] { Guarded([this] { cmdtest(); }); });
    connect(ui_->cmdstop, &QPushButton::clicked, &mail_, &OutgoingMail::Stop);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmemail_settings::cmdCancel);
    ui_->cmdreveal->Reveals({ui_->txtserverpassword});
    connect(&mail_, &OutgoingMail::Ended, this, [this](bool, const QString& answer) { Ended(answer); });
    Guarded([this] { Load(); });
    ShowState();
}

frmemail_settings::~frmemail_settings() = default;

void frmemail_settings::Load() {
    const mail::EmailSettings settings = mail::ReadEmailSettings(desk_.dbconn);
    ui_->txtmailto->setText(QString::fromStdString(settings.to));
    ui_->txtmailcc->setText(QString::fromStdString(settings.cc));
    ui_->txtmailbcc->setText(QString::fromStdString(settings.bcc));
    ui_->txtsubject->setText(QString::fromStdString(settings.subject));
    ui_->txtmsg->setPlainText(QString::fromStdString(settings.message));
    const mail::MailServer server = mail::ReadMailServer(desk_.dbconn);
    ui_->txturl->setText(QString::fromStdString(server.url));
    ui_->txtserveruser->setText(QString::fromStdString(server.user));
    ui_->txtserverpassword->setText(QString::fromStdString(server.password));
    ui_->txtsender->setText(QString::fromStdString(server.sender));
}

void frmemail_settings::ShowState() {
    ui_->cmdsave->setEnabled(!mail_.Sending());
    ui_->cmdtest->setEnabled(!mail_.Sending());
    ui_->cmdstop->setEnabled(mail_.Sending());
}

mail::EmailSettings frmemail_settings::Settings() const {
    return {ui_->txtmailto->text().toStdString(), ui_->txtmailcc->text().toStdString(),
            ui_->txtmailbcc->text().toStdString(), ui_->txtsubject->text().toStdString(),
            ui_->txtmsg->toPlainText().toStdString()};
}

mail::MailServer frmemail_settings::Server() const {
    return {ui_->txturl->text().trimmed().toStdString(), ui_->txtserveruser->text().toStdString(),
            ui_->txtserverpassword->text().toStdString(), ui_->txtsender->text().trimmed().toStdString()};
}

QWidget& frmemail_settings::FieldOf(mail::MailField field) const {
    switch (field) {
        case mail::MailField::Cc:
            return *ui_->txtmailcc;
        case mail::MailField::Bcc:
            return *ui_->txtmailbcc;
        case mail::MailField::Sender:
            return *ui_->txtsender;
        default:
            return *ui_->txtmailto;
    }
}

// What cannot be mailed with is saved as well, as it always was, and the operator is told at once, not by a line of
// the log in the night. No addressee at all is a setting: no mail.
void frmemail_settings::cmdsave() {
    mail::SaveMailSettings(desk_.dbconn, Settings(), Server());
    const mail::MailMessage mail = mail::TestMail(Settings(), Server());
    const auto fault = mail::FaultOf(mail);
    if (fault && mail::HasAddressee(mail)) {
        FieldOf(fault->field).setFocus();
        Show("The settings are saved, but no mail will go: " + QString::fromStdString(fault->text));
        return;
    }
    Show("The mail settings are saved", QMessageBox::Information);
}

void frmemail_settings::cmdtest() {
    const mail::MailMessage mail = mail::TestMail(Settings(), Server());
    if (const auto fault = mail::FaultOf(mail)) {
        FieldOf(fault->field).setFocus();
        Show(QString::fromStdString(fault->text));
        return;
    }
    mail_.Send(mail, Server());
    ui_->lblanswer->setText("Sending Mail");
    ShowState();
    ui_->cmdstop->setFocus();
}

void frmemail_settings::Ended(const QString& answer) {
    ShowState();
    ui_->lblanswer->setText(answer);
    ui_->cmdtest->setFocus();
    if (closing_) {
        Close();
    }
}

void frmemail_settings::cmdCancel() {
    if (mail_.Sending()) {
        closing_ = true;
        mail_.Stop();
        return;
    }
    Close();
}

}  // namespace desk
