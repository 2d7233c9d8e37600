#include <gmock/gmock.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "desk/kit/Grid.h"
#include "desk/session/frm_CWM.h"
#include "desk/shell/NodeButton.h"
#include "desk/shell/frmGraphicRept.h"
#include "desk/shell/mainfrm.h"
#include "stations/SampledMark.h"
#include "support/ScreenDesk.h"

namespace {

using collection::DayState;
using ::desk::NodeButton;
using support::Click;
using support::The;

// The overview in the shell, before a field of two stations that are due at eight.
struct OverviewTest : testing::Test {
    support::ScreenDesk desk;
    ::desk::mainfrm shell{desk.desk};
    std::int64_t first = Add("North Gate", 1);
    std::int64_t second = Add("O'Brien & <b>Sons</b>", 2);

    std::int64_t Add(const std::string& consumer, int groupno) {
        demo::DemoStation station{consumer, "TeleFlow", "Modbus", "RTU", groupno, groupno};
        station.contracthour = "08:00";
        station.groupno = groupno;
        return demo::AddStation(desk.dbconn, station);
    }
    void LogIn() {
        desk.shared.currentuser = "operator";
        shell.ShowForUser();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&shell));
    }
    QWidget& Front() { return *desk.window.Front(); }
    NodeButton& Node(int index) { return The<NodeButton>(Front(), ("cmdLoc" + std::to_string(index)).c_str()); }
    QString Label(const char* name) { return The<QLabel>(Front(), name).text(); }
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
    const std::int64_t read = Add("Read in a session", 3);
    stations::MarkSampled(desk.dbconn, desk.clock.Now(), read, true);
    const std::int64_t watched = Add("Watched", 4);
    desk.dbconn.Execute("update configdata_master set duration='NO' where locationID=?", {watched});
    LogIn();
    EXPECT_EQ(shell.windowTitle(), "NodeView  - v10.3");
    EXPECT_TRUE(Node(1).isVisible());
    EXPECT_EQ(Node(1).text(), "North Gate");
    EXPECT_EQ(Node(1).Colour(), QColor(192, 192, 255));
    EXPECT_EQ(Node(11).Colour(), QColor(0, 255, 0));
    EXPECT_EQ(Node(1).accessibleName(), "North Gate, Not yet due, due 08:00");
    EXPECT_EQ(Node(11).accessibleName(), "O'Brien & <b>Sons</b>, Collected today, 07:46 by hand");
    EXPECT_EQ(Node(11).toolTip(), "<b>O'Brien &amp; &lt;b&gt;Sons&lt;/b&gt;</b><br>Collected today<br>07:46 by hand");
    EXPECT_EQ(Node(21).Line(), "read, due 08:00");
    EXPECT_EQ(Node(21).Colour(), QColor(0, 255, 0));
    EXPECT_EQ(Node(31).Line(), "no schedule");
    for (const int index : {0, 2, 10, 12, 32, 40}) {
        EXPECT_FALSE(Node(index).isVisible()) << index;
        EXPECT_EQ(Node(index).text(), "Remote Loc.");
        EXPECT_EQ(Node(index).Colour(), QColor(255, 192, 192));
    }
    EXPECT_EQ(Label("lblnext"), "Next: North Gate at 08:00");
}

TEST_F(OverviewTest, FollowsARunWithoutBeingActivatedAgain) {
    desk.OpenField();
    LogIn();
    std::vector<std::string> seen;
    desk.clock.Every(1000, [&] {
        const std::string now = Label("lblnow").toStdString() + (Node(1).State() == DayState::Collecting ? " 1" : "") +
                                (Node(11).State() == DayState::Collecting ? " 11" : "");
        if (seen.empty() || seen.back() != now) {
            seen.push_back(now);
        }
    });
    desk.clock.After(30000, [this] { shell.Tick(); });
    desk.clock.Run(600000);
    EXPECT_THAT(seen, testing::ElementsAre("The line is free", "Collecting North Gate, 1 more waits 1",
                                           "Collecting O'Brien & <b>Sons</b> 11", "The line is free"));
    EXPECT_EQ(Node(1).Colour(), QColor(0, 255, 0));
    EXPECT_EQ(Node(11).Colour(), QColor(0, 255, 0));
    const auto month = desk.dbconn.First(
        "select lastvalue from configdata_detail where locationID=? and description='Volume This Month'", {first});
    EXPECT_EQ(The<QPushButton>(Front(), "lblgroup1").text().toStdString(), month->Text("lastvalue") + " SCM");
    EXPECT_EQ(The<QPushButton>(Front(), "lblgroup3").text(), "0 SCM");
}

