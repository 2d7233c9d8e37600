#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "collection/Scheduler.h"
#include "mail/Mail.h"
#include "mail/MailHeaders.h"
#include "mail/SmtpTransport.h"
#include "reports/ReportMail.h"
#include "support/CollectionDesk.h"
#include "support/MailSink.h"

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {

// A mail server of its own for each test.
struct MailTest : testing::Test {
    support::CollectionDesk desk;
    support::MailSink sink;
    mail::SmtpTransport smtp;

    void Settings(const std::string& to, const std::string& cc, const std::string& bcc, const std::string& subject = "",
                  const std::string& message = "") {
        desk.dbconn.Execute("update mail_server set url=?, sender='station@here'", {sink.Url()});
        desk.dbconn.Execute("delete from email_settings");
        desk.dbconn.Execute("insert into email_settings values(?,?,?,?,?)", {to, cc, bcc, subject, message});
    }
    void Send() {
        reports::ReportMail(desk.place, smtp).sendmail(desk.clock.Now(), [] { return false; });
    }
    std::string Received(int number, const std::string& ending = "eml") const { return sink.Received(number, ending); }
};

TEST_F(MailTest, ReachesEveryAddresseeWithTheReportOfToday) {
    desk.dbconn.Execute("insert into configdata_master(locationID,consumer) values(1,'Mill')");
    Settings(" to@x ", "cc@x", "bcc@x");
    Send();
    const std::string mail = Received(1);
    EXPECT_THAT(mail, HasSubstr("Date: Mon, 09 Mar 2026 07:59:30 "));
    EXPECT_THAT(mail, HasSubstr("From: <station@here>\r\nTo: <to@x>\r\nCc: <cc@x>\r\n"));
    EXPECT_THAT(mail, ContainsRegex("Message-ID: <[0-9.]+@here>\r\n"));
    EXPECT_THAT(mail, HasSubstr("filename=\"daily_report.rtf\""));
    EXPECT_EQ(Received(1, "subject"), "Daily Progress Report");
    EXPECT_EQ(Received(1, "text"), "Daily Progress Report");
    EXPECT_THAT(Received(1, "attachment"), HasSubstr("Mill"));
    EXPECT_EQ(Received(1, "attachment"), support::FileText(desk.shared.dailyReportPath));
    EXPECT_EQ(Received(1, "defects"), "");
    EXPECT_THAT(desk.feedback.status, testing::ElementsAre("Sending Mail", "Mail Sent"));
    EXPECT_EQ(desk.RtuErr(), "");
}

TEST_F(MailTest, OneAddresseeInAnyFieldIsEnoughAndNoneIsNoMail) {
    Settings(" ", "", "");
    Send();
    EXPECT_TRUE(sink.Nothing());
    EXPECT_TRUE(desk.feedback.status.empty());
    EXPECT_FALSE(std::filesystem::exists(desk.shared.dailyReportPath));
    const struct {
        const char *to, *cc, *bcc, *envelope, *head;
    } cases[] = {
        {"a@x", "b@x", "c@x", "X-Rcpt-To: a@x\r\nX-Rcpt-To: b@x\r\nX-Rcpt-To: c@x\r\n", "To: <a@x>\r\nCc: <b@x>\r\nS"},
        {"a@x", "", " c@x", "X-Rcpt-To: a@x\r\nX-Rcpt-To: c@x\r\n", "From: <station@here>\r\nTo: <a@x>\r\nS"},
        {"", "b@x", "", "X-Rcpt-To: b@x\r\n", "From: <station@here>\r\nCc: <b@x>\r\nS"},
        {" ", "", "c@x", "X-Rcpt-To: c@x\r\n", "From: <station@here>\r\nSubject"},
    };
    int number = 0;
    for (const auto& c : cases) {
        Settings(c.to, c.cc, c.bcc);
        Send();
        const std::string mail = Received(++number);
        const std::string head = mail.substr(0, mail.find("\r\n\r\n"));
        const std::string envelope = std::string("X-Mail-From: station@here\r\n") + c.envelope;
        EXPECT_THAT(head, testing::StartsWith(envelope + "Content-Type: multipart/mixed"));
        EXPECT_THAT(head, HasSubstr(c.head));
        EXPECT_THAT(mail.substr(envelope.size()), Not(HasSubstr("c@x")));
    }
}

TEST_F(MailTest, TextsOfEveryKindArriveAndNoneBecomesAHeader) {
    const std::vector<std::array<std::string, 2>> subjects = {
        {"Tagesbericht Süd\r\nX-Evil: 1", "Tagesbericht Süd  X-Evil: 1"},
        {"plain\r\n\r\nX-Evil: 1", "plain    X-Evil: 1"},
        {"=?utf-8?Q?not_a_word?=", "=?utf-8?Q?not_a_word?="},
        {std::string(300, 'x'), std::string(300, 'x')},
    };
    int number = 0;
    for (const auto& [typed, arrived] : subjects) {
        Settings("to@x", "", "", typed, ".\r\n..\nQUIT\nÜber 100 % = ok ");
        Send();
        EXPECT_EQ(Received(++number, "subject"), arrived);
        EXPECT_EQ(Received(number, "text"), ".\r\n..\r\nQUIT\r\nÜber 100 % = ok ");
        EXPECT_EQ(Received(number, "defects"), "");
        EXPECT_THAT(Received(number), Not(HasSubstr("\nX-Evil")));
    }
}

TEST_F(MailTest, WhatIsNotOneAddressIsNeitherACommandNorAHeader) {
    int lines = 0;
    for (const char* const address : {"to@x\r\nBcc: evil@x", "a@x,b@x", "a@x; b@x", "a@x> NOTIFY=<", "Name <a@x>"}) {
        Settings(address, "", "");
        Send();
        Settings("to@x", "", "");
        desk.dbconn.Execute("update mail_server set sender=?", {address});
        Send();
        lines += 2;
    }
    EXPECT_TRUE(sink.Nothing());
    const std::string log = desk.RtuErr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), lines) << log;
}

