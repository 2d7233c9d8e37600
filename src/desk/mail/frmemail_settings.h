#pragma once

#include <memory>

#include "desk/kit/Page.h"
#include "desk/mail/OutgoingMail.h"
#include "mail/EmailSettings.h"
#include "mail/OperatorMail.h"

namespace Ui {
class frmemail_settings;
}

namespace desk {

// To whom the scheduled mail goes, and by which server all mail goes; with a test of what stands in the fields.
class frmemail_settings : public Page {
    Q_OBJECT

  public:
    explicit frmemail_settings(Desk& desk);
    ~frmemail_settings() override;

  private:
    void Load();
    void cmdsave();
    void cmdtest();
    void cmdCancel();

    void ShowState();
    void Ended(const QString& answer);
    mail::EmailSettings Settings() const;
    mail::MailServer Server() const;
    QWidget& FieldOf(mail::MailField field) const;

    bool closing_ = false;  // as soon as the mail has ended
    OutgoingMail mail_;
    std::unique_ptr<Ui::frmemail_settings> ui_;
};

}  // namespace desk
