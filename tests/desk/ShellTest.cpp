#include <gmock/gmock.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>

#include "desk/core/RunFeedback.h"
#include "desk/core/SingleInstance.h"
#include "desk/core/mainfrm.h"
#include "support/ScreenDesk.h"

namespace {

struct ShellTest : testing::Test {
    support::ScreenDesk desk;
    ::desk::mainfrm shell{desk.desk};
    QSignalSpy ended{&shell, &::desk::mainfrm::Ended};

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

TEST_F(ShellTest, ExitsWithItsAuditLine) {
    desk.shared.currentuser = "operator";
    shell.ShowForUser();
    support::Click(*desk.window.Front(), "cmdMenu");
    support::Click(*desk.window.Front(), "cmdexit");
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator logged out.");
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ShellTest, ExitsFromTheOverviewWithItsOwnAuditLine) {
    desk.shared.currentuser = "operator";
    shell.ShowForUser();
    support::Click(*desk.window.Front(), "cmdClose");
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30: operator logged out.");
    EXPECT_EQ(ended.count(), 1);
}

TEST_F(ShellTest, ClosingDuringARunEndsTheProgramBehindIt) {
    demo::DemoStation station{"Mill", "TeleFlow", "Modbus", "RTU", 1, 1};
    station.contracthour = "08:00";
    demo::AddStation(desk.dbconn, station);
    desk.OpenField();
    desk.clock.Run(30000);
    desk.shared.currentuser = "operator";
    shell.ShowForUser();
    desk.clock.After(700, [this] {
        shell.close();
        EXPECT_EQ(ended.count(), 0);
        EXPECT_TRUE(desk.scheduler.Busy());
    });
    shell.Tick();
    EXPECT_EQ(ended.count(), 1);
    EXPECT_FALSE(desk.scheduler.Busy());
    EXPECT_FALSE(desk.line.PortOpen());
    EXPECT_EQ(desk.clock.Elapsed(), 30700U);
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
