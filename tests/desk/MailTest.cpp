#include <gmock/gmock.h>

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <fstream>

#include "desk/mail/frmemail.h"
#include "desk/mail/frmemail_settings.h"
#include "desk/mail/frmemaildetails.h"
#include "mail/EmailSettings.h"
#include "mail/SmtpTransport.h"
#include "support/MailSink.h"
#include "support/ScreenDesk.h"

using support::Answer;
using support::Box;
using support::Click;
using support::Focus;
using support::The;
using support::Type;
using testing::ElementsAre;
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
    support::ScreenDesk screen;
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
    static std::string SendAndAnswer(const desk::frmemail& form, QMessageBox::StandardButton answer) {
        Click(form, "cmdmail");
        return Answer(form, answer);
    }
    std::filesystem::path File(const std::string& name, const std::string& content) const {
        std::ofstream(screen.shared.directory / name, std::ios::binary) << content;
        return screen.shared.directory / name;
    }
};

std::string Text(const QWidget& form, const char* field) {
    return The<QLineEdit>(form, field).text().toStdString();
}

std::string Caption(const QWidget& form, const char* command) {
    return The<QPushButton>(form, command).text().remove('&').toStdString();
}

void Choose(const QWidget& form, const std::filesystem::path& file) {
    Click(form, "cmdremove");
    auto* dialog = form.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    The<QLineEdit>(*dialog, "fileNameEdit").setText(QString::fromStdString(file.string()));
    EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
    QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    support::Return(form);
}

// Which of the controls that change their state can be used.
std::string Usable(const QWidget& form) {
    std::string usable;
    for (const char* name : {"cmdlogin", "cmdlogoff", "cmdmail", "cmdremove", "cmdstop", "cmdaddressees", "cmdCancel",
                             "txtmailto", "txtmailcc", "txtmailbcc", "txtsubject", "txtmsg"}) {
        usable += The(form, name).isEnabled() ? std::string(name).substr(3) + " " : "";
    }
    return usable;
}

const std::string loaded = "login addressees Cancel ";
const std::string writing = "logoff mail remove addressees Cancel mailto mailcc mailbcc subject msg ";
const std::string sending = "stop Cancel ";

TEST_F(MailScreens, CommandsAreUsableInTheirState) {
    const auto& form = Open<desk::frmemail>(slowDesk);
    EXPECT_EQ(Usable(form), loaded);
    EXPECT_EQ(Focus(form), "cmdlogin");
    Click(form, "cmdlogin");
    EXPECT_EQ(Usable(form), writing);
    EXPECT_EQ(Focus(form), "txtmailto");
    Type(form, "txtmailto", "a@x");
    Choose(form, File("a.txt", "a"));
    Click(form, "cmdlogoff");
    EXPECT_EQ(Usable(form), loaded);
    EXPECT_EQ(Text(form, "txtmailto"), "");
    EXPECT_EQ(Caption(form, "cmdremove"), "Attatch");
    Click(form, "cmdlogin");
    Type(form, "txtmailto", "a@x");
    slow.takesMs = 5000;
    std::string during;
    screen.clock.After(1000, [&] { during = Usable(form); });
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_EQ(during, sending);
    EXPECT_EQ(Usable(form), loaded);
    EXPECT_THAT(screen.feedback.status, ElementsAre("Sending Mail", "Mail Sent"));
}

TEST_F(MailScreens, OneAddresseeIsEnoughAndWhatIsEmptyIsNone) {
    const auto& form = LoggedIn(slowDesk);
    QTest::keyClick(screen.window.focusWidget(), Qt::Key_C, Qt::AltModifier);
    EXPECT_EQ(Focus(form), "txtmailcc");
    QTest::keyClicks(screen.window.focusWidget(), " c@x ");
    EXPECT_EQ(SendAndAnswer(form, QMessageBox::No), "Send this mail?\n\nCc: c@x\nSubject: None");
    EXPECT_TRUE(slow.sent.empty());
    EXPECT_EQ(Text(form, "txtsubject"), "None");
    EXPECT_EQ(The<QPlainTextEdit>(form, "txtmsg").toPlainText(), "None");
    SendAndAnswer(form, QMessageBox::Yes);
    ASSERT_EQ(slow.sent.size(), 1U);
    const auto& mail = slow.sent[0];
    EXPECT_EQ(mail.to + "|" + mail.cc + "|" + mail.bcc + "|" + mail.subject + "|" + mail.text + "|" + mail.sender,
              "|c@x||None|None |c@x");
}

