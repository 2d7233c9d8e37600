#include "desk/archive/HistoryDrawing.h"

#include <QCategoryAxis>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QMouseEvent>
#include <QScatterSeries>
#include <QValueAxis>
#include <algorithm>
#include <array>

#include "desk/kit/ChartLook.h"

namespace desk {

namespace {

constexpr double zoomStep = 2;
constexpr double moveStep = 0.25;

// Seconds; no record is nearer to the next.
constexpr double closest = 60;

// More pieces than this are drawn as points: a line that is broken so often is none.
constexpr std::size_t mostPieces = 100;

// Pixels: what a tick of the axis across needs, and what a scale takes of the width.
constexpr int roomOfATick = 100;
constexpr int roomOfAScale = 80;

constexpr std::array styles{Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};

QColor ColourOf(std::size_t column, bool dark) {
    static const std::array onLight{QColor(0x1F, 0x5F, 0xA8), QColor(0xB8, 0x4A, 0x00), QColor(0x1B, 0x7A, 0x3D),
                                    QColor(0x7B, 0x3F, 0x9E)};
    static const std::array onDark{QColor(0x6C, 0xB2, 0xFF), QColor(0xFF, 0xB3, 0x4D), QColor(0x6F, 0xD6, 0x8F),
                                   QColor(0xD2, 0xA0, 0xF0)};
    return dark ? onDark[column] : onLight[column];
}

}  // namespace

HistoryDrawing::HistoryDrawing(QWidget* parent) : QChartView(parent), frame_(QRubberBand::Rectangle, this) {
    BareChart(*this);
    chart()->legend()->setMarkerShape(QLegend::MarkerShapeFromSeries);  // with its dashes
    setMinimumHeight(160);
    Colours();
}

void HistoryDrawing::Draw(const QString& headline, const archive::TimeSpan& span, std::vector<DrawnColumn> columns) {
    EmptyChart(*this);
    scales_.clear();
    across_ = nullptr;
    if (whole_.from != span.from || whole_.to != span.to) {
        whole_ = span;
        shown_ = span;
    }
    if (columns.empty() || span.from >= span.to) {
        Colours();
        return;
    }
    // The chart takes its texts for markup.
    chart()->setTitle(headline.toHtmlEscaped());
    chart()->legend()->show();
    across_ = new QCategoryAxis;
    across_->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    chart()->addAxis(across_, Qt::AlignBottom);
    for (DrawnColumn& column : columns) {
        auto* axis = new QValueAxis;
        axis->setLabelFormat("%.10g");
        axis->setTitleText(column.name.toHtmlEscaped());
        axis->setGridLineVisible(scales_.empty());
        chart()->addAxis(axis, scales_.size() % 2 == 0 ? Qt::AlignLeft : Qt::AlignRight);
        scales_.push_back({std::move(column), axis});
    }
    Fill();
}

void HistoryDrawing::Fill() {
    if (across_ == nullptr) {
        return;
    }
    chart()->removeAllSeries();
    FillTicks();
    for (Scale& scale : scales_) {
        FillScale(scale);
    }
    Colours();
}

void HistoryDrawing::FillTicks() {
    for (const QString& label : across_->categoriesLabels()) {
        across_->remove(label);
    }
    across_->setRange(shown_.from, shown_.to);
    const int room = std::max(width() - roomOfAScale * static_cast<int>(scales_.size()), 0);
    for (const archive::TimeTick& tick : archive::TicksOf(shown_, static_cast<std::size_t>(room / roomOfATick))) {
        across_->append(QString::fromStdString(tick.text), tick.at);
    }
}

void HistoryDrawing::FillScale(Scale& scale) {
    const archive::HistoryLine line =
        archive::Thinned(scale.column.line, shown_, static_cast<std::size_t>(std::max(width(), 100)));
    const bool points = line.size() > mostPieces;
    scale.pieces.clear();
    double low = 0;
    double high = 0;
    bool any = false;
    for (const auto& piece : line) {
        if (scale.pieces.empty() || !points) {
            scale.pieces.push_back(points ? static_cast<QXYSeries*>(new QScatterSeries) : new QLineSeries);
            scale.pieces.back()->setPointsVisible(piece.size() == 1);
        }
        for (const archive::HistoryPoint& point : piece) {
            scale.pieces.back()->append(point.at, point.value);
            low = any ? std::min(low, point.value) : point.value;
            high = any ? std::max(high, point.value) : point.value;
            any = true;
        }
    }
    if (scale.pieces.empty()) {
        scale.pieces.push_back(new QLineSeries);  // its name stands in the legend all the same
    }
    const double room = high > low ? (high - low) * 0.05 : std::max(std::abs(high) * 0.01, 0.5);
    scale.axis->setRange(low - room, high + room);
    scale.axis->applyNiceNumbers();
    for (QXYSeries* series : scale.pieces) {
        series->setName(scale.column.name.toHtmlEscaped());
        chart()->addSeries(series);
        series->attachAxis(across_);
        series->attachAxis(scale.axis);
        for (QLegendMarker* marker : chart()->legend()->markers(series)) {
            marker->setVisible(series == scale.pieces.front());
        }
    }
}

void HistoryDrawing::Colours() {
    DressChart(*this);
    const bool dark = palette().color(QPalette::Base).lightness() < 128;
    for (std::size_t n = 0; n < scales_.size(); ++n) {
        const QColor colour = ColourOf(n, dark);
        scales_[n].axis->setLabelsColor(colour);
        scales_[n].axis->setTitleBrush(colour);
        scales_[n].axis->setLinePenColor(colour);
        for (QXYSeries* series : scales_[n].pieces) {
            series->setColor(colour);
            series->setPen(QPen(colour, 2, styles[n]));
            series->setMarkerSize(4);
        }
    }
}

// What is looked at ---------------------------------------------------------------------------------------------------

void HistoryDrawing::Show(archive::TimeSpan span) {
    const double most = whole_.to - whole_.from;
    const double length = std::clamp(span.to - span.from, std::min(closest, most), most);
    span.from = std::clamp(span.from, whole_.from, whole_.to - length);
    shown_ = {span.from, span.from + length};
    Fill();
}

// Keeps the time `around` where it is.
void HistoryDrawing::Zoom(double factor, double around) {
    Show({around - (around - shown_.from) * factor, around + (shown_.to - around) * factor});
}

void HistoryDrawing::ZoomIn() {
    Zoom(1 / zoomStep, (shown_.from + shown_.to) / 2);
}

void HistoryDrawing::ZoomOut() {
    Zoom(zoomStep, (shown_.from + shown_.to) / 2);
}

void HistoryDrawing::Whole() {
    Show(whole_);
}

void HistoryDrawing::Move(double part) {
    const double way = (shown_.to - shown_.from) * part;
    Show({shown_.from + way, shown_.to + way});
}

double HistoryDrawing::TimeAt(double x) const {
    const QRectF plot = chart()->plotArea();
    return shown_.from + std::clamp((x - plot.left()) / plot.width(), 0.0, 1.0) * (shown_.to - shown_.from);
}

void HistoryDrawing::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Plus:
            return ZoomIn();
        case Qt::Key_Minus:
            return ZoomOut();
        case Qt::Key_0:
        case Qt::Key_Home:
            return Whole();
        case Qt::Key_Left:
            return Move(-moveStep);
        case Qt::Key_Right:
            return Move(moveStep);
        default:
            event->ignore();  // a key of the page
    }
}

