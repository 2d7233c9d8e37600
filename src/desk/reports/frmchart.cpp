#include "desk/reports/frmchart.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QFileDialog>
#include <QLineSeries>
#include <QLocale>
#include <QValueAxis>

#include "desk/core/Look.h"
#include "reports/MonthChart.h"
#include "ui_frmchart.h"

namespace desk {

namespace {

const QColor flowColour(0x2F, 0x7F, 0xD0);
const QColor pressureColour(0xE0, 0x7B, 0x1A);
constexpr double headroom = 1.08;

QChart* NewChart(const QWidget& page, const QString& title) {
    const bool isDark = page.palette().color(QPalette::Window).lightness() < 128;
    auto* chart = new QChart;
    chart->setTheme(isDark ? QChart::ChartThemeDark : QChart::ChartThemeLight);
    chart->setBackgroundBrush(page.palette().color(QPalette::Base));
    chart->setMargins({8, 8, 8, 8});
    chart->setTitle(title.toHtmlEscaped());
    chart->setTitleFont(Larger(page.font(), 1.3, true));
    chart->legend()->setAlignment(Qt::AlignBottom);
    chart->setLocalizeNumbers(false);
    return chart;
}

// A line over the days, its points marked, so that a single day is seen as well.
QLineSeries* DayLine(const QString& name, const QColor& colour) {
    auto* line = new QLineSeries;
    line->setName(name);
    line->setColor(colour);
    line->setPen(QPen(colour, 2.5));
    line->setPointsVisible(true);
    return line;
}

QValueAxis* Scale(const QString& title, double most) {
    auto* axis = new QValueAxis;
    axis->setTitleText(title);
    axis->setRange(0, most > 0 ? most * headroom : 1);
    axis->setLabelFormat(most >= 1000 ? "%.0f" : "%.4g");
    axis->applyNiceNumbers();
    return axis;
}

}  // namespace

frmchart::frmchart(Desk& desk) : Page(desk, "Charts"), ui_(std::make_unique<Ui::frmchart>()) {
    ui_->setupUi(this);
    Title("Charts");
    ui_->chart->setRenderHint(QPainter::Antialiasing);
    ui_->chart->setChart(NewChart(*this, {}));
    CloseCommand(ui_->cmdClose);
    connect(ui_->cmdLineChart, &QPushButton::clicked, this,
            [this] { cmdChart(Form::Line, "Selected month do not have any record"); });
    connect(ui_->cmdBarChart, &QPushButton::clicked, this,
            [this] { cmdChart(Form::Bar, "Selected month does not have any record"); });
    connect(ui_->cmdSavePng, &QPushButton::clicked, this, &frmchart::cmdSavePng);
    connect(ui_->cmdClose, &QPushButton::clicked, this, &Page::Closed);
    Guarded([this] {
        for (const std::string& station : reports::ChartStations(desk_.dbconn)) {
            ui_->cmbLocId->addItem(QString::fromStdString(station));
        }
    });
    for (int month = 1; month <= 12; ++month) {
        ui_->cmbMonth->addItem(QString::number(month));
    }
    ui_->cmbLocId->setCurrentIndex(-1);
    ui_->cmbMonth->setCurrentIndex(-1);
    ui_->cmdLineChart->setDefault(true);
}

frmchart::~frmchart() = default;

void frmchart::cmdChart(Form form, const QString& nothing) {
    Guarded([&] {
        if (ui_->cmbLocId->currentText().isEmpty() || ui_->cmbMonth->currentText().isEmpty()) {
            Show("Should Select Month No. before generating Chart");
            return;
        }
        const auto figures =
            reports::ReadMonth(desk_.dbconn, ui_->cmbLocId->currentText().section('-', 0, 0).toLongLong(),
                               ui_->cmbMonth->currentText().toInt());
        if (!figures) {
            Show(nothing);
            return;
        }
        Draw(form, *figures);
        ui_->cmdSavePng->setEnabled(true);
    });
}

// Days stand side by side on one axis, in both forms; a day without a figure leaves its place empty.
void frmchart::Draw(Form form, const reports::MonthFigures& figures) {
    const int month = ui_->cmbMonth->currentText().toInt();
    const int days = QDate(figures.year, month, 1).daysInMonth();
    QStringList captions;
    for (int day = 1; day <= days; ++day) {
        captions.append(QString::number(day));
    }
    auto* flowLine = DayLine("Day flow (SCM)", flowColour);
    auto* flowBars = new QBarSet("Day flow (SCM)");
    flowBars->setColor(flowColour);
    for (int day = 0; day < days; ++day) {
        flowBars->append(0);
    }
    auto* pressureLine = DayLine("Pressure (kg/cm2)", pressureColour);
    double mostFlow = 0;
    double mostPressure = 0;
    for (const reports::MonthPoint& point : figures.points) {
        if (point.CurrentDayFlow) {
            flowLine->append(point.day - 1, *point.CurrentDayFlow);
            flowBars->replace(point.day - 1, *point.CurrentDayFlow);
            mostFlow = std::max(mostFlow, *point.CurrentDayFlow);
        }
        if (point.currentprs) {
            pressureLine->append(point.day - 1, *point.currentprs);
            mostPressure = std::max(mostPressure, *point.currentprs);
        }
    }
    QAbstractSeries* flow = flowLine;
    if (form == Form::Bar) {
        auto* bars = new QBarSeries;
        bars->append(flowBars);
        flow = bars;
        delete flowLine;
    } else {
        delete flowBars;
    }

    auto* chart = NewChart(*this, ui_->cmbLocId->currentText() + ", " + QLocale::c().standaloneMonthName(month) + " " +
                                      QString::number(figures.year));
    auto* dayAxis = new QBarCategoryAxis;
    dayAxis->append(captions);
    dayAxis->setGridLineVisible(false);
    auto* flowAxis = Scale("Day flow (SCM)", mostFlow);
    auto* pressureAxis = Scale("Pressure (kg/cm2)", mostPressure);
    chart->addAxis(dayAxis, Qt::AlignBottom);
    chart->addAxis(flowAxis, Qt::AlignLeft);
    chart->addAxis(pressureAxis, Qt::AlignRight);
    for (QAbstractSeries* series : {flow, static_cast<QAbstractSeries*>(pressureLine)}) {
        chart->addSeries(series);
        series->attachAxis(dayAxis);
        series->attachAxis(series == flow ? flowAxis : pressureAxis);
    }
    const std::unique_ptr<QChart> previous(ui_->chart->chart());
    ui_->chart->setChart(chart);
}

bool frmchart::SavePicture(const QString& file) const {
    return ui_->chart->grab().save(file, "PNG");
}

void frmchart::cmdSavePng() {
    auto* dialog = new QFileDialog(this, "Save PNG", {}, "Pictures (*.png)");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix("png");
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
        if (!SavePicture(file)) {
            Show(file + " cannot be written");
        }
    });
    dialog->open();
}

}  // namespace desk
