#include "demo/screens/Screens.h"

#include <QApplication>

#include "core/MAIN_Module.h"
#include "desk/core/frmGraphicRept.h"
#include "desk/core/frmHisErrLog.h"
#include "desk/core/frmLogin.h"
#include "desk/core/frmmain.h"
#include "desk/core/frmshowdata.h"
#include "desk/session/StationDoor.h"

namespace demo {

namespace {

QWidget* Overview(Stage& stage) {
    stage.LogIn();
    return &stage.Shell();
}

QWidget* Click(Stage& stage, const char* command) {
    stage.Front().findChild<QAbstractButton*>(command)->click();
    return &stage.Shell();
}

// A page of the menus, opened by itself.
template <class Form, class... Arguments>
std::function<QWidget*(Stage&)> Page(Arguments... arguments) {
    return [=](Stage& stage) {
        stage.Open<Form>(arguments...);
        return static_cast<QWidget*>(&stage.Shell());
    };
}

QWidget* Login(Stage& stage) {
    desk::Desk& desk = stage.Surroundings();
    auto* login = new desk::frmLogin(desk.dbconn, desk.shared, desk.logs, [](const QString&, const QString&) {});
    login->setParent(&stage.Shell(), Qt::Dialog);
    login->show();
    return login;
}

}  // namespace

const std::vector<Screen>& Screens() {
    static const std::vector<Screen> screens{
        {"login", Login},
        {"overview", Overview},
        {"menu", [](Stage& stage) { return Click(stage, "cmdMenu"); }},
        {"group", Page<desk::frmshowdata>(1)},
        {"station", Page<desk::StationDoor>(std::int64_t{3})},
        {"utility", Page<desk::frmHisErrLog>()},
    };
    return screens;
}

}  // namespace demo
