#include "mail/Mail.h"

#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "collection/DayLine.h"
#include "collection/Outcome.h"
#include "mail/EmailSettings.h"
#include "reports/DailyReport.h"

namespace collection {

namespace {

constexpr double settleMs = 500;  // between the report and its mail
constexpr std::uintmax_t largestAttachment = 25U << 20U;
constexpr std::int64_t mostUnsent = 30;
constexpr std::int64_t secondsAWeek = 7 * 86400;

std::string DayText(const std::string& made) {
    const auto at = MomentOf(made);
    return at ? core::DateText(*at) : made;
}

// What the subject says behind its own words: "2 missing, 1 partly".
std::string MissingText(core::Database& dbconn, const core::DateTime& day) {
    const DayCount count = CountDay(dbconn, day, day);
    std::string text = count.missing > 0 ? std::to_string(count.missing) + " missing" : "";
    if (count.partly > 0) {
        text += (text.empty() ? "" : ", ") + std::to_string(count.partly) + " partly";
    }
    return text;
}

// Makes the report of a day and keeps it as a mail.
void KeepReport(core::Database& dbconn, const core::MAIN_Module& shared, const core::DateTime& day,
                const core::DateTime& now, core::Feedback& feedback) {
    makereport_daily(dbconn, day, now, feedback);
    WriteDailyReport(dbconn, day, now, shared.dailyReportPath);
    MailMessage report;
    Attach(report, shared.dailyReportPath);
    dbconn.Execute("insert into unsent_mail(made, missing, report) values(?,?,?)",
                   {core::IsoText(now), MissingText(dbconn, day), report.attachment});
}

void GiveUpOldest(core::Database& dbconn, core::Logs& logs, const core::DateTime& now) {
    const std::string weekAgo = core::IsoText(core::FromSeconds(core::ToSeconds(now) - secondsAWeek));
    for (const core::Row& row :
         dbconn.Query("select id, made from unsent_mail where made < ? or id not in (select id from unsent_mail order "
                      "by id desc limit ?)",
                      {weekAgo, mostUnsent})) {
        logs.WriteRtuErr("The mail of " + DayText(row.Text("made")) + " was never sent and is given up");
        dbconn.Execute("delete from unsent_mail where id=?", {row[0]});
    }
}

MailMessage UnsentMail(MailMessage message, const core::MAIN_Module& shared, const core::Row& row,
                       const core::DateTime& now) {
    const std::string made = row.Text("made");
    const std::string missing = row.Text("missing");
    message.written = MomentOf(made).value_or(now);
    message.unique = "1." + row.Text("id");
    if (core::DateText(*message.written) != core::DateText(now)) {
        message.subject += " of " + core::DateText(*message.written);
    }
    message.subject += missing.empty() ? "" : ": " + missing;
    message.attachmentName = shared.dailyReportPath.filename().string();
    message.attachment = row.Text("report");
    return message;
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
    if (!HasAddressee(ScheduledMail(ReadEmailSettings(dbconn)))) {
        return;
    }
    feedback.Status("Sending Mail");
    try {
        KeepReport(dbconn, shared, day, clock.Now(), feedback);
    } catch (const std::exception& failure) {
        logs.WriteRtuErr(std::string("Mail not sent: ") + failure.what());
        return;
    }
    clock.WaitMs(settleMs, ended);
    SendUnsent(dbconn, shared, clock, feedback, logs, transport, ended);
}

void SendUnsent(core::Database& dbconn, const core::MAIN_Module& shared, core::Clock& clock, core::Feedback& feedback,
                core::Logs& logs, MailTransport& transport, const std::function<bool()>& ended) {
    GiveUpOldest(dbconn, logs, clock.Now());
    while (const auto row = dbconn.First("select * from unsent_mail order by id limit 1")) {
        const MailMessage settings = ScheduledMail(ReadEmailSettings(dbconn));
        if (!HasAddressee(settings) || ended()) {
            return;
        }
        const MailServer server = ReadMailServer(dbconn);
        MailMessage message = UnsentMail(settings, shared, *row, clock.Now());
        message.sender = Sender(server, message);
        const MailOutcome outcome = transport.Send(message, server, clock, ended);
        if (!outcome.sent) {
            logs.WriteRtuErr("Mail not sent: " + outcome.reason);
            return;
        }
        dbconn.Execute("delete from unsent_mail where id=?", {(*row)[std::size_t{0}]});
        feedback.Status("Mail Sent");
    }
}

}  // namespace collection
