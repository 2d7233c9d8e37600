#include <gmock/gmock.h>

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>

#include "desk/mail/frmemail.h"
#include "desk/mail/frmemail_settings.h"
#include "desk/mail/frmemaildetails.h"
#include "mail/EmailSettings.h"
#include "mail/SmtpTransport.h"
#include "support/MailSink.h"
#include "support/ScreenDesk.h"

using namespace support;
using testing::HasSubstr;
using testing::Not;

namespace {

// A server that takes its time.
struct SlowMail final : mail::MailTransport {
    std::vector<mail::MailMessage> sent;
    double takesMs = 0;
    mail::MailOutcome outcome{true, ""};

    mail::MailOutcome Send(const mail::MailMessage& message, const mail::MailServer&, core::Clock& clock,
                           const std::function<bool()>& ended) override {
        sent.push_back(message);
        return clock.WaitMs(takesMs, ended) ? outcome : mail::MailOutcome{false, "the program ends"};
    }
};

struct MailScreens : testing::Test {
    ScreenDesk screen;
    SlowMail slow;
    mail::SmtpTransport smtp;
    desk::Desk slowDesk = With(slow);
    desk::Desk smtpDesk = With(smtp);

    desk::frmemaildetails home{slowDesk};  // below what a test opens

    MailScreens() { screen.window.Home(&home); }

    desk::Desk With(mail::MailTransport& mail) {
        return {screen.place, screen.shared.addressees, screen.scheduler, mail, screen.window};
    }
    template <class Form>
    Form& Open(desk::Desk& desk) {
        auto* form = new Form(desk);
        screen.window.resize(1024, 680);
        screen.window.Open(form);
        screen.window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&screen.window));
        return *form;
    }
    desk::frmemail& LoggedIn(desk::Desk& desk) {
        auto& form = Open<desk::frmemail>(desk);
        Click(form, "cmdlogin");
        return form;
    }
    // The mail goes when the question is answered.
    std::string SendAndAnswer(const desk::frmemail& form, QMessageBox::StandardButton answer) {
        Click(form, "cmdmail");
        const std::string question = Answer(form, answer);
        screen.Settle();
        QCoreApplication::processEvents();
        return question;
    }
    std::filesystem::path File(const std::string& name, const std::string& content) const {
        std::ofstream(screen.shared.directory / name, std::ios::binary) << content;
        return screen.shared.directory / name;
    }
};

void Choose(const QWidget& form, const std::filesystem::path& file) {
    Click(form, "cmdremove");
    auto* dialog = form.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    The<QLineEdit>(*dialog, "fileNameEdit").setText(QString::fromStdString(file.string()));
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
    QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Return(form);
}

// Which of the controls that change their state can be used.
std::string Usable(const QWidget& form) {
    return support::Usable(form, {"cmdlogin", "cmdlogoff", "cmdmail", "cmdremove", "cmdstop", "txtmailto", "txtmsg"});
}

const std::string loaded = "cmdlogin ";
const std::string writing = "cmdlogoff cmdmail cmdremove txtmailto txtmsg ";
const std::string sending = "cmdstop ";

TEST_F(MailScreens, AMailIsWrittenAskedForAndSent) {
    const auto& form = Open<desk::frmemail>(slowDesk);
    EXPECT_EQ(Usable(form), loaded);
    EXPECT_EQ(Focus(form), "cmdlogin");
    Click(form, "cmdlogin");
    EXPECT_EQ(Usable(form), writing);
    EXPECT_EQ(Focus(form), "txtmailto");
    Click(form, "cmdmail");
    EXPECT_EQ(Answer(form), "Specify Mail Address");
    EXPECT_EQ(Focus(form), "txtmailto");
    // Texts that are empty become "None".
    AltKey(form, Qt::Key_C);
    EXPECT_EQ(Focus(form), "txtmailcc");
    QTest::keyClicks(screen.window.focusWidget(), " c@x ");
    EXPECT_EQ(SendAndAnswer(form, QMessageBox::No), "Send this mail?\n\nCc: c@x\nSubject: None");
    EXPECT_TRUE(slow.sent.empty());
    EXPECT_EQ(Text(form, "txtsubject") + Text(form, "txtmsg"), "NoneNone");
    slow.takesMs = 5000;
    std::string during;
    screen.clock.After(1000, [&] { during = Usable(form); });
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_EQ(during, sending);
    EXPECT_EQ(Usable(form), loaded);
    EXPECT_EQ(Text(form, "txtmailcc"), "");
    EXPECT_THAT(screen.feedback.status, testing::ElementsAre("Sending Mail", "Mail Sent"));
    ASSERT_EQ(slow.sent.size(), 1U);
    const auto& mail = slow.sent[0];
    EXPECT_EQ(mail.to + "|" + mail.cc + "|" + mail.bcc + "|" + mail.subject + "|" + mail.text + "|" + mail.sender,
              "|c@x||None|None |c@x");
}