void HistoryDrawing::wheelEvent(QWheelEvent* event) {
    if (event->angleDelta().y() != 0) {
        Zoom(event->angleDelta().y() > 0 ? 1 / zoomStep : zoomStep, TimeAt(event->position().x()));
    }
    event->accept();
}

void HistoryDrawing::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && across_ != nullptr) {
        frameFrom_ = qRound(event->position().x());
    }
}

void HistoryDrawing::mouseMoveEvent(QMouseEvent* event) {
    if (frameFrom_) {
        const QRect plot = chart()->plotArea().toRect();
        const int to = std::clamp(qRound(event->position().x()), plot.left(), plot.right());
        frame_.setGeometry(QRect(QPoint(*frameFrom_, plot.top()), QPoint(to, plot.bottom())).normalized());
        frame_.show();
    }
}

void HistoryDrawing::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        ZoomOut();
    } else if (frameFrom_) {
        const double from = TimeAt(*frameFrom_);
        const double to = TimeAt(event->position().x());
        frame_.hide();
        if (std::abs(event->position().x() - *frameFrom_) >= QApplication::startDragDistance()) {
            Show({std::min(from, to), std::max(from, to)});
        }
        frameFrom_.reset();
    }
}

void HistoryDrawing::resizeEvent(QResizeEvent* event) {
    QChartView::resizeEvent(event);
    Fill();
}

void HistoryDrawing::changeEvent(QEvent* event) {
    QChartView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        Colours();
    }
}

QString HistoryDrawing::Save(const QString& file) {
    return SaveChart(*this, file);
}

}  // namespace desk
