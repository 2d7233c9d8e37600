#include "desk/core/frmHisErrLog.h"

#include "core/MAIN_Module.h"
#include "ui_frmHisErrLog.h"

namespace desk {

frmHisErrLog::frmHisErrLog(Desk& desk) : MenuPage(desk, "Utility"), ui_(std::make_unique<Ui::frmHisErrLog>()) {
    ui_->setupUi(this);
    Title("Utility");
    NotYet(ui_->cmdarch);
    NotYet(ui_->cmd_calib);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
}

frmHisErrLog::~frmHisErrLog() = default;

void frmHisErrLog::Activated() {
    const core::Rights& rights = desk_.shared.rights;
    ui_->cmdReport->setEnabled(rights.rightDailyReport);
    ui_->cmdChart->setEnabled(rights.rightTrends);
    ui_->cmdhisotrical->setEnabled(rights.rightHistorical);
}

}  // namespace desk