TEST_F(MailScreens, AMailThatIsStoppedLeavesItsFields) {
    const auto& form = LoggedIn(slowDesk);
    Type(form, "txtmailto", "a@x");
    slow.takesMs = 60000;
    screen.clock.After(1000, [&] { Click(form, "cmdstop"); });
    const auto before = screen.clock.Elapsed();
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_LT(screen.clock.Elapsed() - before, 1100U);
    EXPECT_EQ(Answer(form), "The mail was stopped");
    EXPECT_EQ(Usable(form), writing);
    EXPECT_EQ(Text(form, "txtmailto"), "a@x");
    EXPECT_EQ(Focus(form), "cmdmail");
}

// It closes behind its mail, unless the answer must be read.
TEST_F(MailScreens, AFormThatGoesWhileItsMailIsOnTheWay) {
    slow.takesMs = 5000;
    for (const bool sent : {false, true}) {
        slow.outcome = {sent, "550"};
        const QPointer<desk::frmemail> form = &LoggedIn(slowDesk);
        Type(*form, "txtmailto", "a@x");
        screen.clock.After(1000, [&] {
            QTest::keyClick(form.data(), Qt::Key_Escape);
            QCoreApplication::processEvents();
            EXPECT_EQ(screen.window.Front(), form);
        });
        SendAndAnswer(*form, QMessageBox::Yes);
        QCoreApplication::processEvents();
        EXPECT_EQ(screen.window.Front() == form, !sent);
        if (!sent) {
            EXPECT_EQ(Answer(*form), "Mail not sent: 550");
        }
    }
}

TEST_F(MailScreens, AMailGoesBesideARun) {
    demo::DemoStation station{"Mill", "TeleFlow", "Modbus", "RTU", 1, 1};
    station.contracthour = "08:00";
    demo::AddStation(screen.dbconn, station);
    screen.OpenField();
    const auto& form = LoggedIn(slowDesk);
    Type(form, "txtmailto", "a@x");
    screen.clock.Run(30000);
    screen.clock.After(700, [&] {
        ASSERT_TRUE(screen.scheduler.Busy());
        Click(form, "cmdmail");
        Answer(form, QMessageBox::Yes);
    });
    screen.Tick();
    EXPECT_EQ(slow.sent.size(), 1U);
}

TEST_F(MailScreens, AddresseesAndSettingsAreKeptAsTyped) {
    const auto& form = LoggedIn(slowDesk);
    Click(form, "cmdaddressees");
    const auto& details = *screen.window.Front();
    Type(details, "txtecc", "c@x");
    Click(details, "cmdsave");
    EXPECT_EQ(Answer(details), "Please specify email to address it is necessary");
    EXPECT_EQ(Focus(details), "txteto");
    Type(details, "txteto", "a@x");
    Click(details, "cmdsave");
    ASSERT_EQ(screen.window.Front(), &form);
    EXPECT_EQ(Text(form, "txtmailto") + Text(form, "txtmailcc"), "a@xc@x");
    EXPECT_EQ(Text(LoggedIn(slowDesk), "txtmailto"), "a@x");

    const auto& settings = Open<desk::frmemail_settings>(slowDesk);
    The<QPlainTextEdit>(settings, "txtmsg").setPlainText("One\nTwo");
    Type(settings, "txtmailto", "a@x,b@x");
    Click(settings, "cmdsave");
    EXPECT_EQ(Answer(settings), "The settings are saved, but no mail will go: \"a@x,b@x\" is not one mail address");
    EXPECT_EQ(Focus(settings), "txtmailto");
    const auto& again = Open<desk::frmemail_settings>(slowDesk);
    EXPECT_EQ(Text(again, "txtmailto") + Text(again, "txtmsg"), "a@x,b@xOne\nTwo");
    Type(again, "txtmailto", "new@x");
    Click(again, "cmdsave");
    EXPECT_EQ(Answer(again), "The mail settings are saved");
    screen.dbconn.Execute("drop table mail_server");
    Type(again, "txtmailto", "lost@x");
    Click(again, "cmdsave");
    EXPECT_EQ(screen.feedback.status.back(), "no such table: mail_server");
    EXPECT_EQ(mail::ReadEmailSettings(screen.dbconn).to, "new@x");
}