TEST_F(MailScreens, WhatCannotGoIsSaidAndNothingIsSent) {
    const auto& form = LoggedIn(slowDesk);
    Click(form, "cmdmail");
    EXPECT_EQ(Answer(form), "Specify Mail Address");
    EXPECT_EQ(Focus(form), "txtmailto");
    The<QLineEdit>(form, "txtmailbcc").setText(QString(10000, 'a') + " b");
    Click(form, "cmdmail");
    EXPECT_THAT(Answer(form), HasSubstr("is not one mail address"));
    EXPECT_EQ(Focus(form), "txtmailbcc");
    Type(form, "txtmailbcc", "o'neil@x");
    const auto file = File("gone.txt", "x");
    Choose(form, file);
    std::filesystem::remove(file);
    Click(form, "cmdmail");
    EXPECT_EQ(Answer(form), "gone.txt is not there");
    EXPECT_EQ(Focus(form), "cmdremove");
    EXPECT_TRUE(slow.sent.empty());
}

TEST_F(MailScreens, TheFileIsThereAndGoneAgain) {
    const auto& form = LoggedIn(slowDesk);
    EXPECT_EQ(Caption(form, "cmdremove"), "Attatch");
    const auto file = File("Süd <b>.txt", "x");
    Choose(form, file);
    EXPECT_EQ(The<QLabel>(form, "lblattatch").text().toStdString(), file.string());
    EXPECT_EQ(Caption(form, "cmdremove"), "Remove");
    Click(form, "cmdremove");
    EXPECT_EQ(The<QLabel>(form, "lblattatch").text(), "");
    EXPECT_EQ(Caption(form, "cmdremove"), "Attatch");
    EXPECT_EQ(form.findChild<QFileDialog*>(), nullptr);
}

TEST_F(MailScreens, AMailThatIsStoppedOrRefusedLeavesItsFields) {
    const auto& form = LoggedIn(slowDesk);
    Type(form, "txtmailto", "a@x");
    slow.takesMs = 60000;
    screen.clock.After(1000, [&] { Click(form, "cmdstop"); });
    const auto before = screen.clock.Elapsed();
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_LT(screen.clock.Elapsed() - before, 1100U);
    EXPECT_EQ(Answer(form), "The mail was stopped");
    slow.outcome = {false, "RCPT failed: 550"};
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_EQ(Answer(form), "Mail not sent: RCPT failed: 550");
    EXPECT_EQ(Usable(form), writing);
    EXPECT_EQ(Text(form, "txtmailto"), "a@x");
    EXPECT_EQ(Focus(form), "cmdmail");
}

TEST_F(MailScreens, AFormThatIsClosedClosesBehindItsMail) {
    slow.takesMs = 5000;
    for (const bool sent : {false, true}) {
        slow.outcome.sent = sent;
        const QPointer<desk::frmemail> form = &LoggedIn(slowDesk);
        Type(*form, "txtmailto", "a@x");
        screen.clock.After(1000, [&] {
            QTest::keyClick(form.data(), Qt::Key_Escape);
            QCoreApplication::processEvents();
            EXPECT_EQ(screen.window.Front(), form);
        });
        SendAndAnswer(*form, QMessageBox::Yes);
        QCoreApplication::processEvents();
        EXPECT_EQ(screen.window.Front() == form, !sent);  // an answer that is bad must be read
        if (!sent) {
            EXPECT_THAT(Answer(*form), HasSubstr("Mail not sent"));
        }
    }
    EXPECT_EQ(slow.sent.size(), 2U);
}

TEST_F(MailScreens, AFormThatIsTakenAwayDoesNotTakeItsMailWithIt) {
    const QPointer<desk::frmemail> form = &LoggedIn(slowDesk);
    Type(*form, "txtmailto", "a@x");
    slow.takesMs = 5000;
    screen.clock.After(1000, [&] {
        screen.window.Home(&home);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(form.isNull());
    });
    SendAndAnswer(*form, QMessageBox::Yes);
    EXPECT_THAT(screen.feedback.status, ElementsAre("Sending Mail", "Mail Sent"));
}

