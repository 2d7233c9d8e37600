#include "collection/Mail.h"

#include <exception>
#include <optional>

#include "collection/DailyReport.h"
#include "core/Text.h"

namespace collection {

namespace {

constexpr double settleMs = 500;  // between the report and its mail

std::string Or(const std::string& text, const char* whenEmpty) {
    return text.empty() ? whenEmpty : text;
}

// The addressees and the texts; nothing when there is nobody to mail to.
std::optional<MailMessage> Compose(core::Database& dbconn) {
    const auto row = dbconn.First("select * from email_settings");
    if (!row) {
        return std::nullopt;
    }
    MailMessage message;
    message.to = core::Trim(row->Text("to"));
    message.cc = core::Trim(row->Text("cc"));
    message.bcc = core::Trim(row->Text("bcc"));
    if (message.to.empty() && message.cc.empty() && message.bcc.empty()) {
        return std::nullopt;
    }
    message.subject = Or(row->Text("subject"), "Daily Progress Report");
    message.text = Or(row->Text("message"), "Daily Progress Report");
    return message;
}

// Who it comes from: as mail_server says, else the first addressee, who then at least knows the name.
std::string Sender(core::Database& dbconn, const MailMessage& message) {
    const auto row = dbconn.First("select sender from mail_server");
    const std::string sender = row ? core::Trim(row->Text("sender")) : std::string();
    if (!sender.empty()) {
        return sender;
    }
    return !message.to.empty() ? message.to : !message.cc.empty() ? message.cc : message.bcc;
}

}  // namespace

MailServer ReadMailServer(core::Database& dbconn) {
    const auto row = dbconn.First("select * from mail_server");
    MailServer server;
    if (row) {
        server = {core::Trim(row->Text("url")), row->Text("user"), row->Text("password")};
    }
    server.url = Or(server.url, "smtp://127.0.0.1:25");
    return server;
}

void sendmail(core::Database& dbconn, const core::MAIN_Module& shared, core::Clock& clock, core::Feedback& feedback,
              core::Logs& logs, MailTransport& transport, const std::function<bool()>& ended) {
    auto message = Compose(dbconn);
    if (!message) {
        return;
    }
    feedback.Status("Sending Mail");
    message->sender = Sender(dbconn, *message);
    message->attachment = shared.dailyReportPath;
    const core::DateTime today = clock.Now();
    makereport_daily(dbconn, today, feedback);
    clock.WaitMs(settleMs, ended);
    try {
        WriteDailyReport(dbconn, today, shared.dailyReportPath);
    } catch (const std::exception& failure) {
        logs.WriteRtuErr(std::string("Mail not sent: ") + failure.what());
        return;
    }
    const MailOutcome outcome = transport.Send(*message, ReadMailServer(dbconn), clock, ended);
    if (outcome.sent) {
        feedback.Status("Mail Sent");
    } else {
        logs.WriteRtuErr("Mail not sent: " + outcome.reason);
    }
}

}  // namespace collection
