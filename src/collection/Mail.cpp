#include "collection/Mail.h"

#include <exception>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "collection/DailyReport.h"
#include "collection/EmailSettings.h"

namespace collection {

namespace {

constexpr double settleMs = 500;  // between the report and its mail
constexpr std::uintmax_t largestAttachment = 25U << 20U;

// The addressees and the texts; nothing when there is nobody to mail to.
std::optional<MailMessage> Compose(core::Database& dbconn) {
    MailMessage message = ScheduledMail(ReadEmailSettings(dbconn));
    if (!HasAddressee(message)) {
        return std::nullopt;
    }
    return message;
}

// Makes the report and takes it along at once: a screen may make one of another day while the mail is on its way.
void AttachReport(core::Database& dbconn, const core::MAIN_Module& shared, const core::DateTime& day,
                  core::Feedback& feedback, MailMessage& message) {
    makereport_daily(dbconn, day, feedback);
    WriteDailyReport(dbconn, day, shared.dailyReportPath);
    Attach(message, shared.dailyReportPath);
}

}  // namespace

std::string Sender(const MailServer& server, const MailMessage& message) {
    if (!server.sender.empty()) {
        return server.sender;
    }
    return !message.to.empty() ? message.to : !message.cc.empty() ? message.cc : message.bcc;
}

void Attach(MailMessage& message, const std::filesystem::path& file) {
    const std::string name = file.filename().string();
    std::error_code failure;
    // A pipe or a device would never come to its end.
    if (!std::filesystem::is_regular_file(file, failure)) {
        throw std::runtime_error(name + (std::filesystem::exists(file, failure) ? " is not a file" : " is not there"));
    }
    if (std::filesystem::file_size(file, failure) > largestAttachment) {
        throw std::runtime_error(name + " is larger than 25 MB, which no mail server takes");
    }
    std::ifstream in(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.is_open() || in.bad()) {
        throw std::runtime_error(name + " cannot be read");
    }
    message.attachmentName = name;
    message.attachment = std::move(bytes);
}

void sendmail(core::Database& dbconn, const core::MAIN_Module& shared, core::Clock& clock, const core::DateTime& day,
              core::Feedback& feedback, core::Logs& logs, MailTransport& transport,
              const std::function<bool()>& ended) {
    MailOutcome outcome;
    try {
        auto message = Compose(dbconn);
        if (!message) {
            return;
        }
        feedback.Status("Sending Mail");
        const MailServer server = ReadMailServer(dbconn);
        message->sender = Sender(server, *message);
        AttachReport(dbconn, shared, day, feedback, *message);
        clock.WaitMs(settleMs, ended);
        outcome = transport.Send(*message, server, clock, ended);
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
