#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <memory>

#include "demo/screens/Acting.h"
#include "demo/screens/Screens.h"
#include "desk/session/frmparalist.h"
#include "desk/signals/frmCalib.h"
#include "desk/signals/frmCalibSignals.h"
#include "desk/signals/frmCalibration.h"
#include "desk/signals/frm_NewCali.h"
#include "desk/signals/frm_cali.h"

namespace demo {

namespace {

constexpr std::int64_t multiStream = 4;

std::string Label(desk::Page& page, const char* name) {
    return page.findChild<QLabel*>(name)->text().toStdString();
}

// A calibration on the line of a session, as it is when `lblmsg` has a text for the first time.
struct Moment {
    int tab = 0;
    const char* appliedField = "txtDPApplied";
    const char* applied = "100";
    const char* command = nullptr;  // given when the values are there
    std::string message{};          // empty: as soon as they are there
};

Screen Calibrating(const std::string& name, const Moment& moment) {
    Screen screen;
    screen.name = name;
    screen.show = [](Stage& stage) {
        stage.Open<desk::frmparalist>(multiStream);
        return static_cast<QWidget*>(&stage.Shell());
    };
    screen.alive = [moment](Stage& stage, const std::function<void()>& look) {
        auto& session = dynamic_cast<desk::frmparalist&>(stage.Front());
        Press(stage, session, "cmdConnect");
        auto& page = stage.Open<desk::frmCalib>(*session.GetSession());
        page.findChild<QTabWidget*>("SSTab1")->setCurrentIndex(moment.tab);
        // The timer goes on when the page is gone.
        auto step = std::make_shared<int>(0);
        stage.Clock().Every(20, [&page, moment, look, step] {
            if (*step == 0 && Label(page, "lblstate") == "Reading" && Label(page, "lblDPInStation") != "") {
                *step = 1;
                page.findChild<QLineEdit*>(moment.appliedField)->setText(moment.applied);
                if (moment.command != nullptr) {
                    Press(page, moment.command);
                    Agree(page);
                }
            } else if (*step == 1 && Label(page, "lblmsg") == moment.message) {
                *step = 2;
                look();
                Press(page, "cmdStop");
            }
        });
        Press(stage, page, "cmdStart");
        *step = 2;
        Press(page, "cmdClose");
        Press(stage, session, "cmddisconnect");
    };
    return screen;
}

QWidget* Menu(Stage& stage) {
    auto& session = stage.Open<desk::frmparalist>(multiStream);
    stage.Open<desk::frmCalibration>(session.GetSession());
    return &stage.Shell();
}

QWidget* Help(Stage& stage) {
    stage.Open<desk::frm_cali>("CWGFC-AGA7");
    return &stage.Shell();
}

template <class Form>
QWidget* Opened(Stage& stage) {
    stage.Open<Form>();
    return &stage.Shell();
}

}  // namespace

std::vector<Screen> CalibrationScreens() {
    return {
        {"calibration_menu", Menu},
        {"calibration_signals", Opened<desk::frmCalibSignals>},
        Calibrating("calibration", {}),
        Calibrating("calibration_span", {.command = "cmdCalibSpan", .message = "DP:-Calibrate Span... Please Wait..."}),
        Calibrating("calibration_done", {.command = "cmdCalibSpan", .message = "DP Calibration Completed"}),
        Calibrating("calibration_refused", {.tab = 1,
                                            .appliedField = "txtSPApplied",
                                            .applied = "10",
                                            .command = "cmdCalibSpan1",
                                            .message = "SP Limit exceeds from +(-) 5%"}),
        {"calibration_help", Help},
        {"calibration_templates", Opened<desk::frm_NewCali>},
    };
}

}  // namespace demo
