#include "reports/ReportMail.h"

#include <exception>
#include <string>

#include "collection/DayLine.h"
#include "mail/EmailSettings.h"
#include "reports/DailyReport.h"

namespace reports {

namespace {

constexpr double settleMs = 500;  // between the report and its mail
constexpr std::int64_t mostUnsent = 30;
constexpr std::int64_t secondsAWeek = 7 * 86400;

std::string DayText(const std::string& made) {
    const auto at = core::MomentOf(made);
    return at ? core::DateText(*at) : made;
}

// What the subject says behind its own words: "2 missing, 1 partly".
std::string MissingText(core::Database& dbconn, const core::DateTime& day) {
    const collection::DayCount count = collection::CountDay(dbconn, day, day);
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
    mail::MailMessage report;
    mail::Attach(report, shared.dailyReportPath);
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

mail::MailMessage UnsentMail(mail::MailMessage message, const core::MAIN_Module& shared, const core::Row& row,
                             const core::DateTime& now) {
    const std::string made = row.Text("made");
    const std::string missing = row.Text("missing");
    message.written = core::MomentOf(made).value_or(now);
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

void ReportMail::sendmail(const core::DateTime& day, const std::function<bool()>& ended) {
    if (!mail::HasAddressee(mail::ScheduledMail(mail::ReadEmailSettings(place_.dbconn)))) {
        return;
    }
    place_.feedback.Status("Sending Mail");
    try {
        KeepReport(place_.dbconn, place_.shared, day, place_.clock.Now(), place_.feedback);
    } catch (const std::exception& failure) {
        place_.logs.WriteRtuErr(std::string("Mail not sent: ") + failure.what());
        return;
    }
    place_.clock.WaitMs(settleMs, ended);
    SendUnsent(ended);
}

void ReportMail::SendUnsent(const std::function<bool()>& ended) {
    GiveUpOldest(place_.dbconn, place_.logs, place_.clock.Now());
    while (const auto row = place_.dbconn.First("select * from unsent_mail order by id limit 1")) {
        const mail::MailMessage settings = mail::ScheduledMail(mail::ReadEmailSettings(place_.dbconn));
        if (!mail::HasAddressee(settings) || ended()) {
            return;
        }
        const mail::MailServer server = mail::ReadMailServer(place_.dbconn);
        mail::MailMessage message = UnsentMail(settings, place_.shared, *row, place_.clock.Now());
        message.sender = mail::Sender(server, message);
        const mail::MailOutcome outcome = transport_.Send(message, server, place_.clock, ended);
        if (!outcome.sent) {
            place_.logs.WriteRtuErr("Mail not sent: " + outcome.reason);
            return;
        }
        place_.dbconn.Execute("delete from unsent_mail where id=?", {(*row)[std::size_t{0}]});
        place_.feedback.Status("Mail Sent");
    }
}

}  // namespace reports
