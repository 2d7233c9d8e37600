#include "desk/signals/frmCalibration.h"

#include "desk/signals/frmCalib.h"
#include "desk/signals/frmCalibSignals.h"
#include "desk/signals/frm_cali.h"
#include "session/Session.h"
#include "ui_frmCalibration.h"

namespace desk {

frmCalibration::frmCalibration(Desk& desk, session::Session* session)
    : MenuPage(desk, "Calibration"), ui_(std::make_unique<Ui::frmCalibration>()) {
    ui_->setupUi(this);
    Title("Calibration");
    Opens<frmCalibSignals>(ui_->cmdCalibSignal);
    connect(ui_->cmdCalib, &QAbstractButton::clicked, this,
            [this, session] { Guarded([&] { desk_.navigator.Open(new frmCalib(desk_, *session)); }); });
    connect(ui_->cmdHelp, &QAbstractButton::clicked, this, [this, session] {
        Guarded(
            [&] { desk_.navigator.Open(new frm_cali(desk_, QString::fromStdString(session->GetStation().modelno))); });
    });
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
}

frmCalibration::~frmCalibration() = default;

}  // namespace desk
