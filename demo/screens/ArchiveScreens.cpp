#include <QComboBox>
#include <QLineEdit>

#include "core/MAIN_Module.h"
#include "demo/DemoRegister.h"
#include "demo/screens/Acting.h"
#include "demo/screens/Screens.h"
#include "desk/archive/frmCW_archive.h"
#include "desk/archive/frmarchive.h"
#include "desk/archive/frmarcmbus.h"
#include "desk/archive/frmparaarchive.h"
#include "desk/session/frm_CWM.h"
#include "desk/session/frmparalist.h"

namespace demo {

namespace {

constexpr std::int64_t teleFlow = 1;
constexpr std::int64_t multiStream = 4;

using Work = std::function<void(desk::Page& page)>;

// A download of the page in front: in its midst, some seconds after the start, or behind its end.
void Collect(Stage& stage, const char* command, bool running, const std::function<void()>& look) {
    constexpr std::uint32_t someBlocksMs = 3000;
    desk::Page& page = stage.Front();
    if (running) {
        stage.Clock().After(someBlocksMs, look);
    }
    Press(stage, page, command);
    CloseBoxes(page);
    if (!running) {
        look();
    }
}

// A screen that calls by itself. `choose` sets its controls.
template <class Form, class... Arguments>
Screen OwnCall(const std::string& name, const char* command, bool running, const Work& choose, Arguments... arguments) {
    Screen screen;
    screen.name = name;
    screen.show = [choose, arguments...](Stage& stage) {
        choose(stage.Open<Form>(arguments...));
        return static_cast<QWidget*>(&stage.Shell());
    };
    screen.alive = [=](Stage& stage, const std::function<void()>& look) { Collect(stage, command, running, look); };
    return screen;
}

// The online screen on the line of a session.
Screen Online(const std::string& name, bool running, const Work& choose) {
    Screen screen;
    screen.name = name;
    screen.show = [](Stage& stage) {
        stage.Open<desk::frmparalist>(multiStream);
        return static_cast<QWidget*>(&stage.Shell());
    };
    screen.alive = [=](Stage& stage, const std::function<void()>& look) {
        desk::Page& session = stage.Front();
        Press(stage, session, "cmdConnect");
        Press(session, "cmd_arc");
        desk::Page& page = stage.Front();
        choose(page);
        Collect(stage, "cmdGo", running, look);
        Press(page, "cmdClose");
        Press(stage, session, "cmddisconnect");
    };
    return screen;
}

QWidget* MicroMenu(Stage& stage) {
    core::Database& dbconn = stage.Surroundings().dbconn;
    DemoStation micro{"Mill Street", "CW_Micro", "BSAP", "", 4, 9};
    micro.duration = "NO";
    stage.Open<desk::frm_CWM>(AddStation(dbconn, micro));
    return &stage.Shell();
}

}  // namespace

std::vector<Screen> ArchiveScreens() {
    return {
        OwnCall<desk::frmarchive>("archive_audit", "cmdGo", false,
                                  [](desk::Page& page) { page.findChild<QComboBox*>("cmbNode")->setCurrentIndex(0); }),
        OwnCall<desk::frmCW_archive>(
            "archive_cw", "cmdGo", false,
            [](desk::Page& page) { page.findChild<QLineEdit*>("Txt_arcfile")->setText("4"); },
            static_cast<session::Session*>(nullptr), std::optional<std::int64_t>(multiStream)),
        Online("archive_online", true, [](desk::Page&) {}),
        Online("archive_by_date", false,
               [](desk::Page& page) {
                   Press(page, "che_new");
                   Press(page, "chkStart");
               }),
        {"cw_menu", MicroMenu},
        OwnCall<desk::frmarcmbus>(
            "archive_modbus_running", "cmdarchive", true, [](desk::Page&) {}, static_cast<session::Session*>(nullptr),
            teleFlow),
        OwnCall<desk::frmarcmbus>(
            "archive_modbus", "cmdarchive", false, [](desk::Page&) {}, static_cast<session::Session*>(nullptr),
            teleFlow),
    };
}

}  // namespace demo
