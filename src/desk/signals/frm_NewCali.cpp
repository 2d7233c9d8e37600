#include "desk/signals/frm_NewCali.h"

#include "core/MAIN_Module.h"
#include "desk/signals/CalibFile.h"
#include "ui_frm_NewCali.h"

namespace desk {

frm_NewCali::frm_NewCali(Desk& desk) : Page(desk, "Calibration"), ui_(std::make_unique<Ui::frm_NewCali>()) {
    ui_->setupUi(this);
    Title("Calibration");
    const auto opens = [this](QAbstractButton* command, const char* file) {
        connect(command, &QAbstractButton::clicked, this, [this, file] {
            if (const QString failure = OpenCalibFile(desk_.shared.directory / "configuration", file);
                !failure.isEmpty()) {
                Show(failure);
            }
        });
    };
    opens(ui_->cmdEFM, "EFM_Calib.tvs");
    opens(ui_->cmdGFC, "GFC_Calib.tvs");
    opens(ui_->cmdTC, "TC_Calib.tvs");
    opens(ui_->cmdTF, "TF_Calib.tvs");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
}

frm_NewCali::~frm_NewCali() = default;

}  // namespace desk
