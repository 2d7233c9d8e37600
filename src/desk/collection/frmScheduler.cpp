#include "desk/collection/frmScheduler.h"

#include "collection/Schedule.h"
#include "ui_frmScheduler.h"

namespace desk {

frmScheduler::frmScheduler(Desk& desk) : Page(desk, "Scheduler Task"), ui_(std::make_unique<Ui::frmScheduler>()) {
    ui_->setupUi(this);
    Title("Scheduler Task");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    ui_->Grid->FormatString("<Station|^Contract Hour|<Sampled Today");
    Guarded([this] {
        std::vector<QStringList> rows;
        for (const auto& line : collection::ScheduleLines(desk_.dbconn)) {
            rows.push_back({QString::fromStdString(line.consumer), QString::fromStdString(line.contracthour),
                            QString::fromStdString(line.sampledtoday)});
        }
        ui_->Grid->AddItems(rows);
    });
    ui_->Grid->SelectRow(0);
}

frmScheduler::~frmScheduler() = default;

}  // namespace desk
