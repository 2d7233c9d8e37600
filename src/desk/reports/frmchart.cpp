#include "desk/reports/frmchart.h"

#include <QLocale>

#include "core/Text.h"
#include "desk/kit/EngineText.h"
#include "desk/kit/WholeFile.h"
#include "desk/reports/MonthDrawing.h"
#include "stations/StationRegister.h"
#include "ui_frmchart.h"

namespace desk {

namespace {

// The month's flow as its latest day has it; empty when no day has one.
QString MonthFlow(const reports::MonthFigures& figures) {
    for (auto day = figures.days.rbegin(); day != figures.days.rend(); ++day) {
        if (day->CurrentMonthFlow) {
            return "Volume This Month on day " + QString::number(day->day) + ": " +
                   Number(core::RoundTo(*day->CurrentMonthFlow, 4)) + " SCM";
        }
    }
    return {};
}

}  // namespace

frmchart::frmchart(Desk& desk) : Page(desk, "Chart"), ui_(std::make_unique<Ui::frmchart>()) {
    ui_->setupUi(this);
    Title("Chart");
    CloseCommand(ui_->cmdClose);
    for (int month = 1; month <= 12; ++month) {
        ui_->cmbMonth->addItem(QString::number(month) + "-" + QLocale::c().monthName(month), month);
    }
    Guarded([this] {
        for (const stations::StationEntry& station : stations::ListStations(desk_.dbconn)) {
            ui_->cmbLocId->addItem(QString::number(station.locationId) + "-" + QString::fromStdString(station.consumer),
                                   QVariant::fromValue(station.locationId));
        }
    });
    ui_->cmbLocId->setCurrentIndex(-1);
    ui_->cmbMonth->setCurrentIndex(-1);
    connect(ui_->cmdLineChart, &QPushButton::clicked, this,
            [this] { Guarded([this] { DrawMonth(ChartKind::Line); }); });
    connect(ui_->cmdBarChart, &QPushButton::clicked, this, [this] { Guarded([this] { DrawMonth(ChartKind::Bars); }); });
    connect(ui_->cmdSavePng, &QPushButton::clicked, this, [this] { Guarded([this] { cmdSavePng(); }); });
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    ShowNothing();
}

frmchart::~frmchart() = default;

void frmchart::ShowNothing() {
    ui_->chart->Clear();
    ui_->lblflow->clear();
    ui_->cmdSavePng->setEnabled(false);
}

void frmchart::DrawMonth(ChartKind kind) {
    ShowNothing();
    if (ui_->cmbLocId->currentIndex() < 0 || ui_->cmbMonth->currentIndex() < 0) {
        (ui_->cmbLocId->currentIndex() < 0 ? ui_->cmbLocId : ui_->cmbMonth)->setFocus();
        Show("Should Select Month No. before generating Chart");
        return;
    }
    const auto figures = reports::ReadMonth(desk_.dbconn, ui_->cmbLocId->currentData().value<std::int64_t>(),
                                            ui_->cmbMonth->currentData().toInt());
    if (!figures) {
        ui_->cmbMonth->setFocus();
        // Each command words it in its own way, as operators know it.
        Show(kind == ChartKind::Line ? "Selected month do not have any record"
                                     : "Selected month does not have any record");
        return;
    }
    ui_->chart->Draw(ui_->cmbLocId->currentText(), *figures, kind);
    ui_->lblflow->setText(MonthFlow(*figures));
    ui_->cmdSavePng->setEnabled(true);
}

void frmchart::cmdSavePng() {
    AskForFile(this, {"Save the chart as a picture", "PNG (*.png)", "png"},
               [this](const QString& file) { SavePng(file); });
}

void frmchart::SavePng(const QString& file) {
    if (const QString failure = ui_->chart->Save(file); !failure.isEmpty()) {
        Show(failure);
    }
}

}  // namespace desk