TEST_F(MailScreens, ARunGoesOnInsideAMailAndNoMailInsideARun) {
    demo::DemoStation station{"Mill", "TeleFlow", "Modbus", "RTU", 1, 1};
    station.contracthour = "08:00";
    demo::AddStation(screen.dbconn, station);
    screen.OpenField();
    screen.dbconn.Execute("insert into email_settings(\"to\") values('day@x')");
    const auto& form = LoggedIn(slowDesk);
    Type(form, "txtmailto", "a@x");
    slow.takesMs = 60000;
    screen.clock.After(40000, [&] { screen.scheduler.Tick(); });
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_TRUE(screen.Master(1).Bool("sampledtoday"));
    EXPECT_EQ(screen.mail.sent.size(), 1U);
    EXPECT_THAT(screen.feedback.status, testing::Contains("Mail Sent").Times(2));
    EXPECT_EQ(Usable(form), loaded);

    Click(form, "cmdlogin");
    Type(form, "txtmailto", "a@x");
    screen.clock.Run(core::ToSeconds({2026, 3, 10, 8, 0, 0}) * 1000 - core::ToSeconds(screen.clock.Now()) * 1000);
    screen.clock.After(700, [&] {
        ASSERT_TRUE(screen.scheduler.Busy());
        SendAndAnswer(form, QMessageBox::Yes);
        EXPECT_THAT(Answer(form), HasSubstr("stations are being collected"));
    });
    screen.scheduler.Tick();
    EXPECT_EQ(slow.sent.size(), 1U);
    EXPECT_EQ(Text(form, "txtmailto"), "a@x");
}

TEST_F(MailScreens, TheEndOfTheProgramEndsAMailWithoutAWord) {
    const auto& form = LoggedIn(slowDesk);
    Type(form, "txtmailto", "a@x");
    slow.takesMs = 60000;
    screen.clock.After(1000, [&] { screen.scheduler.Leave(); });
    const auto before = screen.clock.Elapsed();
    SendAndAnswer(form, QMessageBox::Yes);
    EXPECT_LT(screen.clock.Elapsed() - before, 1100U);
    EXPECT_EQ(Box(form), nullptr);
}

TEST_F(MailScreens, AddresseesAreKeptForTheNextMails) {
    const auto& form = LoggedIn(slowDesk);
    Click(form, "cmdaddressees");
    const auto& details = dynamic_cast<desk::frmemaildetails&>(*screen.window.Front());
    Type(details, "txtecc", "c@x");
    Click(details, "cmdsave");
    EXPECT_EQ(Answer(details), "Please specify email to address it is necessary");
    EXPECT_EQ(Focus(details), "txteto");
    Type(details, "txteto", "a@x");
    Type(details, "txtesub", "It's");
    Click(details, "cmdsave");
    ASSERT_EQ(screen.window.Front(), &form);
    EXPECT_EQ(Text(form, "txtmailto") + Text(form, "txtmailcc") + Text(form, "txtsubject"), "a@xc@xIt's");

    Type(form, "txtmailto", "b@x");
    Click(form, "cmdaddressees");
    EXPECT_EQ(Text(*screen.window.Front(), "txtesub"), "It's");
    Type(*screen.window.Front(), "txteto", "z@x");
    Click(*screen.window.Front(), "cmdCancel");
    EXPECT_EQ(Text(form, "txtmailto"), "b@x");  // what was typed stays
    Click(form, "cmdCancel");
    const auto& next = Open<desk::frmemail>(slowDesk);
    EXPECT_EQ(Text(next, "txtmailto"), "");
    Click(next, "cmdlogin");
    EXPECT_EQ(Text(next, "txtmailto"), "a@x");
}

TEST_F(MailScreens, SettingsAreSavedAsTypedAndReadAgain) {
    const std::vector<const char*> lines = {"txtmailto", "txtmailcc",     "txtmailbcc",        "txtsubject",
                                            "txturl",    "txtserveruser", "txtserverpassword", "txtsender"};
    {
        const auto& form = Open<desk::frmemail_settings>(slowDesk);
        for (const char* line : lines) {
            EXPECT_EQ(Text(form, line), "") << line;
        }
        Type(form, "txtmailcc", "o'neil@x");
        The<QPlainTextEdit>(form, "txtmsg").setPlainText("One\nTwo");
        Type(form, "txtserverpassword", "Secret7");
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), "The mail settings are saved");
        Type(form, "txtmailto", "a@x,b@x");
        Click(form, "cmdsave");
        EXPECT_EQ(Answer(form), "The settings are saved, but no mail will go: \"a@x,b@x\" is not one mail address");
        EXPECT_EQ(Focus(form), "txtmailto");
        Click(form, "cmdCancel");
    }
    EXPECT_EQ(screen.Count("email_settings"), 1);
    const auto& form = Open<desk::frmemail_settings>(slowDesk);
    EXPECT_EQ(Text(form, "txtmailto") + Text(form, "txtmailcc"), "a@x,b@xo'neil@x");
    EXPECT_EQ(The<QPlainTextEdit>(form, "txtmsg").toPlainText(), "One\nTwo");
    screen.dbconn.Execute("drop table mail_server");
    Type(form, "txtmailto", "new@x");
    Click(form, "cmdsave");
    EXPECT_EQ(screen.feedback.status.back(), "no such table: mail_server");
    EXPECT_EQ(mail::ReadEmailSettings(screen.dbconn).to, "a@x,b@x");
    EXPECT_EQ(Text(form, "txtmailto"), "new@x");
}

