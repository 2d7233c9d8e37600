#include "desk/mail/frmemail.h"

#include <QFileDialog>

#include "core/MAIN_Module.h"
#include "desk/kit/Navigator.h"
#include "desk/mail/frmemaildetails.h"
#include "mail/EmailSettings.h"
#include "ui_frmemail.h"

namespace desk {

namespace {

// A line of the question; a text that nobody can read to its end there is cut.
QString Line(const char* caption, const std::string& text) {
    constexpr int most = 80;
    const QString line = QString::fromStdString(text).simplified();
    return line.isEmpty() ? QString() : QString("\n%1: %2").arg(caption, line.left(most));
}

}  // namespace

frmemail::frmemail(Desk& desk) : Page(desk, "Mail"), mail_(desk, this), ui_(std::make_unique<Ui::frmemail>()) {
    ui_->setupUi(this);
    Title("Mail");
    CloseCommand(ui_->cmdCancel);
    connect(ui_->cmdlogin, &QPushButton::clicked, this, &frmemail::cmdlogin);
    connect(ui_->cmdlogoff, &QPushButton::clicked, this, &frmemail::cmdlogoff);
    connect(ui_->cmdaddressees, &QPushButton::clicked, this, &frmemail::cmdaddressees);
    connect(ui_->cmdremove, &QPushButton::clicked, this, &frmemail::cmdremove);
    connect(ui_->cmdmail, &QPushButton::clicked, this, [this] { Guarded([this] { cmdmail(); }); });
    connect(ui_->cmdstop, &QPushButton::clicked, &mail_, &OutgoingMail::Stop);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmemail::cmdCancel);
    connect(&mail_, &OutgoingMail::Ended, this, &frmemail::Ended);
    Reset();
}

frmemail::~frmemail() = default;

// As on load.
void frmemail::Reset() {
    loggedIn_ = false;
    for (QLineEdit* field : {ui_->txtmailto, ui_->txtmailcc, ui_->txtmailbcc, ui_->txtsubject}) {
        field->clear();
    }
    ui_->txtmsg->clear();
    AttachFile({});
    ShowState();
    ui_->cmdlogin->setFocus();
}

void frmemail::ShowState() {
    const bool sending = mail_.Sending();
    const bool writing = loggedIn_ && !sending;
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ui_->txtmailto, ui_->txtmailcc, ui_->txtmailbcc, ui_->txtsubject, ui_->txtmsg,
                                         ui_->cmdmail, ui_->cmdremove, ui_->cmdlogoff}) {
        widget->setEnabled(writing);
    }
    ui_->cmdlogin->setEnabled(!loggedIn_ && !sending);
    ui_->cmdaddressees->setEnabled(!sending);
    ui_->cmdstop->setEnabled(sending);
    ui_->cmdlogin->setDefault(!loggedIn_);
    ui_->cmdmail->setDefault(loggedIn_);
    ui_->lblstate->setText(sending && closing_ ? "Sending Mail; the form closes afterwards"
                           : sending           ? "Sending Mail"
                           : loggedIn_         ? "Logged in"
                                               : "Log in to write a mail");
}

// There is no mail client on this machine to sign on to, so a session opens always.
void frmemail::cmdlogin() {
    loggedIn_ = true;
    ShowState();
    TakeAddressees();
    ui_->txtmailto->setFocus();
}

void frmemail::cmdlogoff() {
    Reset();
}

void frmemail::TakeAddressees() {
    const core::Addressees& stored = desk_.shared.addressees;
    ui_->txtmailto->setText(QString::fromStdString(stored.to));
    ui_->txtmailcc->setText(QString::fromStdString(stored.cc));
    ui_->txtmailbcc->setText(QString::fromStdString(stored.bcc));
    ui_->txtsubject->setText(QString::fromStdString(stored.subject));
}

void frmemail::cmdaddressees() {
    auto* details = new frmemaildetails(desk_);
    connect(details, &frmemaildetails::Stored, this, [this] {
        if (loggedIn_) {
            TakeAddressees();
        }
    });
    desk_.navigator.Open(details);
}

void frmemail::cmdremove() {
    if (!ui_->lblattatch->text().isEmpty()) {
        AttachFile({});
        return;
    }
    auto* dialog = new QFileDialog(this, "Attatch");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &frmemail::AttachFile);
    dialog->open();
}

void frmemail::AttachFile(const QString& file) {
    ui_->lblattatch->setText(file);
    ui_->lblattatch->setToolTip(file.toHtmlEscaped());
    ui_->cmdremove->setText(file.isEmpty() ? "&Attatch" : "&Remove");
}

mail::OperatorMail frmemail::Typed() const {
    return {ui_->txtmailto->text().toStdString(),     ui_->txtmailcc->text().toStdString(),
            ui_->txtmailbcc->text().toStdString(),    ui_->txtsubject->text().toStdString(),
            ui_->txtmsg->toPlainText().toStdString(), ui_->lblattatch->text().toStdString()};
}

QWidget& frmemail::FieldOf(mail::MailField field) const {
    switch (field) {
        case mail::MailField::Cc:
            return *ui_->txtmailcc;
        case mail::MailField::Bcc:
            return *ui_->txtmailbcc;
        case mail::MailField::Attachment:
            return *ui_->cmdremove;
        default:
            return *ui_->txtmailto;
    }
}

void frmemail::cmdmail() {
    mail::OperatorMail mail = Typed();
    const auto composed = mail::Compose(mail, mail::ReadMailServer(desk_.dbconn));
    if (const auto* fault = std::get_if<mail::MailFault>(&composed)) {
        FieldOf(fault->field).setFocus();
        Show(QString::fromStdString(fault->text));
        return;
    }
    mail::NameWhatIsEmpty(mail);
    ui_->txtsubject->setText(QString::fromStdString(mail.subject));
    if (ui_->txtmsg->toPlainText().isEmpty()) {
        ui_->txtmsg->setPlainText(QString::fromStdString(mail.text));
    }
    AskToSend(mail, std::get<mail::MailMessage>(composed));
}

void frmemail::AskToSend(const mail::OperatorMail& mail, const mail::MailMessage& message) {
    const QString question = "Send this mail?\n" + Line("To", message.to) + Line("Cc", message.cc) +
                             Line("Bcc", message.bcc) + Line("Subject", mail.subject) +
                             Line("Attachment", message.attachmentName);
    Ask(question, [this, message] { Guarded([&] { Send(message); }); });
}

void frmemail::Send(const mail::MailMessage& message) {
    mail_.Send(message, mail::ReadMailServer(desk_.dbconn));
    ShowState();
    ui_->cmdstop->setFocus();
}

void frmemail::Ended(bool sent, const QString& answer) {
    const bool closing = closing_;
    closing_ = false;
    if (sent) {
        Reset();
    } else {
        ShowState();
        ui_->cmdmail->setFocus();
    }
    if (sent && closing) {
        Close();
    } else if (!sent) {
        Show(answer);
    }
}

void frmemail::cmdCancel() {
    if (mail_.Sending()) {
        closing_ = true;
        ShowState();
        return;
    }
    Close();
}

}  // namespace desk
