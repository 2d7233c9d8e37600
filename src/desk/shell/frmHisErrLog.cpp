#include "desk/shell/frmHisErrLog.h"

#include "core/MAIN_Module.h"
#include "desk/archive/frmarchive.h"
#include "desk/collection/frm_Sch_Data.h"
#include "desk/collection/frmrpt.h"
#include "desk/mail/frmemail.h"
#include "desk/mail/frmemail_settings.h"
#include "desk/reports/frmHistLog.h"
#include "desk/reports/frmchart.h"
#include "desk/reports/frmdialout.h"
#include "desk/shell/frmlog.h"
#include "desk/signals/ListPage.h"
#include "desk/signals/frm_NewCali.h"
#include "ui_frmHisErrLog.h"

namespace desk {

frmHisErrLog::frmHisErrLog(Desk& desk) : MenuPage(desk, "Utility"), ui_(std::make_unique<Ui::frmHisErrLog>()) {
    ui_->setupUi(this);
    Title("Utility");
    Opens<frmarchive>(ui_->cmdarch);
    Opens<frmlog>(ui_->cmdlog);
    Opens<frmrpt>(ui_->cmdReport);
    Opens<frm_Sch_Data>(ui_->cmd_schedul);
    Opens<frmHistLog>(ui_->cmdhisotrical);
    Opens<frmchart>(ui_->cmdChart);
    Opens<frmdialout>(ui_->cmd_dialout);
    Opens<frmemail>(ui_->cmd_email);
    Opens<frmemail_settings>(ui_->cmd_emailsettings);
    Opens<frmfetchlist>(ui_->cmd_list);
    Opens<frm_NewCali>(ui_->cmd_calib);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QAbstractButton::clicked, this, &Page::Closed);
}

frmHisErrLog::~frmHisErrLog() = default;

void frmHisErrLog::Activated() {
    const core::Rights& rights = desk_.shared.rights;
    ui_->cmdarch->setEnabled(rights.rightArchive);
    ui_->cmdReport->setEnabled(rights.rightDailyReport);
    ui_->cmdChart->setEnabled(rights.rightTrends);
    ui_->cmdhisotrical->setEnabled(rights.rightHistorical);
}

}  // namespace desk
