#include "desk/core/NodeButton.h"

#include <QPainter>

#include "desk/core/Look.h"

namespace desk {

namespace {

// The operators know the states by these colours.
const QColor noStationColour(255, 192, 192);
const QColor collectedColour(0, 255, 0);
const QColor notCollectedColour(192, 192, 255);
const QColor collectingColour(255, 221, 87);

constexpr double smallest = 0.7;  // of the font's size, before a name is cut

struct Sign {
    QString sign;
    QString word;
};

Sign SignOf(NodeState state) {
    switch (state) {
        case NodeState::Collected:
            return {QStringLiteral("\u2713"), "Collected today"};
        case NodeState::NotCollected:
            return {QStringLiteral("\u25CB"), "Not collectedColour today"};
        case NodeState::Collecting:
            return {QStringLiteral("\u25B6"), "Collecting now"};
        case NodeState::NoStation:
            break;
    }
    return {"", "No station"};
}

QFont Fitting(const QFont& font, const QString& text, int width) {
    const double needed = QFontMetricsF(font).horizontalAdvance(text);
    return needed <= width ? font : Larger(font, std::max(smallest, width / needed), font.bold());
}

}  // namespace

NodeButton::NodeButton(QWidget* parent) : QPushButton(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

void NodeButton::ShowNode(const QString& consumer, NodeState state) {
    state_ = state;
    // An ampersand in a name is a letter of it.
    setText(QString(consumer).replace('&', "&&"));
    setToolTip(consumer.toHtmlEscaped() + "<br>" + SignOf(state).word);
    setAccessibleName(consumer + ", " + SignOf(state).word);
    update();
}

QColor NodeButton::Colour() const {
    switch (state_) {
        case NodeState::Collected:
            return collectedColour;
        case NodeState::NotCollected:
            return notCollectedColour;
        case NodeState::Collecting:
            return collectingColour;
        case NodeState::NoStation:
            break;
    }
    return noStationColour;
}

QSize NodeButton::sizeHint() const {
    return {160, fontMetrics().height() + 10};
}

QSize NodeButton::minimumSizeHint() const {
    return {60, fontMetrics().height() + 4};
}

void NodeButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(2, 2, -2, -2);
    painter.setBrush(isDown() ? Colour().darker(115) : underMouse() ? Colour().lighter(106) : Colour());
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 3) : QPen(Colour().darker(160), 1));
    painter.drawRoundedRect(face, 5, 5);

    painter.setPen(Qt::black);
    painter.setFont(font());
    const QString sign = SignOf(state_).sign;
    const int signWidth = fontMetrics().height();
    const QRectF inner = face.adjusted(6, 0, -6, 0);
    painter.drawText(QRectF(inner.left(), inner.top(), signWidth, inner.height()), Qt::AlignCenter, sign);
    const QRectF place = inner.adjusted(signWidth + 6, 0, 0, 0);
    const QString name = QString(text()).replace("&&", "&");
    painter.setFont(Fitting(font(), name, static_cast<int>(place.width())));
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(name, Qt::ElideRight, static_cast<int>(place.width())));
}

}  // namespace desk
