#include "desk/kit/ChartLook.h"

#include <QAbstractAxis>
#include <QBuffer>
#include <QGraphicsLayout>
#include <QLegend>

#include "desk/kit/Look.h"
#include "desk/kit/WholeFile.h"

namespace desk {

void BareChart(QChartView& view) {
    view.setRenderHint(QPainter::Antialiasing);
    view.setFrameShape(QFrame::NoFrame);
    view.chart()->setBackgroundRoundness(0);
    view.chart()->layout()->setContentsMargins(0, 0, 0, 0);
    EmptyChart(view);
}

void EmptyChart(QChartView& view) {
    QChart* chart = view.chart();
    chart->removeAllSeries();
    for (QAbstractAxis* axis : chart->axes()) {
        chart->removeAxis(axis);
        delete axis;
    }
    chart->setTitle({});
    chart->legend()->hide();
}

void DressChart(QChartView& view) {
    QChart* chart = view.chart();
    const QColor ground = view.palette().color(QPalette::Base);
    const QColor text = view.palette().color(QPalette::Text);
    chart->setTheme(ground.lightness() < 128 ? QChart::ChartThemeDark : QChart::ChartThemeLight);
    view.setBackgroundBrush(ground);
    chart->setBackgroundBrush(ground);
    chart->setTitleBrush(text);
    chart->setTitleFont(Larger(view.font(), 1.2, true));
    chart->legend()->setLabelColor(text);
    chart->legend()->setFont(view.font());
    QColor grid = text;
    grid.setAlphaF(0.18F);
    for (QAbstractAxis* axis : chart->axes()) {
        axis->setLabelsColor(text);
        axis->setTitleBrush(text);
        axis->setLabelsFont(view.font());
        axis->setTitleFont(view.font());
        axis->setLinePenColor(text);
        axis->setGridLineColor(grid);
        axis->setShadesVisible(false);
    }
}

QString SaveChart(QChartView& view, const QString& file) {
    QBuffer picture;
    picture.open(QIODevice::WriteOnly);
    view.grab().save(&picture, "PNG");
    return WriteWhole(file, picture.data());
}

}  // namespace desk
