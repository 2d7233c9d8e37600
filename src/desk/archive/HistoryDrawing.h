#pragma once

#include <QChartView>
#include <QRubberBand>
#include <QXYSeries>
#include <optional>
#include <vector>

#include "archive/view/HistoryLines.h"

class QCategoryAxis;
class QValueAxis;

namespace desk {

struct DrawnColumn {
    QString name;
    archive::HistoryLine line;
};

// The chosen columns of a history over time, each on a scale of its own in the colour of its line, which is told from
// the others by its dashes too. A part is looked at closer by the wheel, by a frame drawn with the left button, or by
// the keys + and -; the arrows move it, the right button goes back a step, 0 or Home shows the whole again.
class HistoryDrawing : public QChartView {
    Q_OBJECT

  public:
    static constexpr std::size_t mostColumns = 4;

    explicit HistoryDrawing(QWidget* parent = nullptr);

    // Draws the columns, at most `mostColumns`; `span` is what there is to be seen as a whole. The part that is looked
    // at stays as long as the whole is the same.
    void Draw(const QString& headline, const archive::TimeSpan& span, std::vector<DrawnColumn> columns);

    const archive::TimeSpan& Shown() const { return shown_; }

    void ZoomIn();
    void ZoomOut();
    void Whole();

    // Writes the picture as PNG, whole or not at all. Tells why not; empty when it is written.
    QString Save(const QString& file);

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    // A column with its scale; `pieces` are its series, of which the first has the place in the legend.
    struct Scale {
        DrawnColumn column;
        QValueAxis* axis = nullptr;
        std::vector<QXYSeries*> pieces{};
    };

    double TimeAt(double x) const;
    void Zoom(double factor, double around);
    void Move(double part);
    void Show(archive::TimeSpan span);
    void Fill();
    void FillTicks();
    void FillScale(Scale& scale);
    void Colours();

    archive::TimeSpan whole_;
    archive::TimeSpan shown_;
    QCategoryAxis* across_ = nullptr;
    std::vector<Scale> scales_;
    QRubberBand frame_;
    std::optional<int> frameFrom_;  // where the left button went down
};

}  // namespace desk
