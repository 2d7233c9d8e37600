#include "desk/session/FigureButton.h"

#include <QPainter>

namespace desk {

namespace {

constexpr int margin = 4;  // as that of the labels beside it

}  // namespace

FigureButton::FigureButton(QWidget* parent) : QPushButton(parent) {
    setFlat(true);
    setAttribute(Qt::WA_Hover);
}

QSize FigureButton::sizeHint() const {
    return fontMetrics().size(0, text()) + QSize(2 * margin, 2 * margin);
}

void FigureButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool lifted = underMouse() || isDown();
    painter.setBrush(palette().brush(lifted ? QPalette::Base : QPalette::Window));
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 2)
                              : QPen(palette().color(QPalette::PlaceholderText), 1, Qt::DotLine));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(rect().adjusted(margin, 0, -margin, 0), Qt::AlignRight | Qt::AlignVCenter, text());
}

}  // namespace desk
