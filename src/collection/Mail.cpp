#include "collection/Mail.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

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
    std::string sender = row ? core::Trim(row->Text("sender")) : std::string();
    if (!sender.empty()) {
        return sender;
    }
    return !message.to.empty() ? message.to : !message.cc.empty() ? message.cc : message.bcc;
}

std::string FileBytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (!in || !bytes) {
        throw std::runtime_error(file.filename().string() + " cannot be read");
    }
    return bytes.str();
}

// Makes the report and takes it along at once: a screen may make one of another day while the mail is on its way.
void AttachReport(core::Database& dbconn, const core::MAIN_Module& shared, const core::DateTime& day,
                  core::Feedback& feedback, MailMessage& message) {
    makereport_daily(dbconn, day, feedback);
    WriteDailyReport(dbconn, day, shared.dailyReportPath);
    message.attachmentName = shared.dailyReportPath.filename().string();
    message.attachment = FileBytes(shared.dailyReportPath);
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
    MailOutcome outcome;
    try {
        auto message = Compose(dbconn);
        if (!message) {
            return;
        }
        feedback.Status("Sending Mail");
        message->sender = Sender(dbconn, *message);
        AttachReport(dbconn, shared, clock.Now(), feedback, *message);
        clock.WaitMs(settleMs, ended);
        outcome = transport.Send(*message, ReadMailServer(dbconn), clock, ended);
    } catch (const std::exception& failure) {
        outcome.reason = failure.what();
    }
    if (outcome.sent) {
        feedback.Status("Mail Sent");
    } else {
        logs.WriteRtuErr("Mail not sent: " + outcome.reason);
    }
}

}  // namespace collection
