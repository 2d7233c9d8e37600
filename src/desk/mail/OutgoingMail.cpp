#include "desk/mail/OutgoingMail.h"

#include <QPointer>

#include "collection/Scheduler.h"
#include "core/Clock.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "desk/kit/Navigator.h"

namespace desk {

struct OutgoingMail::Parcel {
    Desk& desk;
    QPointer<OutgoingMail> from;  // null once its page is gone
    std::shared_ptr<bool> stopped;
    mail::MailMessage message;
    mail::MailServer server;
};

void OutgoingMail::Send(mail::MailMessage message, mail::MailServer server) {
    stopped_ = std::make_shared<bool>(false);
    desk_.feedback.Status("Sending Mail");
    auto parcel = std::make_shared<Parcel>(Parcel{desk_, this, stopped_, std::move(message), std::move(server)});
    desk_.clock.Start([parcel] { Deliver(*parcel); });
}

void OutgoingMail::Deliver(const Parcel& parcel) {
    Desk& desk = parcel.desk;
    const auto ended = [&] { return *parcel.stopped || desk.scheduler.Leaving(); };
    const mail::MailOutcome outcome = desk.mail.Send(parcel.message, parcel.server, desk.clock, ended);
    if (desk.scheduler.Leaving()) {
        return;
    }
    const bool isStopped = *parcel.stopped && !outcome.sent;
    const std::string answer = outcome.sent ? "Mail Sent"
                               : isStopped  ? "The mail was stopped"
                                            : "Mail not sent: " + outcome.reason;
    desk.feedback.Status(answer);
    if (!outcome.sent && !isStopped) {
        desk.logs.WriteRtuErr(answer);
    }
    if (parcel.from) {
        parcel.from->End(outcome.sent, QString::fromStdString(answer));
    }
}

void OutgoingMail::Stop() {
    if (stopped_) {
        *stopped_ = true;
        desk_.clock.Wake();
    }
}

void OutgoingMail::End(bool sent, const QString& answer) {
    stopped_.reset();
    Q_EMIT Ended(sent, answer);
}

}  // namespace desk
