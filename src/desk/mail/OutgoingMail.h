#pragma once

#include <QObject>
#include <memory>

#include "desk/kit/Desk.h"
#include "mail/Mail.h"

namespace desk {

// A mail on its way from a page. The desk goes on meanwhile: the mail can be stopped, the page may be closed, and the
// schedule may run in the wait for the server. None of that may end below the mail what it still works with, so the
// sending itself belongs to the event loop, and this object only hears of it.
class OutgoingMail : public QObject {
    Q_OBJECT

  public:
    OutgoingMail(Desk& desk, QObject* page) : QObject(page), desk_(desk) {}

    // The mail goes as soon as the present command is over; Ended tells how it went, unless the program ends. While
    // stations are being collected it does not go, for the run below would stand still as long as the server is slow.
    void Send(mail::MailMessage message, mail::MailServer server);

    void Stop();
    bool Sending() const { return stopped_ != nullptr; }

  Q_SIGNALS:
    // `answer` says in the operator's words how it went.
    void Ended(bool sent, const QString& answer);

  private:
    struct Parcel;
    static void Deliver(const Parcel& parcel);
    void End(bool sent, const QString& answer);

    Desk& desk_;
    std::shared_ptr<bool> stopped_;  // none while nothing is sent
};

}  // namespace desk
