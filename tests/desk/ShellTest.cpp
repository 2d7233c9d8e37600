#include <gmock/gmock.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>

#include "desk/kit/Look.h"
#include "desk/platform/RunFeedback.h"
#include "desk/platform/SingleInstance.h"
#include "desk/shell/mainfrm.h"
#include "support/ScreenDesk.h"

namespace {

struct ShellTest : testing::Test {
    support::ScreenDesk desk;
    ::desk::mainfrm shell{desk.desk};
    QSignalSpy ended{&shell, &::desk::mainfrm::Ended};

    void LogIn() {
        desk.shared.currentuser = "operator";
        shell.ShowForUser();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&shell));
    }
    std::string Audit() {
        const auto row = desk.dbconn.First("select LOG from TTS_table order by rowid desc");
        return row ? row->Text("LOG") : "";
    }
};

TEST_F(ShellTest, LogsOffWhileTheScheduleGoesOn) {
    desk.shared.currentuser = "operator";
    desk.dbconn.Execute("update users set logon=true");
    shell.ShowForUser();
    EXPECT_EQ(shell.findChild<QLabel*>("lbluser")->text(), "Logged in as operator");
    QSignalSpy loggedOff{&shell, &::desk::mainfrm::LoggedOff};
    support::Click(*desk.window.Front(), "cmdMenu");
    support::Click(*desk.window.Front(), "cmdlogoff");
    EXPECT_EQ(loggedOff.count(), 1);
    EXPECT_FALSE(shell.isVisible());
    EXPECT_EQ(ended.count(), 0);
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30:  user operator logged out");
    EXPECT_FALSE(desk.dbconn.First("select logon from users")->Bool("logon"));
}

TEST_F(ShellTest, EveryWayOutAsksAndHasItsOwnAuditLine) {
    demo::DemoStation station{"Mill", "TeleFlow", "Modbus", "RTU", 1, 1};
    station.contracthour = "14:30";
    demo::AddStation(desk.dbconn, station);
    LogIn();
    const std::string question =
        "Nothing will be collected until the program is started again.\nNext: Mill at 14:30.\n\nEnd the "
        "program?";
    shell.close();
    EXPECT_EQ(support::Answer(shell, QMessageBox::No), question);
    support::Click(*desk.window.Front(), "cmdClose");
    EXPECT_EQ(support::Answer(shell, QMessageBox::No), question);
    EXPECT_EQ(Audit(), "");
    EXPECT_EQ(ended.count(), 0);
    support::Click(*desk.window.Front(), "cmdClose");
    support::Answer(shell, QMessageBox::Yes);
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30: operator logged out.");
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ShellTest, TheMenuExitsWithItsOwnAuditLine) {
    LogIn();
    support::Click(*desk.window.Front(), "cmdMenu");
    support::Click(*desk.window.Front(), "cmdexit");
    support::Answer(shell, QMessageBox::Yes);
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator logged out.");
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ShellTest, BeforeTheScheduleIsLiveNobodyIsAsked) {
    shell.AskToEnd(&shell);
    EXPECT_EQ(support::Box(shell), nullptr);
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ShellTest, ClosingDuringARunEndsTheProgramBehindIt) {
    demo::DemoStation station{"Mill", "TeleFlow", "Modbus", "RTU", 1, 1};
    station.contracthour = "08:00";
    demo::AddStation(desk.dbconn, station);
    desk.OpenField();
    desk.clock.Run(30000);
    LogIn();
    desk.clock.After(700, [this] {
        shell.close();
        EXPECT_THAT(support::Answer(shell, QMessageBox::Yes),
                    testing::HasSubstr("The collection of Mill will be broken off."));
        EXPECT_EQ(ended.count(), 0);
        EXPECT_TRUE(desk.scheduler.Busy());
    });
    shell.Tick();
    EXPECT_EQ(ended.count(), 1);
    EXPECT_FALSE(desk.scheduler.Busy());
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_EQ(desk.clock.Elapsed(), 30700U);
}

// The screen of this platform is 800 wide, less than a page needs.
TEST_F(ShellTest, TheWindowIsNeverLargerThanTheScreen) {
    shell.ShowForUser();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&shell));
    const QSize room = shell.screen()->availableSize();
    ASSERT_LT(room.width(), 1024);
    EXPECT_LE(shell.width(), room.width());
    EXPECT_LE(shell.height(), room.height());
    shell.resize(600, 400);
    EXPECT_EQ(shell.width(), 600) << "a page that is larger is scrolled";
}

TEST(Look, DisabledTextsAreReadableInEveryPalette) {
    const QPalette before = QApplication::palette();
    for (const auto palette : {::desk::Palette::System, ::desk::Palette::Light, ::desk::Palette::Dark}) {
        ::desk::ApplyLook(palette);
        const QPalette look = QApplication::palette();
        const auto disabled = [&](QPalette::ColorRole role) { return look.color(QPalette::Disabled, role); };
        for (const auto text : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            for (const auto behind : {QPalette::Window, QPalette::Base, QPalette::Button}) {
                EXPECT_GE(::desk::Contrast(disabled(text), disabled(behind)), 3.0)
                    << static_cast<int>(palette) << " " << text << " " << behind;
            }
        }
    }
    QApplication::setPalette(before);
}

TEST_F(ShellTest, EverySixtyFirstTickResetsTheFlagsAndAFailureStopsNoTick) {
    demo::AddStation(desk.dbconn, {"Mill", "TeleFlow", "Modbus", "RTU", 1, 1});
    desk.dbconn.Execute("update configdata_master set sampledtoday=true, sampleddate=8, contracthour='23:00'");
    const auto sampled = [this] {
        return desk.dbconn.First("select sampledtoday from configdata_master")->Bool("sampledtoday");
    };
    for (int tick = 1; tick <= 60; ++tick) {
        shell.Tick();
    }
    EXPECT_TRUE(sampled());
    shell.Tick();
    EXPECT_FALSE(sampled());
    desk.dbconn.Execute("drop table configdata_master");
    for (int tick = 1; tick <= 61; ++tick) {
        EXPECT_NO_THROW(shell.Tick());
    }
    EXPECT_THAT(desk.RtuErr(), testing::HasSubstr("no such table: configdata_master"));
}

TEST_F(ShellTest, ABoxOfARunWaitsForNobodyAndIsWrittenDown) {
    ::desk::RunFeedback feedback(desk.logs, [](const QString&) {});
    feedback.Box("Value is not defined in Modbus Parameter Table");
    feedback.Box("Valid parameters not available to assemble Modbus packet");
    EXPECT_THAT(desk.RtuErr(), testing::HasSubstr("--:Value is not defined in Modbus Parameter Table\n"));
    EXPECT_THAT(desk.RtuErr(), testing::HasSubstr("--:Valid parameters not available"));
}

TEST(SingleInstance, IsOneADirectoryAndEndsWithItsHolder) {
    const support::ScratchDirectory one;
    const support::ScratchDirectory two;
    {
        const ::desk::SingleInstance first(one.path);
        EXPECT_FALSE(first.Taken());
        EXPECT_TRUE(::desk::SingleInstance(one.path).Taken());
        EXPECT_FALSE(::desk::SingleInstance(two.path).Taken());
    }
    EXPECT_FALSE(::desk::SingleInstance(one.path).Taken());
}

}  // namespace
