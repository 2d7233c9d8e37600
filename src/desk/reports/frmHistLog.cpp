#include "desk/reports/frmHistLog.h"

#include "reports/HistoryLog.h"
#include "ui_frmHistLog.h"

namespace desk {

namespace {

const QString title = "History Log -- ";

core::DateTime DayOf(const QDateEdit& picker) {
    const QDate date = picker.date();
    return {date.year(), date.month(), date.day(), 0, 0, 0};
}

}  // namespace

frmHistLog::frmHistLog(Desk& desk) : Page(desk, title), ui_(std::make_unique<Ui::frmHistLog>()) {
    ui_->setupUi(this);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdGo, &QPushButton::clicked, this, [this] { Guarded([this] { cmdGo(); }); });
    connect(ui_->cmdList, &QPushButton::clicked, this, [this] { Guarded([this] { cmdList(); }); });
    connect(ui_->cmdReset, &QPushButton::clicked, this, &frmHistLog::cmdReset);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    cmdReset();
}

frmHistLog::~frmHistLog() = default;

void frmHistLog::ShowStations(bool found) {
    ui_->Label3->setVisible(found);
    ui_->cmbNode->setVisible(found);
    ui_->cmdList->setEnabled(found);
    ui_->cmdGo->setDefault(!found);
    ui_->cmdList->setDefault(found);
}

void frmHistLog::cmdGo() {
    const core::DateTime from = DayOf(*ui_->DTPicker1);
    const core::DateTime to = DayOf(*ui_->DTPicker2);
    const std::string fault = reports::CheckDays(from, to, desk_.clock.Now());
    if (!fault.empty()) {
        Show(QString::fromStdString(fault));
        return;
    }
    const auto stations = reports::FindLogStations(desk_.dbconn, from, to);
    if (stations.empty()) {
        Show("No Record Found");
        return;
    }
    ui_->cmbNode->clear();
    for (const reports::LogStation& station : stations) {
        ui_->cmbNode->addItem(QString::number(station.locationId) + "-" + QString::fromStdString(station.consumer),
                              QVariant::fromValue<qint64>(station.locationId));
    }
    from_ = from;
    to_ = to;
    ShowStations(true);
    ShowColumns();
    ui_->cmbNode->setFocus();
}

void frmHistLog::ShowColumns() {
    QString columns = "<--";
    for (const std::string& day : reports::DaysOf(from_, to_)) {
        columns += "|>" + QString::fromStdString(day);
    }
    ui_->Grid->FormatString(columns);
}

void frmHistLog::cmdList() {
    const auto history = reports::ReadHistory(desk_.dbconn, ui_->cmbNode->currentData().toLongLong(), from_, to_);
    ShowColumns();
    Title(title + ui_->cmbNode->currentText());
    if (!history.hasRecord || history.rows.empty()) {
        Show("No Record For Selected Node");
        return;
    }
    std::vector<QStringList> rows;
    for (const reports::HistoryRow& row : history.rows) {
        QStringList cells{QString::fromStdString(row.parameter)};
        for (const std::string& cell : row.cells) {
            cells.append(QString::fromStdString(cell));
        }
        rows.push_back(cells);
    }
    ui_->Grid->AddItems(rows);
    ui_->Grid->SelectRow(0);
}

void frmHistLog::cmdReset() {
    const core::DateTime now = desk_.clock.Now();
    ui_->DTPicker1->setDate({now.year, now.month, now.day});
    ui_->DTPicker2->setDate({now.year, now.month, now.day});
    ShowStations(false);
    ui_->Grid->FormatString("<--");
    Title(title);
    ui_->DTPicker1->setFocus();
}

}  // namespace desk
