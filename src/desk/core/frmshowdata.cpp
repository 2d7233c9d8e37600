#include "desk/core/frmshowdata.h"

#include "collection/NodeOverview.h"
#include "core/Text.h"
#include "desk/core/EngineText.h"
#include "desk/core/Look.h"
#include "ui_frmshowdata.h"

namespace desk {

frmshowdata::frmshowdata(Desk& desk, int groupno)
    : Page(desk, "Group " + QString::number(groupno)), ui_(std::make_unique<Ui::frmshowdata>()) {
    ui_->setupUi(this);
    Title("Group " + QString::number(groupno));
    ui_->lbltotal->setFont(Larger(font(), 1.3, true));
    CloseCommand(ui_->cmdCancel);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &Page::Closed);
    ui_->floatgrid->FormatString("<Station|>Volume|<Unit");
    Guarded([&] {
        double total = 0;
        for (const auto& volume : collection::GroupVolumes(desk_.dbconn, groupno)) {
            ui_->floatgrid->AddItem(
                QString::fromStdString(volume.consumer + "\t" + volume.lastvalue + "\t" + volume.unit));
            total += core::Val(volume.lastvalue);
        }
        ui_->lbltotal->setText("Total: " + Number(core::RoundTo(total, 4)));
    });
    ui_->floatgrid->SelectRow(0);
}

frmshowdata::~frmshowdata() = default;

}  // namespace desk
