#pragma once

#include <QPushButton>
#include <optional>

#include "collection/DayLine.h"

namespace desk {

// A station on the overview: its name, and below it in a line what is known of today, as large as they fit. The colour
// tells whether it counts as sampled today, the same in every palette.
class NodeButton : public QPushButton {
    Q_OBJECT

  public:
    explicit NodeButton(QWidget* parent = nullptr);

    struct Face {
        std::optional<collection::DayState> state{};  // none: no station
        bool sampled = false;
        QString line{};    // below the name; empty: none
        QString reason{};  // for the tool tip
    };

    // The caption is the station's name, whatever stands in it.
    void ShowNode(const QString& consumer, const Face& face);
    std::optional<collection::DayState> State() const { return face_.state; }
    const QString& Line() const { return face_.line; }
    QColor Colour() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void PaintLines(QPainter& painter, const QRectF& place) const;

    Face face_;
};

}  // namespace desk
