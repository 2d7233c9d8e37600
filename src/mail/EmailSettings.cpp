#include "mail/EmailSettings.h"

#include "core/Text.h"

namespace mail {

EmailSettings ReadEmailSettings(core::Database& dbconn) {
    const auto row = dbconn.First("select * from email_settings");
    if (!row) {
        return {};
    }
    return {row->Text("to"), row->Text("cc"), row->Text("bcc"), row->Text("subject"), row->Text("message")};
}

MailServer ReadMailServer(core::Database& dbconn) {
    const auto row = dbconn.First("select * from mail_server");
    if (!row) {
        return {};
    }
    return {core::Trim(row->Text("url")), row->Text("user"), row->Text("password"), core::Trim(row->Text("sender"))};
}

void SaveMailSettings(core::Database& dbconn, const EmailSettings& settings, const MailServer& server) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from email_settings");
        dbconn.Execute("insert into email_settings(\"to\", cc, bcc, subject, message) values(?,?,?,?,?)",
                       {settings.to, settings.cc, settings.bcc, settings.subject, settings.message});
        dbconn.Execute("delete from mail_server");
        dbconn.Execute("insert into mail_server(url, user, password, sender) values(?,?,?,?)",
                       {server.url, server.user, server.password, server.sender});
    });
}

MailMessage ScheduledMail(const EmailSettings& settings) {
    MailMessage message;
    message.to = core::Trim(settings.to);
    message.cc = core::Trim(settings.cc);
    message.bcc = core::Trim(settings.bcc);
    message.subject = settings.subject.empty() ? "Daily Progress Report" : settings.subject;
    message.text = settings.message.empty() ? "Daily Progress Report" : settings.message;
    return message;
}

MailMessage TestMail(const EmailSettings& settings, const MailServer& server) {
    MailMessage message = ScheduledMail(settings);
    message.sender = Sender(server, message);
    message.subject = "Test: " + message.subject;
    message.text = "This is a test of the mail settings. The mail itself says:\n\n" + message.text;
    return message;
}

}  // namespace mail
