#pragma once

#include <QChartView>

// What all charts have in common.
namespace desk {

// Without a frame or a margin of its own.
void BareChart(QChartView& view);

// Without series, axes, title and legend.
void EmptyChart(QChartView& view);

// The colours of the palette and the font of the view for everything but the series.
void DressChart(QChartView& view);

// Writes the picture as PNG, whole or not at all. Tells why not; empty when it is written.
QString SaveChart(QChartView& view, const QString& file);

}  // namespace desk
