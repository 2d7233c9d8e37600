#include "desk/shell/frmlog.h"

#include "core/Feedback.h"
#include "core/Logs.h"
#include "ui_frmlog.h"

namespace desk {

frmlog::frmlog(Desk& desk) : Page(desk, "RTU Error Log"), ui_(std::make_unique<Ui::frmlog>()) {
    ui_->setupUi(this);
    Title("RTU Error Log");
    CloseCommand(ui_->cmdOk);
    connect(ui_->cmdclear, &QPushButton::clicked, this, &frmlog::cmdclear);
    connect(ui_->cmdOk, &QPushButton::clicked, this, &Page::Closed);
    ui_->lblpart->hide();
    Guarded([this] { ui_->Text1->ShowLog(desk_.logs.ReadRtuErr(), ui_->lblpart); });
}

frmlog::~frmlog() = default;

// What fails here is told, but not written down: that would make the log anew which is being cleared.
void frmlog::cmdclear() {
    if (const auto failure = desk_.logs.ClearRtuErr()) {
        desk_.feedback.Status("RTU_Err.log: " + failure.message());
        return;
    }
    ui_->Text1->ShowLog({}, ui_->lblpart);
}

}  // namespace desk