TEST_F(OverviewTest, AStationThatCannotBeReachedStaysInItsColourAndTheNextOneFollows) {
    fieldsim::LineFaults::Options dead;
    dead.chances[fieldsim::Fault::Silence] = 1;
    desk.OpenField({.faults = {{first, dead}}});
    LogIn();
    desk.clock.After(30000, [this] { shell.Tick(); });
    desk.clock.Run(900000);
    EXPECT_EQ(Node(1).State(), DayState::Failed);
    EXPECT_THAT(Node(1).Line().toStdString(), testing::StartsWith("no answer, 3 attempts, 08:0"));
    EXPECT_EQ(Node(1).Colour(), QColor(192, 192, 255));
    EXPECT_EQ(Node(11).State(), DayState::Collected);
    EXPECT_THAT(Node(11).Line().toStdString(), testing::EndsWith(" by schedule"));
}

TEST_F(OverviewTest, AStationWithoutAPlaceIsToldAndHidesNoOther) {
    desk.dbconn.Execute("update configdata_master set groupno = 7 where locationID = ?", {first});
    LogIn();
    EXPECT_TRUE(Node(11).isVisible());
    EXPECT_THAT(desk.feedback.status, testing::Contains("No place in the overview for North Gate"));
}

TEST_F(OverviewTest, AButtonThatTwoStationsShareOpensTheOneThatItNames) {
    const std::int64_t third = Add("South Gate", 1);
    desk.dbconn.Execute("update configdata_master set groupcnt = 1 where locationID = ?", {third});
    LogIn();
    EXPECT_EQ(Node(1).text(), "South Gate");
    EXPECT_THAT(desk.feedback.status, testing::Contains("No place in the overview for North Gate: South Gate has it"));
    Click(Front(), "cmdLoc1");
    EXPECT_EQ(Label("lblconsumer"), "South Gate");
}

TEST_F(OverviewTest, AnOperatorCollectsAStationOrAllThatAreMissing) {
    desk.OpenField();
    LogIn();
    EXPECT_FALSE(The(Front(), "cmdMissing").isEnabled()) << "without the right to data";
    desk.shared.rights.rightOnline = true;
    LogIn();
    // Yesterday's contract hour of both has passed, and nobody was there.
    std::string now;
    desk.clock.After(1000, [&] {
        now = Label("lblnow").toStdString();
        EXPECT_EQ(Node(11).State(), DayState::Queued);
    });
    Click(Front(), "cmdMissing");
    EXPECT_EQ(now, "Collecting North Gate, 1 more waits");
    EXPECT_THAT(desk.feedback.status, testing::Contains("2 stations are missing and will be collected"));
    for (const int index : {1, 11}) {
        EXPECT_EQ(Node(index).State(), DayState::Collected);
        EXPECT_THAT(Node(index).Line().toStdString(), testing::EndsWith(" by hand"));
    }
    Click(Front(), "cmdMissing");
    EXPECT_EQ(desk.feedback.status.back(), "No station is missing");

    Node(11).setFocus();
    desk.clock.After(1000, [&] {
        now = Label("lblnow").toStdString();
        QTest::keyClick(&Node(11), Qt::Key_F5);
        EXPECT_EQ(desk.feedback.status.back(), "O'Brien & <b>Sons</b> is already being collected or queued");
    });
    QTest::keyClick(&Node(11), Qt::Key_F5);
    QCoreApplication::processEvents();
    EXPECT_EQ(now, "Collecting O'Brien & <b>Sons</b>");
    EXPECT_EQ(desk.Count("outcome where locationID=?", {first}), 1);
    EXPECT_EQ(desk.Count("outcome where locationID=? and how='hand'", {second}), 2);
}

