#pragma once

#include <memory>

#include "desk/kit/Page.h"
#include "desk/mail/OutgoingMail.h"
#include "mail/OperatorMail.h"

namespace Ui {
class frmemail;
}

namespace desk {

// An operator writes a mail, with a file if need be. It can be written between login and logoff only, and each mail
// that is sent ends that.
class frmemail : public Page {
    Q_OBJECT

  public:
    explicit frmemail(Desk& desk);
    ~frmemail() override;

  private:
    void cmdlogin();
    void cmdlogoff();
    void cmdaddressees();
    void cmdremove();
    void cmdmail();
    void cmdCancel();

    void Reset();
    void ShowState();
    void TakeAddressees();
    void AttachFile(const QString& file);
    mail::OperatorMail Typed() const;
    void AskToSend(const mail::OperatorMail& mail, const mail::MailMessage& message);
    void Send(const mail::MailMessage& message);
    void Ended(bool sent, const QString& answer);
    QWidget& FieldOf(mail::MailField field) const;

    bool loggedIn_ = false;
    bool closing_ = false;  // as soon as the mail is out
    OutgoingMail mail_;
    std::unique_ptr<Ui::frmemail> ui_;
};

}  // namespace desk
