#include "desk/shell/frmmain.h"

#include "core/Logs.h"
#include "core/MAIN_Module.h"
#include "core/Users.h"
#include "desk/collection/frmGCWrite.h"
#include "desk/collection/frmScheduler.h"
#include "desk/kit/Navigator.h"
#include "desk/reports/frmHistLog.h"
#include "desk/shell/frmHisErrLog.h"
#include "desk/shell/frmtts.h"
#include "desk/shell/frmuser.h"
#include "desk/stations/frmconfigstation.h"
#include "ui_frmmain.h"

namespace desk {

frmmain::frmmain(Desk& desk) : MenuPage(desk, "Main Options"), ui_(std::make_unique<Ui::frmmain>()) {
    ui_->setupUi(this);
    Title("Main Options");
    // It has never opened anything: a calibration needs a station.
    ui_->cmd_calibration->setEnabled(false);
    ui_->cmd_calibration->setToolTip("In the window of a station, and in Utility");
    CloseCommand(ui_->cmdonline);
    connect(ui_->cmdonline, &QPushButton::clicked, this, &frmmain::NodesWanted);
    Opens<frmconfigstation>(ui_->cmdconfigsta);
    Opens<frmuser>(ui_->cmduser);
    Opens<frmtts>(ui_->cmdtts);
    Opens<frmHisErrLog>(ui_->cmdUtility);
    Opens<frmScheduler>(ui_->cmdScheduler);
    Opens<frmHistLog>(ui_->cmdfetchlist);
    Opens<frmGCWrite>(ui_->cmdgc);
    connect(ui_->cmdlogoff, &QPushButton::clicked, this, &frmmain::cmdlogoff);
    connect(ui_->cmdexit, &QPushButton::clicked, this, &frmmain::ExitWanted);
    ui_->cmdonline->setFocus();
}

frmmain::~frmmain() = default;

void frmmain::ApplyRights() {
    const core::Rights& rights = desk_.shared.rights;
    ui_->cmdconfigsta->setEnabled(rights.rightConfigStation);
    ui_->cmdtts->setEnabled(rights.rightTts);
    ui_->cmdScheduler->setEnabled(rights.rightScheduler);
    ui_->cmdgc->setEnabled(rights.rightGasComposition);
    ui_->cmduser->setEnabled(rights.rightUserManager);
    ui_->cmdUtility->setEnabled(rights.rightUtility);
}

void frmmain::cmdlogoff() {
    Guarded([this] {
        core::ClearLogon(desk_.dbconn, desk_.shared.currentuser);
        desk_.logs.WriteAudit(desk_.logs.Stamp() + ":  user " + desk_.shared.currentuser + " logged out");
    });
    Q_EMIT LoggedOff();
}

}  // namespace desk
