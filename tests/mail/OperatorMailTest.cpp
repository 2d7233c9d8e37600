#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>

#include "mail/EmailSettings.h"
#include "mail/OperatorMail.h"
#include "mail/SmtpTransport.h"
#include "support/CollectionDesk.h"
#include "support/MailSink.h"

namespace {

using mail::MailField;
using mail::OperatorMail;

const mail::MailServer server{"", "", "", "desk@here"};

TEST(OperatorMail, SaysWhatKeepsItFromGoingAndWhere) {
    const support::ScratchDirectory files;
    const auto large = files.path / "large";
    std::ofstream(large).close();
    std::filesystem::resize_file(large, (25U << 20U) + 1);
    const mail::MailServer wrong{"", "", "", "a;b"};
    const struct {
        OperatorMail mail;
        mail::MailServer server;
        MailField field;
        const char* text;
    } cases[] = {
        {{" ", "", "\t", "s", "t", {}}, server, MailField::To, "Specify Mail Address"},
        {{"a@x,b@x", "", "", "s", "t", {}}, server, MailField::To, "\"a@x,b@x\" is not one mail address"},
        {{"a@x", "b@x c@x", "", "", "", {}}, server, MailField::Cc, "\"b@x c@x\" is not one mail address"},
        {{"", "", "Bo <b@x>", "", "", {}}, server, MailField::Bcc, "\"Bo <b@x>\" is not one mail address"},
        {{"a@x", "", "", "", "", {}}, wrong, MailField::Sender, "Sender: \"a;b\" is not one mail address"},
        {{"a@x", "", "", "", "", files.path / "no.txt"}, server, MailField::Attachment, "no.txt is not there"},
        {{"a@x", "", "", "", "", "/dev/zero"}, server, MailField::Attachment, "zero is not a file"},
        {{"a@x", "", "", "", "", large},
         server,
         MailField::Attachment,
         "large is larger than 25 MB, which no mail server takes"},
    };
    for (const auto& c : cases) {
        const auto composed = mail::Compose(c.mail, c.server);
        const auto* fault = std::get_if<mail::MailFault>(&composed);
        ASSERT_NE(fault, nullptr) << c.text;
        EXPECT_EQ(fault->text, c.text);
        EXPECT_EQ(fault->field, c.field) << c.text;
    }
}

TEST(OperatorMail, FilesOfEveryNameAndKindArriveWhole) {
    support::MailSink sink;
    support::CollectionDesk desk;
    mail::SmtpTransport smtp;
    std::string bytes;
    for (int i = 0; i < 300000; ++i) {
        bytes += static_cast<char>(i * 7 + i / 256);
    }
    int number = 0;
    for (const std::string name : {"day's \"5%\".rtf", "Süd Öst.xls", "plain.txt", "none"}) {
        const std::string content = name == "none" ? "" : bytes;
        const support::ScratchDirectory files;
        std::ofstream(files.path / name, std::ios::binary) << content;
        const auto composed =
            mail::Compose({"", "cc@x", "", "", "Two\nlines", files.path / name}, {sink.Url(), "", "", "desk@here"});
        const auto& message = std::get<mail::MailMessage>(composed);
        const auto outcome = smtp.Send(message, {sink.Url(), "", "", ""}, desk.clock, [] { return false; });
        ASSERT_TRUE(outcome.sent) << outcome.reason;
        EXPECT_EQ(sink.Received(++number, "name"), name);
        EXPECT_TRUE(sink.Received(number, "attachment") == content) << name;
        EXPECT_EQ(sink.Received(number, "text"), "Two\r\nlines ");
        EXPECT_EQ(sink.Received(number, "subject"), "None");
        EXPECT_EQ(sink.Received(number, "defects"), "");
        EXPECT_THAT(sink.Received(number), testing::StartsWith("X-Mail-From: desk@here\r\nX-Rcpt-To: cc@x\r\nC"));
    }
}

TEST(MailSettings, TakeThePlaceOfWhateverRowsThereWere) {
    support::CollectionDesk desk;
    EXPECT_EQ(mail::ReadEmailSettings(desk.dbconn).to, "");
    desk.dbconn.Execute("insert into email_settings(\"to\") values('old@x'), ('older@x')");
    mail::SaveMailSettings(desk.dbconn, {"o'neil@x", "", "b@x", "", "It's \"done\""},
                           {"smtps://h", "me", "pa'ss", "s@x"});
    EXPECT_EQ(desk.Count("email_settings"), 1);
    EXPECT_EQ(desk.Count("mail_server"), 1);
    EXPECT_EQ(desk.Count("email_settings where cc='' and subject=''"), 1);  // empty, not null
    const auto settings = mail::ReadEmailSettings(desk.dbconn);
    EXPECT_EQ(settings.to + settings.bcc + settings.message, "o'neil@xb@xIt's \"done\"");
    const auto stored = mail::ReadMailServer(desk.dbconn);
    EXPECT_EQ(stored.url + stored.user + stored.password + stored.sender, "smtps://hmepa'sss@x");
    desk.dbconn.Execute("drop table mail_server");
    EXPECT_THROW(mail::SaveMailSettings(desk.dbconn, {}, {}), core::DatabaseError);
    EXPECT_EQ(mail::ReadEmailSettings(desk.dbconn).to, "o'neil@x");
}

}  // namespace
