#pragma once

#include <string>

#include "core/Database.h"
#include "mail/Mail.h"

// What the mails of this desk are made with: the row of email_settings and the row of mail_server.
namespace mail {

// The scheduled mail's addressees and texts. Each of the three fields holds one address or is empty.
struct EmailSettings {
    std::string to;
    std::string cc;
    std::string bcc;
    std::string subject;
    std::string message;
};

// As they stand; all empty when there is no row. Throws DatabaseError.
EmailSettings ReadEmailSettings(core::Database& dbconn);
MailServer ReadMailServer(core::Database& dbconn);

// Puts both rows in the place of whatever rows there were, or leaves everything as it was. Throws DatabaseError.
void SaveMailSettings(core::Database& dbconn, const EmailSettings& settings, const MailServer& server);

// The scheduled mail of these settings, without its report and its sender; nobody's when there is no addressee.
MailMessage ScheduledMail(const EmailSettings& settings);

// A short mail by which an operator sees whether the settings work: like the scheduled one, and it says what it is.
MailMessage TestMail(const EmailSettings& settings, const MailServer& server);

}  // namespace mail
