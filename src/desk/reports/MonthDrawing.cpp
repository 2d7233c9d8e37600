#include "desk/reports/MonthDrawing.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QDate>
#include <QEvent>
#include <QLegend>
#include <QLineSeries>
#include <QLocale>
#include <QValueAxis>
#include <algorithm>

#include "desk/kit/ChartLook.h"

namespace desk {

namespace {

const QString flowName = "Day flow (SCM)";
const QString pressureName = "Flowing pressure (kg/cm2)";

// The bars' axis has its first day at 0.
QLineSeries* Line(const QString& name, const reports::MonthFigures& figures,
                  std::optional<double> reports::DayFigures::*figure) {
    auto* line = new QLineSeries;
    line->setName(name);
    line->setPointsVisible(true);
    for (const reports::DayFigures& day : figures.days) {
        if (day.*figure) {
            line->append(day.day - 1, *(day.*figure));
        }
    }
    return line;
}

QBarSeries* Bars(const QString& name, const reports::MonthFigures& figures, int days) {
    auto* bars = new QBarSeries;
    auto* heights = new QBarSet(name);
    for (int day = 0; day < days; ++day) {
        heights->append(0);
    }
    for (const reports::DayFigures& day : figures.days) {
        heights->replace(day.day - 1, day.CurrentDayFlow.value_or(0));
    }
    bars->append(heights);
    bars->setBarWidth(0.7);
    return bars;
}

// From 0, or from the lowest figure below it, to a round number above the highest.
QValueAxis* Scale(const QString& name, const reports::MonthFigures& figures,
                  std::optional<double> reports::DayFigures::*figure) {
    double lowest = 0;
    double highest = 0;
    for (const reports::DayFigures& day : figures.days) {
        lowest = std::min(lowest, (day.*figure).value_or(0));
        highest = std::max(highest, (day.*figure).value_or(0));
    }
    auto* axis = new QValueAxis;
    axis->setTitleText(name);
    axis->setLabelFormat("%.6g");
    axis->setRange(lowest, highest > lowest ? highest : lowest + 1);
    axis->applyNiceNumbers();
    return axis;
}

QBarCategoryAxis* Days(int days) {
    auto* axis = new QBarCategoryAxis;
    for (int day = 1; day <= days; ++day) {
        axis->append(QString::number(day));
    }
    axis->setTitleText("Day");
    axis->setGridLineVisible(false);
    return axis;
}

void Attach(QChart* chart, QAbstractSeries* series, QAbstractAxis* across, QAbstractAxis* up) {
    chart->addSeries(series);
    series->attachAxis(across);
    series->attachAxis(up);
}

}  // namespace

MonthDrawing::MonthDrawing(QWidget* parent) : QChartView(parent) {
    BareChart(*this);
    Clear();
}

void MonthDrawing::Clear() {
    EmptyChart(*this);
    Colours();
}

bool MonthDrawing::IsEmpty() const {
    return chart()->series().isEmpty();
}

void MonthDrawing::Draw(const QString& station, const reports::MonthFigures& figures, ChartKind kind) {
    Clear();
    const int days = QDate(figures.year, figures.month, 1).daysInMonth();
    auto* across = Days(days);
    auto* left = Scale(flowName, figures, &reports::DayFigures::CurrentDayFlow);
    auto* right = Scale(pressureName, figures, &reports::DayFigures::currentprs);
    chart()->addAxis(across, Qt::AlignBottom);
    chart()->addAxis(left, Qt::AlignLeft);
    chart()->addAxis(right, Qt::AlignRight);
    QAbstractSeries* flow = kind == ChartKind::Bars ? static_cast<QAbstractSeries*>(Bars(flowName, figures, days))
                                                    : Line(flowName, figures, &reports::DayFigures::CurrentDayFlow);
    Attach(chart(), flow, across, left);
    Attach(chart(), Line(pressureName, figures, &reports::DayFigures::currentprs), across, right);
    // The chart takes its title for markup.
    chart()->setTitle((station + ": " + QLocale::c().monthName(figures.month) + " ").toHtmlEscaped() +
                      QString::number(figures.year));
    chart()->legend()->show();
    Colours();
}

void MonthDrawing::Colours() {
    DressChart(*this);
    const bool dark = palette().color(QPalette::Base).lightness() < 128;
    const QColor flow = dark ? QColor(0x6C, 0xB2, 0xFF) : QColor(0x1F, 0x5F, 0xA8);
    const QColor pressure = dark ? QColor(0xFF, 0xB3, 0x4D) : QColor(0xB8, 0x4A, 0x00);
    for (QAbstractSeries* series : chart()->series()) {
        if (auto* bars = qobject_cast<QBarSeries*>(series)) {
            bars->barSets().constFirst()->setColor(flow);
            bars->barSets().constFirst()->setBorderColor(flow);
        } else if (auto* line = qobject_cast<QLineSeries*>(series)) {
            // The pressure is told from the flow by its dashes too.
            const bool isFlow = line->name() == flowName;
            line->setPen(QPen(isFlow ? flow : pressure, 2, isFlow ? Qt::SolidLine : Qt::DashLine));
            line->setMarkerSize(5);
        }
    }
}

void MonthDrawing::changeEvent(QEvent* event) {
    QChartView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Colours();
    }
}

QString MonthDrawing::Save(const QString& file) {
    return SaveChart(*this, file);
}

}  // namespace desk
