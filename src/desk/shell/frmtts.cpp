#include "desk/shell/frmtts.h"

#include "core/Feedback.h"
#include "core/Logs.h"
#include "ui_frmtts.h"

namespace desk {

frmtts::frmtts(Desk& desk) : Page(desk, "TTS"), ui_(std::make_unique<Ui::frmtts>()) {
    ui_->setupUi(this);
    Title("TTS");
    CloseCommand(ui_->cmdexit);
    connect(ui_->cmd_view, &QPushButton::clicked, this, &frmtts::cmd_view);
    connect(ui_->cmd_clear, &QPushButton::clicked, this, &frmtts::cmd_clear);
    connect(ui_->cmdexit, &QPushButton::clicked, this, &Page::Closed);
    ui_->lblpart->hide();
}

frmtts::~frmtts() = default;

void frmtts::cmd_view() {
    Guarded([this] { ui_->rtb_tts->ShowLog(desk_.logs.ReadAudit(), ui_->lblpart); });
}

void frmtts::cmd_clear() {
    Guarded([this] {
        const std::string file = desk_.logs.ClearAudit();
        if (!file.empty()) {
            desk_.feedback.Status("The lines are kept in " + file);
        }
        ui_->rtb_tts->ShowLog({}, ui_->lblpart);
    });
}

}  // namespace desk