TEST_F(MailTest, AFailureIsWrittenDownAndHoldsNobodyUp) {
    desk.dbconn.Execute("insert into configdata_master(locationID,consumer) values(1,'Mill')");
    Settings("refused@x", "", "");
    Send();
    EXPECT_THAT(desk.RtuErr(), ContainsRegex("Mail not sent: .* 550 no such user\n"));
    // This server has no TLS: the password must not go to it.
    desk.dbconn.Execute("update mail_server set user='u', password='Secret7'");
    desk.dbconn.Execute("update email_settings set \"to\"='to@x'");
    Send();
    EXPECT_TRUE(sink.Nothing());
    desk.dbconn.Execute("update mail_server set url='smtp://127.0.0.1:1', user='u', password='Secret7'");
    Send();
    desk.dbconn.Execute("update mail_server set url='nonsense://x'");
    Send();
    std::filesystem::remove(desk.shared.dailyReportPath);
    std::filesystem::create_directory(desk.shared.dailyReportPath);  // the report cannot be written
    Send();
    desk.dbconn.Execute("drop table daily_rep");
    Send();
    const std::string log = desk.RtuErr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 6) << log;
    EXPECT_THAT(log, Not(HasSubstr("Secret7")));
    EXPECT_THAT(log, Not(ContainsRegex("the server said: [^45]")));
    EXPECT_THAT(desk.feedback.status, testing::Each("Sending Mail"));
    EXPECT_TRUE(desk.feedback.boxes.empty());
}

// A port that takes connections and says nothing.
struct SilentServer {
    int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};

    SilentServer() {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), length), 0);
        EXPECT_EQ(listen(listener, 1), 0);
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    }
    ~SilentServer() { close(listener); }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    std::string Url() const { return "smtp://127.0.0.1:" + std::to_string(ntohs(address.sin_port)); }
};

