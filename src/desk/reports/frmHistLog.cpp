#include "desk/reports/frmHistLog.h"

#include "desk/kit/Dates.h"
#include "desk/kit/FirstColumn.h"
#include "reports/HistoryLog.h"
#include "ui_frmHistLog.h"

namespace desk {

namespace {

// Before it nothing was collected. It keeps a slip of the finger from asking for a million columns.
const QDate firstDay(2000, 1, 1);

const QString caption = "History Log -- ";
const QString noStation = "No station";

}  // namespace

frmHistLog::frmHistLog(Desk& desk) : Page(desk, caption + noStation), ui_(std::make_unique<Ui::frmHistLog>()) {
    ui_->setupUi(this);
    for (QDateEdit* picker : {ui_->DTPicker1, ui_->DTPicker2}) {
        picker->setMinimumDate(firstDay);
    }
    new FirstColumn(ui_->Grid);
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdGo, &QPushButton::clicked, this, [this] { Guarded([this] { cmdGo(); }); });
    connect(ui_->cmdList, &QPushButton::clicked, this, [this] { Guarded([this] { cmdList(); }); });
    connect(ui_->cmdReset, &QPushButton::clicked, this, [this] { Guarded([this] { cmdReset(); }); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    // The values of another station would stand under the name that is chosen now.
    connect(ui_->cmbNode, &QComboBox::currentIndexChanged, this, [this] { ShowHead(); });
    cmdReset();
}

frmHistLog::~frmHistLog() = default;

void frmHistLog::HideStations() {
    ui_->Label3->hide();
    ui_->cmbNode->hide();
    ui_->cmbNode->clear();
    ui_->cmdList->setEnabled(false);
    ui_->cmdGo->setDefault(true);
    ui_->cmdList->setDefault(false);
    days_.clear();
    ShowHead();
}

void frmHistLog::ShowHead() {
    QString format = "<--";
    for (const core::DateTime& day : days_) {
        format += "|>" + QString::fromStdString(core::DateText(day));
    }
    ui_->Grid->FormatString(format);
    Title(caption + noStation);
}

void frmHistLog::cmdReset() {
    HideStations();
    const QDate today = DateOf(desk_.clock.Now());
    ui_->DTPicker1->setDate(today);
    ui_->DTPicker2->setDate(today);
    ui_->DTPicker1->setFocus();
}

void frmHistLog::cmdGo() {
    const core::DateTime from = DayOf(ui_->DTPicker1->date());
    const core::DateTime to = DayOf(ui_->DTPicker2->date());
    if (const auto fault = reports::CheckDays(from, to, desk_.clock.Now())) {
        findChild<QWidget*>(QString::fromStdString(fault->control))->setFocus();
        Show(QString::fromStdString(fault->message));
        return;
    }
    const auto stations = reports::FindLogStations(desk_.dbconn, from, to);
    HideStations();
    if (stations.empty()) {
        ui_->DTPicker1->setFocus();
        Show("No Record Found");
        return;
    }
    for (const reports::LogStation& station : stations) {
        ui_->cmbNode->addItem(QString::number(station.locationID) + "-" + QString::fromStdString(station.consumer),
                              QVariant::fromValue(station.locationID));
    }
    days_ = reports::DaysOf(from, to);
    ShowHead();
    ui_->Label3->show();
    ui_->cmbNode->show();
    ui_->cmdList->setEnabled(true);
    ui_->cmdGo->setDefault(false);
    ui_->cmdList->setDefault(true);
    ui_->cmbNode->setFocus();
}

void frmHistLog::cmdList() {
    const reports::HistoryGrid history =
        reports::ReadHistory(desk_.dbconn, ui_->cmbNode->currentData().value<std::int64_t>(), days_);
    ShowHead();
    if (history.rows.empty() || !history.anyDay) {
        ui_->cmbNode->setFocus();
        Show("No Record For Selected Node");
        return;
    }
    Title(caption + ui_->cmbNode->currentText());
    std::vector<QStringList> rows;
    for (const reports::HistoryRow& row : history.rows) {
        QStringList cells(QString::fromStdString(row.parameter));
        for (const std::string& cell : row.cells) {
            cells.append(QString::fromStdString(cell));
        }
        rows.push_back(cells);
    }
    ui_->Grid->AddItems(rows);
    ui_->Grid->SelectRow(0);
    ui_->Grid->setFocus();
}

}  // namespace desk
