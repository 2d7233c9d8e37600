#include "desk/collection/frmScheduler.h"

#include <QShortcut>

#include "collection/Schedule.h"
#include "collection/Scheduler.h"
#include "core/Clock.h"
#include "desk/collection/ByHand.h"
#include "desk/kit/EngineText.h"
#include "ui_frmScheduler.h"

namespace desk {

frmScheduler::frmScheduler(Desk& desk)
    : Page(desk, "Scheduler Task"), ui_(std::make_unique<Ui::frmScheduler>()), follow_(new QTimer(this)) {
    ui_->setupUi(this);
    Title("Scheduler Task");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(ui_->cmdCollect, &QPushButton::clicked, this, &frmScheduler::Collect);
    connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, ui_->cmdCollect, &QPushButton::click);
    connect(ui_->cmdMissing, &QPushButton::clicked, this, [this] {
        Guarded([this] {
            CollectMissing(desk_);
            Follow();
        });
    });
    follow_->setObjectName("tmrfollow");
    connect(follow_, &QTimer::timeout, this, [this] { Guarded([this] { Show(); }); });
    ui_->Grid->FormatString("<Station|^Contract Hour|<Sampled Today|<Result|<When|<How|<Reason");
    Guarded([this] { Show(); });
    ui_->cmdCollect->setEnabled(MayCollect(desk_) && !stations_.empty());
    ui_->cmdMissing->setEnabled(MayCollect(desk_) && !stations_.empty());
    ui_->Grid->SelectRow(0);
}

frmScheduler::~frmScheduler() = default;

void frmScheduler::Show() {
    stations_.clear();
    std::vector<QStringList> rows;
    for (const auto& line : collection::ScheduleLines(desk_.dbconn)) {
        QStringList row{Text(line.consumer), Text(line.contracthour), Text(line.sampledtoday)};
        const collection::DayLine today = LineNow(desk_, line.locationId);
        const auto outcome = collection::OutcomeOfToday(desk_.dbconn, line.locationId, desk_.clock.Now());
        const bool isOver =
            outcome && today.state != collection::DayState::Queued && today.state != collection::DayState::Collecting;
        row += isOver ? QStringList{Text(collection::ResultText(outcome->result)), Text(outcome->ended.substr(11, 5)),
                                    Text(collection::HowText(outcome->how)), Text(outcome->reason)}
                      : QStringList{Text(today.text), "", "", ""};
        stations_.push_back(line.locationId);
        rows.push_back(row);
    }
    if (ui_->Grid->Rows() != static_cast<int>(rows.size())) {
        ui_->Grid->Clear();
        ui_->Grid->AddItems(rows);
        return;
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (int column = 0; column < rows[row].size(); ++column) {
            ui_->Grid->TextMatrix(static_cast<int>(row), column, rows[row][column]);
        }
    }
}

void frmScheduler::Collect() {
    const int row = ui_->Grid->Row();
    if (row >= 0 && static_cast<std::size_t>(row) < stations_.size()) {
        Guarded([&] {
            CollectNow(desk_, stations_[static_cast<std::size_t>(row)], ui_->Grid->TextMatrix(row, 0).toStdString());
            Follow();
        });
    }
}

void frmScheduler::Follow() {
    Show();
    follow_->start(1000);
}

}  // namespace desk
