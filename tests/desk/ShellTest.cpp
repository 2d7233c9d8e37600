// The shell, and the overview in it.

#include <gmock/gmock.h>

#include <QListWidget>
#include <QScreen>
#include <QSignalSpy>

#include "desk/collection/TakenLine.h"
#include "desk/platform/RunFeedback.h"
#include "desk/platform/SingleInstance.h"
#include "desk/session/frm_CWM.h"
#include "desk/shell/NodeButton.h"
#include "desk/shell/frmGraphicRept.h"
#include "desk/shell/mainfrm.h"
#include "stations/SampledMark.h"
#include "support/ScreenDesk.h"

namespace {

using collection::DayState;
using ::desk::NodeButton;
using namespace support;

struct ShellTest : testing::Test {
    support::ScreenDesk desk;
    ::desk::mainfrm shell{desk.desk};
    QSignalSpy ended{&shell, &::desk::mainfrm::Ended};

    void AddMill(const std::string& contracthour) {
        demo::DemoStation station{"Mill", "TeleFlow", "Modbus", "RTU", 1, 1};
        station.contracthour = contracthour;
        demo::AddStation(desk.dbconn, station);
    }
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

TEST_F(ShellTest, EveryWayOutAsksAndHasItsOwnAuditLine) {
    AddMill("14:30");
    LogIn();
    shell.close();
    EXPECT_EQ(Answer(shell, QMessageBox::No),
              "Nothing will be collected until the program is started again.\nNext: Mill at 14:30.\n\nEnd the "
              "program?");
    EXPECT_EQ(Audit(), "");
    EXPECT_EQ(ended.count(), 0);
    Click(*desk.window.Front(), "cmdClose");
    Answer(shell, QMessageBox::Yes);
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30: operator logged out.");
    EXPECT_EQ(ended.count(), 1);
    Click(*desk.window.Front(), "cmdMenu");
    Click(*desk.window.Front(), "cmdexit");
    Answer(shell, QMessageBox::Yes);
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30 :operator logged out.");
    // Whoever logs off ends nothing.
    QSignalSpy loggedOff{&shell, &::desk::mainfrm::LoggedOff};
    desk.dbconn.Execute("update users set logon=true");
    Click(*desk.window.Front(), "cmdlogoff");
    EXPECT_FALSE(shell.isVisible());
    EXPECT_EQ(loggedOff.count(), 1);
    EXPECT_EQ(Audit(), "09/03/2026 07:59:30:  user operator logged out");
    EXPECT_EQ(desk.Count("users where logon"), 0);
}

TEST_F(ShellTest, ClosingDuringARunEndsTheProgramBehindIt) {
    AddMill("08:00");
    desk.OpenField();
    desk.clock.Run(30000);
    LogIn();
    desk.clock.After(700, [this] {
        shell.close();
        EXPECT_THAT(Answer(shell, QMessageBox::Yes), testing::HasSubstr("The collection of Mill will be broken off."));
        EXPECT_EQ(ended.count(), 0);
        EXPECT_TRUE(desk.scheduler.Busy());
    });
    shell.Tick();
    desk.Finish();
    EXPECT_TRUE(QTest::qWaitFor([this] { return ended.count() == 1; }));
    EXPECT_FALSE(desk.scheduler.Busy());
    EXPECT_FALSE(desk.ports.PortOpen());
}

// The screen of this platform is 800 wide, less than a page needs.
TEST_F(ShellTest, TheWindowIsNeverLargerThanTheScreen) {
    LogIn();
    const QSize room = shell.screen()->availableSize();
    ASSERT_LT(room.width(), 1024);
    EXPECT_LE(shell.width(), room.width());
    EXPECT_LE(shell.height(), room.height());
    shell.resize(600, 400);
    EXPECT_EQ(shell.width(), 600) << "a page that is larger is scrolled";
}

TEST_F(ShellTest, EverySixtyFirstTickResetsTheFlagsAndAFailureStopsNoTick) {
    AddMill("23:00");
    desk.dbconn.Execute("update configdata_master set sampledtoday=true, sampleddate=8");
    for (int tick = 1; tick <= 60; ++tick) {
        shell.Tick();
    }
    EXPECT_TRUE(desk.Master(1).Bool("sampledtoday"));
    shell.Tick();
    EXPECT_FALSE(desk.Master(1).Bool("sampledtoday"));
    desk.dbconn.Execute("drop table configdata_master");
    for (int tick = 1; tick <= 61; ++tick) {
        EXPECT_NO_THROW(shell.Tick());
    }
    EXPECT_THAT(desk.RtuErr(), testing::HasSubstr("no such table: configdata_master"));
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

const QColor green(0, 255, 0);
const QColor blue(192, 192, 255);

// The overview in the shell, before a field of two stations that are due at eight.
struct OverviewTest : ShellTest {
    std::int64_t first = Add("North Gate", 1);
    std::int64_t second = Add("O'Brien & <b>Sons</b>", 2);

    std::int64_t Add(const std::string& consumer, int groupno) {
        demo::DemoStation station{consumer, "TeleFlow", "Modbus", "RTU", groupno, groupno};
        station.contracthour = "08:00";
        station.groupno = groupno;
        return demo::AddStation(desk.dbconn, station);
    }
    QWidget& Front() { return *desk.window.Front(); }
    NodeButton& Node(int index) { return The<NodeButton>(Front(), ("cmdLoc" + std::to_string(index)).c_str()); }
};

TEST_F(OverviewTest, ShowsEveryStationAtItsPlaceInTheColourOfItsState) {
    stations::MarkSampled(desk.dbconn, desk.clock.Now(), second, true);
    collection::Outcome byHand;
    byHand.locationID = second;
    byHand.gasday = "2026-03-09";
    byHand.begun = "2026-03-09 07:45:00";
    byHand.ended = "2026-03-09 07:46:10";
    byHand.how = collection::How::Hand;
    byHand.result = reading::Result::Collected;
    collection::RecordOutcome(desk.dbconn, byHand);
    stations::MarkSampled(desk.dbconn, desk.clock.Now(), Add("Read in a session", 3), true);
    desk.dbconn.Execute("update configdata_master set duration='NO' where locationID=?", {Add("Watched", 4)});
    LogIn();
    EXPECT_EQ(Node(1).text(), "North Gate");
    EXPECT_EQ(Node(1).Colour(), blue);
    EXPECT_EQ(Node(11).Colour(), green);
    EXPECT_EQ(Node(1).accessibleName(), "North Gate, Not yet due, due 08:00");
    EXPECT_EQ(Node(11).accessibleName(), "O'Brien & <b>Sons</b>, Collected today, 07:46 by hand");
    EXPECT_EQ(Node(11).toolTip(), "<b>O'Brien &amp; &lt;b&gt;Sons&lt;/b&gt;</b><br>Collected today<br>07:46 by hand");
    EXPECT_EQ(Node(21).Line(), "read, due 08:00");
    EXPECT_EQ(Node(21).Colour(), green);
    EXPECT_EQ(Node(31).Line(), "no schedule");
    for (const int index : {0, 2, 10, 12, 32, 40}) {
        EXPECT_FALSE(Node(index).isVisible()) << index;
    }
    EXPECT_EQ(Text(Front(), "lblnext"), "Next: North Gate at 08:00");
    shell.Status("Collecting Data");
    EXPECT_EQ(The<QListWidget>(Front(), "lstlines").item(0)->text(), "07:59:30   Collecting Data");
}

TEST_F(OverviewTest, FollowsARunWithoutBeingActivatedAgain) {
    fieldsim::LineFaults::Options dead;
    dead.chances[fieldsim::Fault::Silence] = 1;
    desk.OpenField({.faults = {{first, dead}}});
    LogIn();
    std::vector<std::string> seen;
    desk.clock.Every(1000, [&] {
        const std::string now = Text(Front(), "lblnow") + (Node(1).State() == DayState::Collecting ? " 1" : "") +
                                (Node(11).State() == DayState::Collecting ? " 11" : "");
        if (seen.empty() || seen.back() != now) {
            seen.push_back(now);
        }
    });
    desk.clock.After(30000, [this] { shell.Tick(); });
    desk.clock.Run(900000);
    EXPECT_THAT(seen,
                testing::ElementsAre("Nothing is being collected", "Collecting North Gate, O'Brien & <b>Sons</b> 1 11",
                                     "Collecting O'Brien & <b>Sons</b> 11", "Nothing is being collected"));
    EXPECT_EQ(Node(1).State(), DayState::Failed);
    EXPECT_THAT(Node(1).Line().toStdString(), testing::StartsWith("no answer, 3 attempts, 08:0"));
    EXPECT_EQ(Node(1).Colour(), blue);
    EXPECT_THAT(Node(11).Line().toStdString(), testing::EndsWith(" by schedule"));
    EXPECT_EQ(Node(11).Colour(), green);
    const auto month = desk.dbconn.First(
        "select lastvalue from configdata_detail where locationID=? and description='Volume This Month'", {second});
    EXPECT_EQ(Text(Front(), "lblgroup2"), month->Text("lastvalue") + " SCM");
    EXPECT_EQ(Text(Front(), "lblgroup3"), "0 SCM");
}

// Forty lines may be at work. What is said of one names who waits there, and nobody else.
TEST_F(OverviewTest, ManyLinesAtWorkNeedNoMoreRoomThanAFew) {
    for (int port = 3; port <= 5; ++port) {
        Add("Gate " + std::to_string(port), port);
    }
    demo::AddStation(desk.dbconn, {"Behind the first", "TeleFlow", "Modbus", "RTU", 1, 9, "", 1, {}, "08:00"});
    desk.OpenField();
    LogIn();
    shell.Tick();
    desk.clock.Run(30000);
    shell.Tick();
    EXPECT_EQ(Text(Front(), "lblnow"),
              "Collecting North Gate, O'Brien & <b>Sons</b>, Gate 3 and 2 others, 1 more waits");
    EXPECT_EQ(::desk::TakenBy(desk.desk, first).toStdString(),
              "The line was taken to collect North Gate, 1 more waits");
    EXPECT_EQ(::desk::TakenBy(desk.desk, second).toStdString(), "The line was taken to collect O'Brien & <b>Sons</b>");
    desk.Finish();

    std::vector<std::string> shown;
    ::desk::RunFeedback status(desk.logs, [&](const QString& text) { shown.push_back(text.toStdString()); });
    for (const char* line : {"COM1", "COM2", "COM3", "COM4"}) {
        status.LineStatus(line, "Collecting Data");
    }
    EXPECT_EQ(shown.back(), "COM1: Collecting Data   COM2: Collecting Data   COM3: Collecting Data   and 1 more");
    for (const char* line : {"COM1", "COM2", "COM3"}) {
        status.LineStatus(line, "");
    }
    EXPECT_EQ(shown.back(), "Collecting Data");
    status.LineStatus("COM4", "");
    EXPECT_EQ(shown.back(), "") << "nothing is said of what is over";
}

TEST_F(OverviewTest, AStationWithoutAPlaceIsToldAndAButtonOpensTheOneThatItNames) {
    const std::int64_t third = Add("South Gate", 1);
    desk.dbconn.Execute("update configdata_master set groupcnt = 1 where locationID = ?", {third});
    desk.dbconn.Execute("update configdata_master set groupno = 7 where locationID = ?", {second});
    LogIn();
    EXPECT_EQ(Node(1).text(), "South Gate");
    EXPECT_THAT(desk.feedback.status, testing::Contains("No place in the overview for North Gate: South Gate has it"));
    EXPECT_THAT(desk.feedback.status, testing::Contains("No place in the overview for O'Brien & <b>Sons</b>"));
    Click(Front(), "cmdLoc1");
    EXPECT_EQ(Front().windowTitle(), "Parameter List - v10.3----(South Gate)");
    EXPECT_EQ(Focus(Front()), "cmdConnect");
    Key(Front(), Qt::Key_Escape);

    desk.dbconn.Execute("update configdata_master set modelno = 'CW_Micro' where locationID = ?", {third});
    Node(1).setFocus();
    QTest::keyClick(&Node(1), Qt::Key_Return);
    desk.Front<::desk::frm_CWM>();
}

TEST_F(OverviewTest, AnOperatorCollectsAStationOrAllThatAreMissing) {
    desk.OpenField();
    LogIn();
    EXPECT_FALSE(Enabled(Front(), "cmdMissing")) << "without the right to data";
    desk.shared.rights.rightOnline = true;
    LogIn();
    // Yesterday's contract hour of both has passed, and nobody was there.
    std::string now;
    desk.clock.After(1000, [&] {
        now = Text(Front(), "lblnow");
        EXPECT_EQ(Node(11).State(), DayState::Collecting);
    });
    desk.Press(Front(), "cmdMissing");
    EXPECT_EQ(now, "Collecting North Gate, O'Brien & <b>Sons</b>");
    EXPECT_THAT(desk.feedback.status, testing::Contains("2 stations are missing and will be collected"));
    for (const int index : {1, 11}) {
        EXPECT_EQ(Node(index).State(), DayState::Collected);
        EXPECT_THAT(Node(index).Line().toStdString(), testing::EndsWith(" by hand"));
    }
    desk.Press(Front(), "cmdMissing");
    EXPECT_EQ(desk.feedback.status.back(), "No station is missing");

    Node(11).setFocus();
    desk.During({}, [this] { QTest::keyClick(&Node(11), Qt::Key_F5); });
    EXPECT_EQ(desk.Count("outcome where locationID=? and how='hand'", {second}), 2);
}

TEST_F(OverviewTest, ATotalOpensTheVolumesOfItsGroup) {
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=12.5 where description='Volume This Month' and locationID=?", {first});
    const std::int64_t bare = Add("South Gate", 1);
    desk.dbconn.Execute("delete from configdata_detail where locationID=?", {bare});
    demo::DemoStation two{"Kiln", "CWGFC-MultiStream", "BSAP", "", 5, 5, "", 2, {"AGA3", "AGA7"}};
    const std::int64_t kiln = demo::AddStation(desk.dbconn, two);
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=100.25 * StreamNo, readat='2026-03-08 08:01:02', quality='good' where "
        "description='Volume This Month' and locationID=?",
        {kiln});
    Add("Never read", 1);
    LogIn();
    EXPECT_EQ(Text(Front(), "lblgroup1"), "313.25 SCM");
    Click(Front(), "lblgroup1");
    EXPECT_EQ(Front().windowTitle(), "Group 1 - v10.3");
    EXPECT_EQ(
        Lines(Front(), "floatgrid"),
        (std::vector<std::string>{
            "Station|Volume|Unit|Today|Remark", "North Gate|12.5|SCM|due 08:00|", "South Gate|no data|MSCFH|due 08:00|",
            "Kiln|300.75|SCM|due 10/03 00:00|volume of 08/03/2026 08:01:02", "Never read|no data|SCM|due 08:00|"}));
    EXPECT_EQ(Text(Front(), "lbltotal"), "Total: 313.25");
}

// Each command of the menu and of the utilities behind it, and the right that it needs.
TEST_F(OverviewTest, AMenuOffersWhatTheRightsOfTheUserAllow) {
    using core::Rights;
    const std::pair<bool Rights::*, const char*> commands[] = {
        {&Rights::rightConfigStation, "cmdconfigsta"}, {&Rights::rightTts, "cmdtts"},
        {&Rights::rightScheduler, "cmdScheduler"},     {&Rights::rightGasComposition, "cmdgc"},
        {&Rights::rightUserManager, "cmduser"},        {&Rights::rightArchive, "cmdarch"},
        {&Rights::rightDailyReport, "cmdReport"},      {&Rights::rightTrends, "cmdChart"},
        {&Rights::rightHistorical, "cmdhisotrical"}};
    for (const auto& [right, command] : commands) {
        for (const bool given : {false, true}) {
            desk.shared.rights = {};
            desk.shared.rights.rightUtility = true;
            desk.shared.rights.*right = given;
            LogIn();
            Click(Front(), "cmdMenu");
            if (Front().findChild<QWidget*>(command) == nullptr) {
                Click(Front(), "cmdUtility");
            }
            EXPECT_EQ(Enabled(Front(), command), given) << command;
        }
    }
}

}  // namespace
