#pragma once

#include <functional>

#include "collection/Scheduler.h"
#include "core/Clock.h"
#include "mail/Mail.h"
#include "reading/Workplace.h"

namespace reports {

// The daily report by mail. A report is first a row of unsent_mail, and goes from there until a server has taken it.
class ReportMail final : public collection::Reporter {
  public:
    ReportMail(reading::Workplace& place, mail::MailTransport& transport) : place_(place), transport_(transport) {}

    // The mail behind a minute's collections: to whom email_settings says, with the daily report of `day`, the contract
    // hour that was served. Its subject says how many of the stations due by then are missing. Without an addressee
    // nothing happens. A failure leaves the last status text and a line in RTU_Err.log. Throws DatabaseError.
    void sendmail(const core::DateTime& day, const std::function<bool()>& ended) override;

    // Sends the reports that are kept in unsent_mail, the oldest first, each with its own date, to whom the settings
    // say now; the first that fails ends it. One that could not be sent for a week is given up, as is the oldest of
    // more than 30, with a line in RTU_Err.log. A mail keeps its Message-ID, so one that was taken just before a power
    // cut is known as the same. Throws DatabaseError.
    void SendUnsent(const std::function<bool()>& ended) override;

  private:
    reading::Workplace& place_;
    mail::MailTransport& transport_;
};

}  // namespace reports