// The time is the server's alone: not that of what runs inside the wait. The end of the program waits for nobody.
TEST_F(MailTest, AServerThatNeverAnswersIsGivenUp) {
    const SilentServer silent;
    Settings("to@x", "", "");
    desk.dbconn.Execute("update mail_server set url=?", {silent.Url()});
    const auto takes = [this](std::uint32_t limitMs, const std::function<bool()>& leaving) {
        smtp = mail::SmtpTransport(limitMs);
        const auto before = desk.clock.Elapsed();
        reports::ReportMail(desk.place, smtp).sendmail(desk.clock.Now(), leaving);
        return desk.clock.Elapsed() - before;
    };
    const auto staying = [] { return false; };
    const auto between = [](std::uint64_t least, std::uint64_t most) {
        return testing::AllOf(testing::Ge(least), testing::Lt(most));
    };
    bool leaving = false;
    desk.clock.After(2000, [&] { leaving = true; });
    EXPECT_LT(takes(3000, [&] { return leaving; }), 2100U);
    EXPECT_THAT(desk.RtuErr(), HasSubstr("the program ends"));

    int turns = 0;
    desk.clock.Every(100, [&] { ++turns; });
    EXPECT_THAT(takes(3000, staying), between(3000, 4000));
    EXPECT_GE(turns, 30);  // the schedule went on meanwhile
    EXPECT_THAT(desk.RtuErr(), HasSubstr("the mail server takes too long"));

    desk.clock.After(1500, [this] { desk.clock.WaitMs(180000); });
    EXPECT_THAT(takes(3000, staying), between(182000, 184000));
}

// A server that can be out of order, and what it took.
struct MoodyServer final : mail::MailTransport {
    bool works = false;
    std::vector<mail::MailMessage> taken;
    mail::MailOutcome Send(const mail::MailMessage& message, const mail::MailServer&, core::Clock&,
                           const std::function<bool()>&) override {
        if (works) {
            taken.push_back(message);
        }
        return {works, works ? "" : "out of order"};
    }
};

TEST_F(MailTest, WhatNoServerTookIsSentLaterInOrderWithItsOwnDateAndOnce) {
    MoodyServer server;
    reports::ReportMail reportMail(desk.place, server);
    collection::Scheduler scheduler(desk.place, reportMail);
    desk.clock.Every(60000, [&] { scheduler.Tick(); });
    demo::DemoStation mill{"Mill", "TeleFlow", "Modbus", "RTU", 9, 1};
    mill.contracthour = "08:00";
    demo::AddStation(desk.dbconn, mill);
    desk.dbconn.Execute("update settings set value='0' where name='retryrounds'");
    Settings("to@x", "", "");
    constexpr std::uint64_t day = 24 * 3600000;
    desk.clock.Run(2 * day);
    EXPECT_TRUE(server.taken.empty());
    EXPECT_EQ(desk.Count("unsent_mail"), 2);
    server.works = true;
    desk.clock.Run(3600000);
    ASSERT_EQ(server.taken.size(), 3U);
    EXPECT_EQ(server.taken[0].subject, "Daily Progress Report of 09/03/2026: 1 missing");
    EXPECT_EQ(server.taken[1].subject, "Daily Progress Report of 10/03/2026: 1 missing");
    EXPECT_EQ(server.taken[2].subject, "Daily Progress Report: 1 missing");
    EXPECT_EQ(core::DateText(server.taken[0].written.value()), "09/03/2026");
    EXPECT_THAT(server.taken[0].attachment, HasSubstr("09/03/2026"));
    EXPECT_NE(server.taken[0].unique, server.taken[1].unique);
    desk.clock.Run(6 * 3600000);
    EXPECT_EQ(server.taken.size(), 3U);
    EXPECT_EQ(desk.Count("unsent_mail"), 0);

    server.works = false;
    desk.clock.Run(10 * day);
    EXPECT_EQ(desk.Count("unsent_mail"), 7);  // a week
    EXPECT_THAT(desk.RtuErr(), HasSubstr("The mail of 12/03/2026 was never sent and is given up"));
}

TEST(MailHeadersTest, TheDateIsInEnglishWithTheZone) {
    const char* const zone = std::getenv("TZ");
    const std::string before = zone ? zone : "";
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    EXPECT_EQ(mail::MailDate({2026, 3, 10, 8, 0, 5}), "Tue, 10 Mar 2026 08:00:05 +0100");
    EXPECT_EQ(mail::MailDate({2026, 8, 2, 23, 59, 59}), "Sun, 02 Aug 2026 23:59:59 +0200");
    setenv("TZ", "NST3:30", 1);
    tzset();
    EXPECT_EQ(mail::MailDate({2026, 12, 31, 0, 0, 0}), "Thu, 31 Dec 2026 00:00:00 -0330");
    zone ? setenv("TZ", before.c_str(), 1) : unsetenv("TZ");
    tzset();
}

}  // namespace
