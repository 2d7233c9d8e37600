#include "desk/kit/frmtxrxleds.h"

#include <QHBoxLayout>
#include <QPainter>

namespace desk {

namespace {

constexpr QRgb green = 0xFF00FF00;  // 65280
constexpr QRgb amber = 0xFFFF9000;
constexpr int blinkMs = 300;
constexpr int gap = 6;

}  // namespace

LineMark::LineMark(const QString& name, const QString& word, QWidget* parent)
    : QWidget(parent), name_(name), word_(word) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void LineMark::Lit(bool isLit) {
    if (isLit != lit_) {
        lit_ = isLit;
        setAccessibleName(name_ + (lit_ ? " " + word_ : QString()));
        update();
    }
}

QColor LineMark::Colour() const {
    return QColor(lit_ ? amber : green);
}

QSize LineMark::sizeHint() const {
    const int size = fontMetrics().height();
    return {size + 2 * gap + fontMetrics().horizontalAdvance(name_ + "  " + word_) + gap, size + 4};
}

void LineMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal size = fontMetrics().ascent();
    const QRectF mark(1, (height() - size) / 2, size, size);
    QPen outline(palette().color(QPalette::WindowText));
    outline.setWidthF(1);
    painter.setPen(outline);
    painter.setBrush(Colour());
    if (lit_) {
        const QPointF arrow[] = {mark.topLeft(), {mark.right(), mark.center().y()}, mark.bottomLeft()};
        painter.drawPolygon(arrow, 3);
    } else {
        painter.drawEllipse(mark);
    }
    painter.drawText(rect().adjusted(static_cast<int>(mark.right()) + gap, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     name_ + (lit_ ? "  " + word_ : QString()));
}

frmtxrxleds::frmtxrxleds(QWidget* parent) : QWidget(parent), tx_("TX", "sending", this), rx_("RX", "receiving", this) {
    tx_.setObjectName("TX");
    rx_.setObjectName("RX");
    tmrleds_.setParent(this);
    tmrleds_.setObjectName("tmrleds");
    tmrleds_.setSingleShot(true);
    tmrleds_.setInterval(blinkMs);
    connect(&tmrleds_, &QTimer::timeout, this, &frmtxrxleds::Rest);
    auto* marks = new QHBoxLayout(this);
    marks->setContentsMargins(0, 0, 0, 0);
    marks->setSpacing(8);
    marks->addWidget(&tx_, 1);
    marks->addWidget(&rx_, 1);
}

void frmtxrxleds::Light(const QString& direction) {
    (direction == "TX" ? tx_ : rx_).Lit(true);
    if (!tmrleds_.isActive()) {
        tmrleds_.start();
    }
}

void frmtxrxleds::Rest() {
    tx_.Lit(false);
    rx_.Lit(false);
}

}  // namespace desk
