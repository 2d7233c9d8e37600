#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>

#include "collection/Mail.h"
#include "collection/SmtpTransport.h"
#include "support/ChildProcess.h"
#include "support/CollectionDesk.h"

using testing::HasSubstr;
using testing::Not;

namespace {

// A mail server of its own for each test.
struct MailTest : testing::Test {
    support::CollectionDesk desk;
    support::ScratchDirectory received;
    support::ChildProcess server{{"/usr/bin/python3", SMTP_SINK, received.path.string()}};
    collection::SmtpTransport smtp;

    std::string Url() {
        EXPECT_TRUE(server.Printed("\n")) << server.Said();
        return "smtp://127.0.0.1:" + server.Said().substr(10, server.Said().find('\n') - 10);
    }
    void Settings(const std::string& to, const std::string& cc, const std::string& bcc, const std::string& subject = "",
                  const std::string& message = "") {
        desk.dbconn.Execute("update mail_server set url=?, sender='station@here'", {Url()});
        desk.dbconn.Execute("delete from email_settings");
        desk.dbconn.Execute("insert into email_settings values(?,?,?,?,?)", {to, cc, bcc, subject, message});
    }
    void Send() {
        collection::sendmail(desk.dbconn, desk.shared, desk.clock, desk.feedback, desk.logs, smtp,
                             [] { return false; });
    }
    std::string Received(int number = 1) const {
        return support::FileText(received.path / (std::to_string(number) + ".eml"));
    }
};

TEST_F(MailTest, ReachesEveryAddresseeWithTheReport) {
    Settings(" to@x ", "cc@x", "bcc@x");
    Send();
    const std::string mail = Received();
    EXPECT_THAT(mail,
                HasSubstr("X-Mail-From: station@here\r\nX-Rcpt-To: to@x\r\nX-Rcpt-To: cc@x\r\nX-Rcpt-To: bcc@x\r\n"));
    EXPECT_THAT(mail, HasSubstr("To: <to@x>\r\n"));
    EXPECT_THAT(mail, HasSubstr("Cc: <cc@x>\r\n"));
    EXPECT_THAT(mail.substr(mail.find("\r\nDate:")), Not(HasSubstr("bcc@x")));
    EXPECT_THAT(mail, HasSubstr("Subject: Daily Progress Report\r\n"));
    EXPECT_THAT(mail, HasSubstr("filename=\"daily_report.rtf\""));
    EXPECT_THAT(mail, HasSubstr("e1xydGYx"));  // "{\rtf1" in base64
    EXPECT_EQ(desk.feedback.status.back(), "Mail Sent");
    EXPECT_EQ(desk.RtuErr(), "");
}

TEST_F(MailTest, OneAddresseeInAnyFieldIsEnough) {
    Settings("", "only@x", "");
    Send();
    EXPECT_THAT(Received(1), HasSubstr("X-Rcpt-To: only@x\r\n"));
    Settings("", "", "hidden@x");
    Send();
    EXPECT_THAT(Received(2), HasSubstr("X-Rcpt-To: hidden@x\r\n"));
    Settings(" ", "", "");
    Send();
    desk.dbconn.Execute("delete from email_settings");
    Send();
    EXPECT_FALSE(std::filesystem::exists(received.path / "3.eml"));
}

TEST_F(MailTest, TextsOfEveryKindArriveAndNoneBecomesAHeader) {
    Settings("to@x\r\nBcc: evil@x", "", "", "Tagesbericht Süd\r\nX-Evil: 1", ".\r\n..\r\nÜber 100 % ok");
    Send();
    EXPECT_EQ(Received().find("evil@x\r\n"), std::string::npos);
    Settings("to@x", "", "", "Tagesbericht Süd\r\nX-Evil: 1", ".\r\n..\r\nÜber 100 % ok");
    Send();
    const std::string mail = Received(1);
    EXPECT_THAT(mail, Not(HasSubstr("\nX-Evil")));
    EXPECT_THAT(mail, HasSubstr("S=C3=BCd"));
    EXPECT_THAT(mail, HasSubstr("\r\n.\r\n..\r\n=C3=9Cber 100 % ok"));
}

TEST_F(MailTest, AFailureIsWrittenDownAndHoldsNobodyUp) {
    Settings("refused@x", "", "");
    Send();
    EXPECT_THAT(desk.RtuErr(), HasSubstr("Mail not sent: "));
    desk.dbconn.Execute("update mail_server set url='smtp://127.0.0.1:1', user='u', password='Secret7'");
    Send();
    desk.dbconn.Execute("update mail_server set url='nonsense://x'");
    Send();
    std::filesystem::remove(desk.shared.dailyReportPath);
    std::filesystem::create_directory(desk.shared.dailyReportPath);  // the report cannot be written
    Send();
    const std::string log = desk.RtuErr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 4) << log;
    EXPECT_THAT(log, Not(HasSubstr("Secret7")));
    EXPECT_TRUE(desk.feedback.boxes.empty());
}

TEST_F(MailTest, AServerThatNeverAnswersIsGivenUp) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), length), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    Settings("to@x", "", "");
    desk.dbconn.Execute("update mail_server set url=?",
                        {"smtp://127.0.0.1:" + std::to_string(ntohs(address.sin_port))});
    const auto before = desk.clock.Elapsed();
    Send();
    close(listener);
    EXPECT_GE(desk.clock.Elapsed() - before, 60000U);
    EXPECT_LT(desk.clock.Elapsed() - before, 62000U);
    EXPECT_THAT(desk.RtuErr(), HasSubstr("the mail server takes too long"));
}

}  // namespace