TEST_F(OverviewTest, AClickOpensTheStationWhichIsNotConnectedYet) {
    LogIn();
    Click(Front(), "cmdLoc11");
    EXPECT_EQ(Front().windowTitle(), "Parameter List - v10.3----(O'Brien & <b>Sons</b>)");
    EXPECT_EQ(Label("lblconsumer"), "O'Brien & <b>Sons</b>");
    EXPECT_EQ(support::Focus(Front()), "cmdConnect");
    QTest::keyClick(&Front(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_NE(Front().findChild<QWidget*>("cmdLoc1"), nullptr);

    desk.dbconn.Execute("update configdata_master set modelno = 'CW_Micro' where locationID = ?", {first});
    Node(1).setFocus();
    QTest::keyClick(&Node(1), Qt::Key_Return);
    EXPECT_EQ(Front().windowTitle(), "Selection Menu - v10.3----(North Gate)");
}

TEST_F(OverviewTest, ATotalOpensTheVolumesOfItsGroup) {
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=12.5 where description='Volume This Month' and locationID=?", {first});
    Add("South Gate", 1);
    desk.dbconn.Execute("delete from configdata_detail where locationID=3");
    demo::DemoStation two{"Kiln", "CWGFC-MultiStream", "BSAP", "", 5, 5, "", 2, {"AGA3", "AGA7"}};
    const std::int64_t kiln = demo::AddStation(desk.dbconn, two);
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=100.25 * StreamNo, readat='2026-03-08 08:01:02', quality='good' where "
        "description='Volume This Month' and locationID=?",
        {kiln});
    Add("Never read", 1);
    LogIn();
    const QString label = The<QPushButton>(Front(), "lblgroup1").text();
    Click(Front(), "lblgroup1");
    EXPECT_EQ(Front().windowTitle(), "Group 1 - v10.3");
    auto& grid = The<::desk::Grid>(Front(), "floatgrid");
    EXPECT_EQ(grid.TabSeparated().toStdString(),
              "Station\tVolume\tUnit\tToday\tRemark\r\n"
              "North Gate\t12.5\tSCM\tdue 08:00\t\r\n"
              "South Gate\tno data\tMSCFH\tdue 08:00\t\r\n"
              "Kiln\t300.75\tSCM\tdue 10/03 00:00\tvolume of 08/03/2026 08:01:02\r\n"
              "Never read\tno data\tSCM\tdue 08:00\t\r\n");
    EXPECT_EQ(label, "313.25 SCM");
    EXPECT_EQ(Label("lbltotal"), "Total: 313.25");
}

TEST_F(OverviewTest, ShowsTheLastLinesOfWhatWasDone) {
    LogIn();
    shell.Status("Collecting Data");
    auto* list = Front().findChild<QListWidget*>("lstlines");
    EXPECT_EQ(list->item(0)->text(), "07:59:30   Collecting Data");
    for (int i = 0; i < 600; ++i) {
        shell.Status("line");
    }
    EXPECT_EQ(list->count(), 500);
}

// Each command of the menus and the right that it needs.
TEST_F(OverviewTest, AMenuOffersWhatTheRightsOfTheUserAllow) {
    struct Case {
        bool core::Rights::*right;
        const char* menu;
        const char* command;
    };
    const Case cases[] = {{&core::Rights::rightConfigStation, "cmdMenu", "cmdconfigsta"},
                          {&core::Rights::rightTts, "cmdMenu", "cmdtts"},
                          {&core::Rights::rightScheduler, "cmdMenu", "cmdScheduler"},
                          {&core::Rights::rightGasComposition, "cmdMenu", "cmdgc"},
                          {&core::Rights::rightUserManager, "cmdMenu", "cmduser"},
                          {&core::Rights::rightUtility, "cmdMenu", "cmdUtility"},
                          {&core::Rights::rightArchive, "cmdUtility", "cmdarch"},
                          {&core::Rights::rightDailyReport, "cmdUtility", "cmdReport"},
                          {&core::Rights::rightTrends, "cmdUtility", "cmdChart"},
                          {&core::Rights::rightHistorical, "cmdUtility", "cmdhisotrical"}};
    const auto enabled = [&](const Case& c) {
        LogIn();
        Click(Front(), "cmdMenu");
        if (std::string(c.menu) == "cmdUtility") {
            Click(Front(), "cmdUtility");
        }
        return The(Front(), c.command).isEnabled();
    };
    for (const Case& c : cases) {
        desk.shared.rights = {};
        desk.shared.rights.rightUtility = std::string(c.menu) == "cmdUtility";
        EXPECT_FALSE(enabled(c)) << c.command;
        desk.shared.rights.*c.right = true;
        EXPECT_TRUE(enabled(c)) << c.command;
    }
    // What the program does not have yet says so.
    LogIn();
    Click(Front(), "cmdMenu");
    EXPECT_FALSE(The(Front(), "cmd_calibration").isEnabled());
    EXPECT_EQ(The(Front(), "cmd_calibration").toolTip(), "In the window of a station, and in Utility");
}

}  // namespace
