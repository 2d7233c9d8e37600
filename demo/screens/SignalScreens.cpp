#include <QLineEdit>

#include "demo/screens/Acting.h"
#include "demo/screens/Screens.h"
#include "desk/kit/Grid.h"
#include "desk/session/frmparalist.h"
#include "desk/signals/ListPage.h"

namespace demo {

namespace {

constexpr std::int64_t hillFarm = 3;

void ReadList(Stage& stage, desk::Page& page, const char* command) {
    page.findChild<QLineEdit*>("txtListNo")->setText("10");
    Press(stage, page, command);
    CloseBoxes(page);
}

// A screen of signals on the line of a session, opened by `door` of the online window.
Screen InSession(const std::string& name, const char* door,
                 const std::function<void(Stage& stage, desk::Page& page, const std::function<void()>& look)>& work) {
    Screen screen;
    screen.name = name;
    screen.show = [](Stage& stage) {
        stage.Open<desk::frmparalist>(hillFarm);
        return static_cast<QWidget*>(&stage.Shell());
    };
    screen.alive = [=](Stage& stage, const std::function<void()>& look) {
        desk::Page& session = stage.Front();
        Press(stage, session, "cmdConnect");
        Press(session, door);
        desk::Page& page = stage.Front();
        work(stage, page, look);
        CloseBoxes(page);
        Press(page, "cmdClose");
        Press(stage, session, "cmddisconnect");
    };
    return screen;
}

}  // namespace

std::vector<Screen> SignalScreens() {
    return {
        InSession("signal_list_running", "cmdfetch",
                  [](Stage& stage, desk::Page& page, const std::function<void()>& look) {
                      stage.Clock().After(1500, look);
                      ReadList(stage, page, "cmdfetch");
                  }),
        InSession("signal_list", "cmdfetch",
                  [](Stage& stage, desk::Page& page, const std::function<void()>& look) {
                      ReadList(stage, page, "cmdfetch");
                      auto* grid = page.findChild<desk::Grid*>("signalsGrid");
                      grid->SelectRow(1);
                      Q_EMIT grid->RowChosen(1);
                      look();
                  }),
        InSession("signal_search", "cmdSignalSearch",
                  [](Stage& stage, desk::Page& page, const std::function<void()>& look) {
                      page.findChild<QLineEdit*>("txtSigName")->setText("METER1.");
                      Press(stage, page, "cmdSearch");
                      CloseBoxes(page);
                      look();
                  }),
        {"signal_list_call",
         [](Stage& stage) {
             ReadList(stage, stage.Open<desk::frmfetchlist>(), "cmdfetch");
             return static_cast<QWidget*>(&stage.Shell());
         }},
    };
}

}  // namespace demo
