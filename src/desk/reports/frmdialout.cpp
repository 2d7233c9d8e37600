#include "desk/reports/frmdialout.h"

#include "core/Clock.h"
#include "reports/Dialout.h"
#include "ui_frmdialout.h"

namespace desk {

namespace {

constexpr int timerMs = 60000;

}  // namespace

frmdialout::frmdialout(Desk& desk) : Page(desk, "Alarm Dial-out"), ui_(std::make_unique<Ui::frmdialout>()) {
    ui_->setupUi(this);
    Title("Alarm Dial-out");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdackalarm, &QPushButton::clicked, this, [this] { Guarded([this] { cmdackalarm(); }); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(&timer1_, &QTimer::timeout, this, &frmdialout::Timer1);
    timer1_.start(timerMs);
    Guarded([this] { Reload(); });
}

frmdialout::~frmdialout() = default;

void frmdialout::Reload() {
    ui_->gridAlarm->FormatString("<Phone Number|<Date|<Acknowledged");
    int open = 0;
    for (const reports::DialoutRow& row : reports::ReadDialout(desk_.dbconn)) {
        ui_->gridAlarm->AddItem(QString::fromStdString(row.Phone_Num + "\t" + row.Date_Time + "\t") +
                                (row.Ack ? "True" : "False"));
        open += row.Ack ? 0 : 1;
    }
    ui_->lblscheduler->setText(QString("%1 calls, %2 not acknowledged").arg(ui_->gridAlarm->Rows()).arg(open));
    ui_->gridAlarm->SelectRow(0);
}

void frmdialout::Timer1() {
    if (alarm_) {
        Guarded([this] {
            reports::AddDialoutRow(desk_.dbconn, desk_.clock.Now(), reports::alarmPhone);
            Reload();
        });
    }
}

void frmdialout::cmdackalarm() {
    reports::AcknowledgeAlarms(desk_.dbconn);
    Reload();
}

}  // namespace desk
