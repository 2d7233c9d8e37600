#include "desk/reports/frmdialout.h"

#include <QTimer>

#include "core/Clock.h"
#include "core/Feedback.h"
#include "ui_frmdialout.h"

namespace desk {

namespace {

constexpr int minuteMs = 60000;

}  // namespace

frmdialout::frmdialout(Desk& desk) : Page(desk, "Alarm Dial-Out"), ui_(std::make_unique<Ui::frmdialout>()) {
    ui_->setupUi(this);
    Title("Alarm Dial-Out");
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdackalarm, &QPushButton::clicked, this, [this] { Guarded([this] { cmdackalarm(); }); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    auto* timer = new QTimer(this);
    timer->setObjectName("Timer1");
    timer->start(minuteMs);
    connect(timer, &QTimer::timeout, this, [this] { Guarded([this] { Timer1(); }); });
    Guarded([this] { Reload(); });
}

frmdialout::~frmdialout() = default;

void frmdialout::Timer1() {
    if (alarm_) {
        AddDialoutRow(reports::ReadDialoutNumbers(desk_.dbconn).noted);
    }
}

void frmdialout::AddDialoutRow(std::int32_t phone) {
    reports::AddDialoutRow(desk_.dbconn, phone, desk_.clock.Now());
    Reload();
}

void frmdialout::cmdackalarm() {
    const reports::DialoutNumbers numbers = reports::ReadDialoutNumbers(desk_.dbconn);
    const int acknowledged = reports::AcknowledgeDialout(desk_.dbconn, numbers);
    Reload();
    desk_.feedback.Status("Calls of " + std::to_string(numbers.acknowledged) + " and " + std::to_string(numbers.noted) +
                          " acknowledged: " + std::to_string(acknowledged));
}

void frmdialout::Reload() {
    const auto calls = reports::ReadDialout(desk_.dbconn);
    const int selected = ui_->gridAlarm->Row();
    int open = 0;
    std::vector<QStringList> rows;
    for (const reports::DialoutCall& call : calls) {
        rows.push_back({QString::fromStdString(call.Phone_Num), QString::fromStdString(call.Date_Time),
                        call.Ack ? "True" : "False"});
        open += call.Ack ? 0 : 1;
    }
    ui_->gridAlarm->FormatString("<Phone number|<Date|<Acknowledged");
    ui_->gridAlarm->AddItems(rows);
    ui_->gridAlarm->SelectRow(qMax(selected, 0));
    ui_->lblscheduler->setText("Calls: " + QString::number(calls.size()) +
                               "   Not acknowledged: " + QString::number(open));
}

}  // namespace desk