TEST_F(MailScreens, ATestMailTellsWhatTheServerSays) {
    MailSink sink;
    const auto& form = Open<desk::frmemail_settings>(smtpDesk);
    Click(form, "cmdtest");
    screen.Settle();
    EXPECT_EQ(Answer(form), "Specify Mail Address");
    Type(form, "txturl", QString::fromStdString(sink.Url()));
    Type(form, "txtmailto", "refused@x");
    Type(form, "txtsender", "desk@here");
    screen.Press(form, "cmdtest");
    EXPECT_THAT(Text(form, "lblanswer"), HasSubstr("550 no such user"));
    // This server has no TLS: the password does not go to it.
    Type(form, "txtmailto", "a@x");
    Type(form, "txtserveruser", "me");
    Type(form, "txtserverpassword", "Secret7");
    EXPECT_NE(The<QLineEdit>(form, "txtserverpassword").displayText(), "Secret7");
    screen.Press(form, "cmdtest");
    EXPECT_THAT(Text(form, "lblanswer"), testing::AllOf(HasSubstr("Mail not sent"), Not(HasSubstr("Secret7"))));
    EXPECT_THAT(screen.RtuErr(), Not(HasSubstr("Secret7")));
    EXPECT_THAT(screen.feedback.status, testing::Each(Not(HasSubstr("Secret7"))));
    EXPECT_TRUE(sink.Nothing());
    Type(form, "txtserveruser", "");
    screen.Press(form, "cmdtest");
    EXPECT_EQ(Text(form, "lblanswer"), "Mail Sent");
    EXPECT_THAT(sink.Received(1), testing::StartsWith("X-Mail-From: desk@here\r\nX-Rcpt-To: a@x\r\n"));
    EXPECT_EQ(screen.Count("email_settings"), 0);  // nothing was saved for it
}

TEST_F(MailScreens, AMailWithAFileArrivesWhole) {
    MailSink sink;
    screen.dbconn.Execute("update mail_server set url=?, sender='desk@here'", {sink.Url()});
    const std::string content(200000, '\xA7');
    const auto& form = LoggedIn(smtpDesk);
    Type(form, "txtmailto", "a@x");
    Type(form, "txtmailbcc", "b@x");
    Type(form, "txtsubject", "Mill's day");
    Type(form, "txtmsg", "See the file.");
    EXPECT_EQ(Text(form, "cmdremove"), "&Attatch");
    const auto file = File("Mill <b>.xls", "x");
    Choose(form, file);
    EXPECT_EQ(Text(form, "lblattatch"), file.string());
    std::filesystem::remove(file);
    Click(form, "cmdmail");
    EXPECT_EQ(Answer(form), "Mill <b>.xls is not there");
    EXPECT_EQ(Focus(form), "cmdremove");
    EXPECT_EQ(Text(form, "cmdremove"), "&Remove");
    Click(form, "cmdremove");
    EXPECT_EQ(Text(form, "lblattatch"), "");
    Choose(form, File("Mill.xls", content));
    EXPECT_EQ(SendAndAnswer(form, QMessageBox::Yes),
              "Send this mail?\n\nTo: a@x\nBcc: b@x\nSubject: Mill's day\nAttachment: Mill.xls");
    EXPECT_EQ(Usable(form), loaded);
    EXPECT_THAT(sink.Received(1),
                testing::StartsWith("X-Mail-From: desk@here\r\nX-Rcpt-To: a@x\r\nX-Rcpt-To: b@x\r\nC"));
    EXPECT_EQ(sink.Received(1, "subject"), "Mill's day");
    EXPECT_EQ(sink.Received(1, "text"), "See the file. ");
    EXPECT_EQ(sink.Received(1, "name"), "Mill.xls");
    EXPECT_TRUE(sink.Received(1, "attachment") == content);
}

}  // namespace
