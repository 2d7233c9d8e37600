// Every screen that works on a line: Stop ends a dial at once, and what becomes of the work when a station is due.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>

#include "desk/archive/frmCW_archive.h"
#include "desk/archive/frmarchive.h"
#include "desk/archive/frmarcmbus.h"
#include "desk/session/frmparalist.h"
#include "desk/signals/ListPage.h"
#include "desk/signals/frmAfterChange.h"
#include "desk/signals/frmBeforeChange.h"
#include "desk/signals/frmCalib.h"
#include "support/ScreenDesk.h"

namespace {

using support::The;

constexpr std::int64_t bsapID = 1;
constexpr std::int64_t modbusID = 2;
constexpr std::int64_t dueID = 3;

session::Session& IdleSession(support::ScreenDesk& desk) {
    return *desk.Open<desk::frmparalist>(bsapID).GetSession();
}

struct WorkingScreen {
    const char* name;
    int port;
    const char* start;
    const char* stop;
    std::function<QWidget&(support::ScreenDesk& desk)> open;
    bool keepsItsLine = false;  // the schedule waits for it
};

void PrintTo(const WorkingScreen& screen, std::ostream* out) {
    *out << screen.name;
}

class StopTest : public testing::TestWithParam<WorkingScreen> {
  protected:
    StopTest() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = desk.shared.rights.rightArchive = desk.shared.rights.rightUtility = true;
        demo::AddStation(desk.dbconn, {"Hill Farm", "CWEFM-AGA3", "BSAP", "", 1, 1, "5550142"});
        demo::AddStation(desk.dbconn, {"Mill", "TeleFlow", "Modbus", "RTU", 2, 17, "5550143"});
        demo::AddStation(desk.dbconn, {"Due", "TeleFlow", "Modbus", "RTU", 3, 9, "", 1, {}, "12:00"});
    }

    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
};

TEST_P(StopTest, EndsADialAtOnce) {
    // A modem that takes the number and says nothing more.
    const std::deque<fieldsim::DialOutcome> mute(1, {"", 0});
    auto& field = desk.OpenField({.modems = {{1, mute}, {2, mute}}});
    const WorkingScreen& screen = GetParam();
    QWidget& page = screen.open(desk);
    const auto& dialled = field.Modem(screen.port)->Dialled();
    std::uint64_t dialledAt = 0;
    std::uint64_t stoppedAt = 0;
    desk.Press(page, screen.start,
               {{"dialled", [&] { return !dialled.empty(); }, [&] { dialledAt = desk.clock.Elapsed(); }},
                {"stopped", [&] { return desk.clock.Elapsed() >= dialledAt + 40000; },
                 [&] {
                     EXPECT_TRUE(support::Seen(page, screen.stop) && support::Enabled(page, screen.stop));
                     support::Click(page, screen.stop);
                     stoppedAt = desk.clock.Elapsed();
                 }}});
    ASSERT_NE(stoppedAt, 0U);
    EXPECT_LE(desk.clock.Elapsed() - stoppedAt, 4000U) << "the hang-up";
    EXPECT_EQ(dialled.size(), 1U);
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_FALSE(desk.lines.InUse());
    support::Answer(page);
    EXPECT_TRUE(support::Enabled(page, screen.start));
    EXPECT_EQ(support::Box(page), nullptr);
}

// A screen that keeps its line is waited for; from another the line is taken, and it says so.
TEST_P(StopTest, AStationThatIsDueIsCollectedAndTheScreenSaysWhatBecameOfItsWork) {
    const WorkingScreen& screen = GetParam();
    if (std::string(screen.name) == "frmparalist") {
        GTEST_SKIP() << "a session has a story of its own";
    }
    desk.dbconn.Execute("update configdata_master set phoneno=''");
    desk.dbconn.Execute(
        "update configdata_master set comport=(select comport from configdata_master where locationID=?) where "
        "locationID=?",
        {screen.port, dueID});
    desk.OpenField();
    desk.lines.WhenReleased([this] { desk.clock.After(1, [this] { desk.scheduler.Serve(); }); });
    QWidget& page = screen.open(desk);
    std::uint64_t openedAt = 0;
    desk.Press(page, screen.start,
               {{"open", [&] { return desk.ports.PortOpen(); }, [&] { openedAt = desk.clock.Elapsed(); }},
                {"due", [&] { return desk.clock.Elapsed() >= openedAt + 400; },
                 [&] {
                     desk.dbconn.Execute("update configdata_master set contracthour='09:00' where locationID=3");
                     desk.scheduler.Tick();
                     EXPECT_EQ(desk.scheduler.Busy(), !screen.keepsItsLine);
                 }}});
    desk.clock.Run(30000);
    EXPECT_TRUE(desk.Master(dueID).Bool("sampledtoday")) << desk.RtuErr();
    EXPECT_FALSE(desk.lines.InUse());
    std::string told = support::Answer(page);
    if (told.empty()) {
        told = support::Text(page, "lblmsg");
    }
    EXPECT_THAT(told,
                testing::HasSubstr(screen.keepsItsLine ? "List Fetched" : "A scheduled collection has taken the line"));
    EXPECT_TRUE(support::Enabled(page, screen.start));
    EXPECT_FALSE(support::Enabled(page, screen.stop));
}

const WorkingScreen workingScreens[] = {
    {"frmparalist", 1, "cmdConnect", "cmddisconnect",
     [](auto& desk) -> QWidget& { return desk.template Open<desk::frmparalist>(bsapID); }},
    {"frmarchive", 1, "cmdGo", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmarchive>();
         The<QComboBox>(page, "cmbNode").setCurrentIndex(0);
         return page;
     }},
    {"frmCW_archive", 1, "cmdGo", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmCW_archive>(nullptr, bsapID);
         support::Type(page, "Txt_arcfile", "1");
         return page;
     }},
    {"frmarcmbus", 2, "cmdarchive", "cmd_stop",
     [](auto& desk) -> QWidget& { return desk.template Open<desk::frmarcmbus>(nullptr, modbusID); }},
    {"frmfetchlist", 1, "cmdfetch", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmfetchlist>();
         The<QComboBox>(page, "cmbnodename").setCurrentIndex(0);
         support::Type(page, "txtListNo", "10");
         return page;
     }},
    {"frmBeforeChange", 1, "cmdfetch", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmBeforeChange>(IdleSession(desk));
         The<QComboBox>(page, "txtListNo").setEditText("10");
         return page;
     },
     true},
    {"frmAfterChange", 1, "cmdfetch", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmAfterChange>(IdleSession(desk));
         The<QComboBox>(page, "txtListNo").setEditText("10");
         return page;
     },
     true},
    {"frmCalib", 1, "cmdStart", "cmdStop",
     [](auto& desk) -> QWidget& { return desk.template Open<desk::frmCalib>(IdleSession(desk)); }},
};

INSTANTIATE_TEST_SUITE_P(Screens, StopTest, testing::ValuesIn(workingScreens),
                         [](const auto& screen) { return std::string(screen.param.name); });

}  // namespace
