#pragma once

#include <QChartView>

#include "reports/MonthChart.h"

namespace desk {

enum class ChartKind { Line, Bars };

// The picture of a station's month: the day flow on the left axis, the pressure on the right one, over the days. It
// follows the palette.
class MonthDrawing : public QChartView {
    Q_OBJECT

  public:
    explicit MonthDrawing(QWidget* parent = nullptr);

    // Draws a month; `station` is its headline. Days without a figure are left out. Bars stand for the flow; the
    // pressure is a line in both kinds, since two rows of bars on two scales cannot be told apart.
    void Draw(const QString& station, const reports::MonthFigures& figures, ChartKind kind);
    void Clear();
    bool IsEmpty() const;

    // Writes the picture as PNG, whole or not at all. Tells why not; empty when it is written.
    QString Save(const QString& file);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Colours();
};

}  // namespace desk
