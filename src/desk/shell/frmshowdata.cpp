#include "desk/shell/frmshowdata.h"

#include "core/Clock.h"
#include "core/Text.h"
#include "desk/collection/ByHand.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/Look.h"
#include "reading/Claim.h"
#include "reports/NodeOverview.h"
#include "ui_frmshowdata.h"

namespace desk {

frmshowdata::frmshowdata(Desk& desk, int groupno)
    : Page(desk, "Group " + QString::number(groupno)), ui_(std::make_unique<Ui::frmshowdata>()) {
    ui_->setupUi(this);
    Title("Group " + QString::number(groupno));
    ui_->lbltotal->setFont(Larger(font(), 1.3, true));
    CloseCommand(ui_->cmdCancel);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &Page::Closed);
    ui_->floatgrid->FormatString("<Station|>Volume|<Unit|<Today|<Remark");
    Guarded([&] {
        const std::string today = core::IsoText(desk_.clock.Now()).substr(0, 10);
        double total = 0;
        for (const auto& volume : reports::GroupVolumes(desk_.dbconn, groupno)) {
            const collection::DayLine line = LineNow(desk_, volume.locationId);
            QStringList remarks;
            if (!volume.readat.empty() && !volume.readat.starts_with(today)) {
                remarks.append("volume of " + Text(reading::MomentText(volume.readat)));
            }
            if (!line.reason.empty()) {
                remarks.append(Text(line.reason));
            }
            ui_->floatgrid->AddItems({{Text(volume.consumer), volume.known ? Text(volume.lastvalue) : "no data",
                                       Text(volume.unit), Text(line.text), remarks.join("; ")}});
            total += volume.known ? core::Val(volume.lastvalue) : 0;
        }
        ui_->lbltotal->setText("Total: " + Number(core::RoundTo(total, 4)));
    });
    ui_->floatgrid->SelectRow(0);
}

frmshowdata::~frmshowdata() = default;

}  // namespace desk
