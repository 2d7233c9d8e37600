#include "desk/archive/frmHistory.h"

#include <QListWidget>

#include "archive/view/HistoryLines.h"
#include "core/Station.h"
#include "desk/archive/HistoryDrawing.h"
#include "desk/kit/Dates.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/GridFile.h"
#include "desk/kit/Look.h"
#include "desk/kit/WholeFile.h"
#include "ui_frmHistory.h"

namespace desk {

namespace {

// Read and shown in a few milliseconds.
constexpr std::size_t portion = 500;

constexpr int barStep = 5;

}  // namespace

frmHistory::frmHistory(Desk& desk, std::int64_t locationID)
    : Page(desk, "History"), locationID_(locationID), ui_(std::make_unique<Ui::frmHistory>()) {
    ui_->setupUi(this);
    ui_->halves->setSizes({1000, 1100});
    CloseCommand(ui_->cmdClose);
    Guarded([this] {
        if (const auto station = core::ReadStation(desk_.dbconn, locationID_)) {
            consumer_ = QString::fromStdString(station->consumer);
        }
        const int streams = archive::CountStreams(desk_.dbconn, locationID_);
        for (int stream = 1; stream <= streams; ++stream) {
            ui_->cmbStream->addItem(QString::number(stream), stream);
        }
    });
    ui_->lblconsumer->setText(consumer_);
    ui_->lblconsumer->setFont(Larger(font(), 1.2, true));
    const QDate today = DateOf(desk_.clock.Now());
    ui_->DTPicker1->setDate(today);
    ui_->DTPicker1->setEnabled(false);
    ui_->DTPicker2->setDate(today.addDays(1));
    tmrview_.setInterval(0);
    ConnectCommands();
    ShowHead();
    ShowCommands(false);
    DrawColumns();
}

frmHistory::~frmHistory() = default;

void frmHistory::ConnectCommands() {
    const auto command = [this](QPushButton* button, void (frmHistory::*work)()) {
        connect(button, &QPushButton::clicked, this, [this, work] { Guarded([&] { (this->*work)(); }); });
    };
    command(ui_->cmdView, &frmHistory::cmdView);
    command(ui_->cmdExcel, &frmHistory::cmdExcel);
    command(ui_->cmdSavePng, &frmHistory::cmdSavePng);
    connect(ui_->cmdStop, &QPushButton::clicked, this, [this] { stopped_ = true; });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    connect(ui_->Option1_1, &QRadioButton::toggled, ui_->DTPicker1, &QWidget::setEnabled);
    connect(&tmrview_, &QTimer::timeout, this, [this] { Guarded([this] { NextPortion(); }); });
    connect(ui_->lstColumns, &QListWidget::itemChanged, this, [this] { DrawColumns(); });
    connect(ui_->cmdZoomIn, &QPushButton::clicked, ui_->chart, &HistoryDrawing::ZoomIn);
    connect(ui_->cmdZoomOut, &QPushButton::clicked, ui_->chart, &HistoryDrawing::ZoomOut);
    connect(ui_->cmdWhole, &QPushButton::clicked, ui_->chart, &HistoryDrawing::Whole);
}

archive::HistoryChoice frmHistory::Choice() const {
    archive::HistoryChoice choice;
    choice.streamno = ui_->cmbStream->currentData().toInt();
    if (ui_->optdaily->isChecked()) {
        choice.kind = archive::ArchiveKind::Daily;
    } else if (ui_->opthourly->isChecked()) {
        choice.kind = archive::ArchiveKind::Hourly;
    } else if (ui_->optMinute->isChecked()) {
        choice.kind = archive::ArchiveKind::Minute;
    }
    choice.all = ui_->Option1_0->isChecked();
    choice.from = DayOf(ui_->DTPicker1->date());
    choice.to = DayOf(ui_->DTPicker2->date());
    return choice;
}

// Viewing ------------------------------------------------------------------------------------------------------------

void frmHistory::cmdView() {
    stopped_ = false;
    archive::HistoryChoice choice = Choice();
    if (const std::string fault = archive::CheckChoice(choice); !fault.empty()) {
        ui_->cmbStream->setFocus();
        Show(QString::fromStdString(fault));
        return;
    }
    choice.from = archive::StartDay(choice.from, choice.to);
    ui_->DTPicker1->setDate(DateOf(choice.from));
    historyType_ = archive::HistoryTypeOf(choice, historyType_);
    view_ = std::make_unique<archive::HistoryView>(desk_.dbconn, locationID_, choice, historyType_);
    rows_.clear();
    QString kind;
    for (const QRadioButton* option : {ui_->optdaily, ui_->opthourly, ui_->optMinute}) {
        kind += option->isChecked() ? option->text().remove('&') : QString();
    }
    headline_ = consumer_ + ", stream " + QString::number(choice.streamno) + ", " + kind;
    ShowHead();
    ListColumns();
    DrawColumns();
    ui_->pgb->setValue(0);
    ui_->lblmsg->clear();
    ShowCommands(true);
    ui_->cmdStop->setFocus();
    tmrview_.start();
}

void frmHistory::NextPortion() {
    try {
        if (!stopped_ && view_->Done() < view_->Total()) {
            ShowRows(view_->Next(portion));
            const int next = ui_->pgb->value() + barStep;
            ui_->pgb->setValue(next > ui_->pgb->maximum() ? 0 : next);
            ui_->lblmsg->setText(Count(view_->Done()) + " of " + Count(view_->Total()) + " records");
            return;
        }
    } catch (...) {
        EndView();
        throw;
    }
    EndView();
    Show("Collected", QMessageBox::Information);
}

void frmHistory::EndView() {
    tmrview_.stop();
    const QString all =
        view_->Total() == 0 ? "No record is stored for this choice." : Count(view_->Total()) + " records";
    ui_->lblmsg->setText(view_->Done() == view_->Total()
                             ? all
                             : Count(view_->Done()) + " of " + Count(view_->Total()) + " records: not all are shown");
    ShowCommands(false);
    DrawColumns();
    if (rows_.empty()) {
        ui_->cmdView->setFocus();
    } else {
        ui_->Grid->SelectRow(0);
        ui_->Grid->setFocus();
    }
}

void frmHistory::ShowHead() {
    QStringList columns("Date Time:                              ");
    if (view_) {
        for (const std::string& name : view_->Columns()) {
            columns.append(">" + QString::fromStdString(name) + "       ");
        }
    }
    ui_->Grid->FormatString(columns);
}

void frmHistory::ShowRows(const std::vector<archive::HistoryRow>& rows) {
    std::vector<QStringList> lines;
    lines.reserve(rows.size());
    for (const archive::HistoryRow& row : rows) {
        QStringList cells;
        for (const std::string& cell : archive::ShownCells(row)) {
            cells.append(QString::fromStdString(cell));
        }
        lines.push_back(std::move(cells));
    }
    ui_->Grid->AddItems(lines);
    rows_.insert(rows_.end(), rows.begin(), rows.end());
}

// While a view is read only Stop works; it is in sight only then, next to the bar.
void frmHistory::ShowCommands(bool viewing) {
    ui_->pgb->setVisible(viewing);
    ui_->cmdStop->setVisible(viewing);
    ui_->cmdStop->setEnabled(viewing);
    ui_->cmdView->setEnabled(!viewing);
    ui_->cmdExcel->setEnabled(!viewing);
    ui_->cmdClose->setEnabled(!viewing);
    ui_->picture->setEnabled(!viewing && !rows_.empty());
}

// The picture --------------------------------------------------------------------------------------------------------

// The names that were drawn stay so; of a first view the first column is.
void frmHistory::ListColumns() {
    QSignalBlocker quiet(ui_->lstColumns);
    QStringList drawn;
    for (int n = 0; n < ui_->lstColumns->count(); ++n) {
        if (ui_->lstColumns->item(n)->checkState() == Qt::Checked) {
            drawn.append(ui_->lstColumns->item(n)->text());
        }
    }
    ui_->lstColumns->clear();
    bool any = false;
    for (const std::string& name : view_->Columns()) {
        auto* item = new QListWidgetItem(QString::fromStdString(name).trimmed(), ui_->lstColumns);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        const bool wanted = drawn.contains(item->text());
        item->setCheckState(wanted ? Qt::Checked : Qt::Unchecked);
        any = any || wanted;
    }
    if (!any && ui_->lstColumns->count() > 0) {
        ui_->lstColumns->item(0)->setCheckState(Qt::Checked);
    }
    ui_->lstColumns->setCurrentRow(0);
}

void frmHistory::DrawColumns() {
    std::vector<DrawnColumn> columns;
    for (int n = 0; n < ui_->lstColumns->count(); ++n) {
        const QListWidgetItem& item = *ui_->lstColumns->item(n);
        if (item.checkState() == Qt::Checked) {
            columns.push_back({item.text(), archive::LineOf(rows_, static_cast<std::size_t>(n))});
        }
    }
    if (columns.size() > HistoryDrawing::mostColumns) {
        columns.resize(HistoryDrawing::mostColumns);
        ui_->lblmsg->setText("The first four of these columns are drawn.");
    }
    ui_->chart->Draw(headline_, archive::SpanOf(rows_), std::move(columns));
}

// Files --------------------------------------------------------------------------------------------------------------

void frmHistory::cmdExcel() {
    if (ui_->Grid->Rows() == 0) {
        return;
    }
    AskForFile(this, {"Save To Excel", "Excel Files(*.xls)", "xls"}, [this](const QString& file) { SaveExcel(file); });
}

void frmHistory::SaveExcel(const QString& file) {
    if (const QString failure = WriteWhole(file, GridText(*ui_->Grid, '\t').toUtf8()); !failure.isEmpty()) {
        Show(failure);
    }
}

void frmHistory::cmdSavePng() {
    AskForFile(this, {"Save the picture", "PNG (*.png)", "png"}, [this](const QString& file) { SavePng(file); });
}

void frmHistory::SavePng(const QString& file) {
    if (const QString failure = ui_->chart->Save(file); !failure.isEmpty()) {
        Show(failure);
    }
}

}  // namespace desk