TEST_F(MailScreens, ThePasswordIsSeenOnlyWhileTheCommandIsHeld) {
    const auto& form = Open<desk::frmemail_settings>(slowDesk);
    auto& password = The<QLineEdit>(form, "txtserverpassword");
    Type(form, "txtserverpassword", "Secret7");
    EXPECT_NE(password.displayText(), "Secret7");
    auto& reveal = The(form, "cmdreveal");
    reveal.setFocus();
    QTest::keyPress(&reveal, Qt::Key_Space);
    EXPECT_EQ(password.displayText(), "Secret7");
    QTest::keyRelease(&reveal, Qt::Key_Space);
    EXPECT_NE(password.displayText(), "Secret7");
    QTest::mousePress(&reveal, Qt::LeftButton);
    EXPECT_EQ(password.displayText(), "Secret7");
    The(form, "txturl").setFocus();
    EXPECT_NE(password.displayText(), "Secret7");
}

TEST_F(MailScreens, ATestMailTellsWhatTheServerSays) {
    support::MailSink sink;
    const auto& form = Open<desk::frmemail_settings>(smtpDesk);
    Click(form, "cmdtest");
    EXPECT_EQ(Answer(form), "Specify Mail Address");
    Type(form, "txturl", QString::fromStdString(sink.Url()));
    Type(form, "txtmailto", "refused@x");
    Type(form, "txtsender", "desk@here");
    const auto& answer = The<QLabel>(form, "lblanswer");
    Click(form, "cmdtest");
    EXPECT_THAT(answer.text().toStdString(), HasSubstr("550 no such user"));
    EXPECT_TRUE(answer.textInteractionFlags() & Qt::TextSelectableByMouse);
    // This server has no TLS: the password does not go to it.
    Type(form, "txtmailto", "a@x");
    Type(form, "txtserveruser", "me");
    Type(form, "txtserverpassword", "Secret7");
    Click(form, "cmdtest");
    EXPECT_THAT(answer.text().toStdString(), testing::AllOf(HasSubstr("Mail not sent"), Not(HasSubstr("Secret7"))));
    EXPECT_THAT(screen.RtuErr(), Not(HasSubstr("Secret7")));
    EXPECT_THAT(screen.feedback.status, testing::Each(Not(HasSubstr("Secret7"))));
    EXPECT_TRUE(sink.Nothing());
    Type(form, "txtserveruser", "");
    Click(form, "cmdtest");
    EXPECT_EQ(answer.text(), "Mail Sent");
    EXPECT_EQ(sink.Received(1, "subject"), "Test: Daily Progress Report");
    EXPECT_THAT(sink.Received(1), testing::StartsWith("X-Mail-From: desk@here\r\nX-Rcpt-To: a@x\r\n"));
    EXPECT_EQ(screen.Count("email_settings"), 0);  // nothing was saved for it
}

TEST_F(MailScreens, ATestMailEndsWithItsForm) {
    const QPointer<desk::frmemail_settings> form = &Open<desk::frmemail_settings>(slowDesk);
    Type(*form, "txtmailto", "a@x");
    slow.takesMs = 60000;
    screen.clock.After(1000, [&] { QTest::keyClick(form.data(), Qt::Key_Escape); });
    const auto before = screen.clock.Elapsed();
    Click(*form, "cmdtest");
    QCoreApplication::processEvents();
    EXPECT_LT(screen.clock.Elapsed() - before, 1100U);
    EXPECT_EQ(screen.window.Front(), &home);
}

TEST_F(MailScreens, AMailWithAFileArrivesWhole) {
    support::MailSink sink;
    screen.dbconn.Execute("update mail_server set url=?, sender='desk@here'", {sink.Url()});
    const std::string content(200000, '\xA7');
    const auto& form = LoggedIn(smtpDesk);
    Type(form, "txtmailto", "a@x");
    Type(form, "txtmailbcc", "b@x");
    Type(form, "txtsubject", "Mill's day");
    Type(form, "txtmsg", "See the file.");
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
