// Every screen that dials, before a modem that takes the number and says nothing more: Stop ends the dial at once.

#include <gtest/gtest.h>

#include <QComboBox>

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

constexpr std::int64_t diallingBsap = 1;
constexpr std::int64_t diallingModbus = 2;

session::Session& IdleSession(support::ScreenDesk& desk) {
    return *desk.Open<desk::frmparalist>(diallingBsap).GetSession();
}

struct DiallingScreen {
    const char* name;
    int port;
    const char* start;
    const char* stop;
    std::function<QWidget&(support::ScreenDesk& desk)> open;
};

void PrintTo(const DiallingScreen& screen, std::ostream* out) {
    *out << screen.name;
}

class StopTest : public testing::TestWithParam<DiallingScreen> {
  protected:
    StopTest() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = desk.shared.rights.rightArchive = desk.shared.rights.rightUtility = true;
        demo::AddStation(desk.dbconn, {"Hill Farm", "CWEFM-AGA3", "BSAP", "", 1, 6, "5550142"});
        demo::AddStation(desk.dbconn, {"Mill", "TeleFlow", "Modbus", "RTU", 2, 17, "5550143"});
        const std::deque<fieldsim::DialOutcome> mute(1, {"", 0});
        field = &desk.OpenField({.modems = {{1, mute}, {2, mute}}});
    }

    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
    fieldsim::Field* field = nullptr;
};

TEST_P(StopTest, EndsADialAtOnce) {
    const DiallingScreen& screen = GetParam();
    QWidget& page = screen.open(desk);
    const auto& dialled = field->Modem(screen.port)->Dialled();
    std::uint64_t dialledAt = 0;
    std::uint64_t stoppedAt = 0;
    desk.Press(page, screen.start,
               {{"dialled", [&] { return !dialled.empty(); }, [&] { dialledAt = desk.clock.Elapsed(); }},
                {"stopped", [&] { return desk.clock.Elapsed() >= dialledAt + 40000; },
                 [&] {
                     EXPECT_TRUE(The(page, screen.stop).isVisible() && The(page, screen.stop).isEnabled());
                     support::Click(page, screen.stop);
                     stoppedAt = desk.clock.Elapsed();
                 }}});
    ASSERT_NE(stoppedAt, 0U);
    EXPECT_LE(desk.clock.Elapsed() - stoppedAt, 4000U) << "the hang-up";
    EXPECT_EQ(dialled.size(), 1U);
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_FALSE(desk.Line().InUse());
    support::Answer(page);
    EXPECT_TRUE(The(page, screen.start).isEnabled());
    EXPECT_EQ(support::Box(page), nullptr);
}

const DiallingScreen diallingScreens[] = {
    {"frmparalist", 1, "cmdConnect", "cmddisconnect",
     [](auto& desk) -> QWidget& { return desk.template Open<desk::frmparalist>(diallingBsap); }},
    {"frmarchive", 1, "cmdGo", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmarchive>();
         The<QComboBox>(page, "cmbNode").setCurrentIndex(0);
         return page;
     }},
    {"frmCW_archive", 1, "cmdGo", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmCW_archive>(nullptr, diallingBsap);
         support::Type(page, "Txt_arcfile", "1");
         return page;
     }},
    {"frmarcmbus", 2, "cmdarchive", "cmd_stop",
     [](auto& desk) -> QWidget& { return desk.template Open<desk::frmarcmbus>(nullptr, diallingModbus); }},
    {"frmfetchlist", 1, "cmdfetch", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmfetchlist>();
         The<QComboBox>(page, "cmbnodename").setCurrentIndex(0);
         support::Type(page, "txtListNo", "54");
         return page;
     }},
    {"frmBeforeChange", 1, "cmdfetch", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmBeforeChange>(IdleSession(desk));
         The<QComboBox>(page, "txtListNo").setEditText("54");
         return page;
     }},
    {"frmAfterChange", 1, "cmdfetch", "cmd_stop",
     [](auto& desk) -> QWidget& {
         auto& page = desk.template Open<desk::frmAfterChange>(IdleSession(desk));
         The<QComboBox>(page, "txtListNo").setEditText("54");
         return page;
     }},
    {"frmCalib", 1, "cmdStart", "cmdStop",
     [](auto& desk) -> QWidget& { return desk.template Open<desk::frmCalib>(IdleSession(desk)); }},
};

INSTANTIATE_TEST_SUITE_P(Screens, StopTest, testing::ValuesIn(diallingScreens),
                         [](const auto& screen) { return std::string(screen.param.name); });

}  // namespace
