#include "desk/kit/PathLabel.h"

#include <QPainter>
#include <QStyle>

namespace desk {

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

QSize PathLabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 20, fontMetrics().height()};
}

void PathLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, palette(),
                          isEnabled(), fontMetrics().elidedText(text(), Qt::ElideMiddle, width()), foregroundRole());
}

}  // namespace desk
