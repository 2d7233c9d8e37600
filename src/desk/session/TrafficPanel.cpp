#include "desk/session/TrafficPanel.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include "protocols/line/Conversation.h"

namespace desk {

namespace {

QFont FixedFont(const QFont& like) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(like.pointSizeF());
    return font;
}

}  // namespace

TrafficView::TrafficView(QWidget* parent) : QTableView(parent), lines(this) {
    setModel(&lines);
    setFont(FixedFont(font()));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setTabKeyNavigation(false);
    setAlternatingRowColors(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setMinimumSectionSize(1);
    // As wide as their longest texts, so that no line makes a column another width.
    constexpr int margins = 14;
    const auto width = [this](const QString& text) { return fontMetrics().horizontalAdvance(text) + margins; };
    setColumnWidth(TrafficModel::Time, width("00:00:00.000"));
    setColumnWidth(TrafficModel::Direction, width("late"));
    setColumnWidth(TrafficModel::Count, width("Bytes "));
}

void TrafficView::Add(TrafficLine line) {
    const bool atFoot = AtFoot();
    lines.Add(std::move(line));
    if (atFoot && isVisible()) {
        scrollToBottom();
    }
}

void TrafficView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        if (currentIndex().isValid()) {
            QApplication::clipboard()->setText(lines.CopyText(currentIndex().row()));
        }
        return;
    }
    QTableView::keyPressEvent(event);
}

void TrafficView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    Q_EMIT LineSelected(current.row());
}

// The line that is read is not exchanged for the next one when it is the oldest.
void TrafficView::rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) {
    if (currentIndex().row() >= start && currentIndex().row() <= end) {
        setCurrentIndex({});
    }
    QTableView::rowsAboutToBeRemoved(parent, start, end);
}

void TrafficView::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    if (!currentIndex().isValid()) {
        scrollToBottom();
    }
}

void TrafficView::resizeEvent(QResizeEvent* event) {
    const bool atFoot = AtFoot();
    QTableView::resizeEvent(event);
    if (atFoot) {
        scrollToBottom();
    }
}

bool TrafficView::AtFoot() const {
    return verticalScrollBar()->value() == verticalScrollBar()->maximum();
}

TrafficPanel::TrafficPanel(const core::Clock& clock, QWidget* parent)
    : QWidget(parent), clock_(clock), leds_(this), tx_(this), rx_(this), fields_(this) {
    leds_.setObjectName("frmtxrxleds");
    tx_.setObjectName("gridTX");
    tx_.setAccessibleName("Sent");
    rx_.setObjectName("gridRX");
    rx_.setAccessibleName("Received");
    fields_.setObjectName("txtfields");
    fields_.setAccessibleName("Fields of the selected line");
    fields_.setPlaceholderText("Select a line to see its fields");
    fields_.setReadOnly(true);
    fields_.setTabChangesFocus(true);
    fields_.setLineWrapMode(QPlainTextEdit::NoWrap);
    fields_.setFont(FixedFont(font()));

    auto* panels = new QHBoxLayout;
    panels->setSpacing(8);
    panels->addWidget(&tx_, 1);
    panels->addWidget(&rx_, 1);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(8);
    all->addWidget(&leds_);
    all->addLayout(panels, 3);
    all->addWidget(&fields_, 2);

    connect(&tx_, &TrafficView::LineSelected, this, [this](int row) { ShowLine(tx_, rx_, row); });
    connect(&rx_, &TrafficView::LineSelected, this, [this](int row) { ShowLine(rx_, tx_, row); });
}

void TrafficPanel::Station(const protocols::Wire& wire) {
    if (wire == wire_) {
        return;
    }
    wire_ = wire;
    tx_.lines.Station(wire_);
    rx_.lines.Station(wire_);
    Clear();
}

void TrafficPanel::Line(const QString& direction, const std::string& bytes) {
    if (bytes.empty()) {
        return;
    }
    const bool sent = direction == "TX";
    if (sent && protocols::IsRequest(bytes, wire_)) {
        request_ = std::make_shared<const std::string>(bytes);
    }
    leds_.Light(direction);
    if (sent) {
        tx_.Add({Time(), protocols::Direction::TX, 0, bytes, nullptr, false});
    } else {
        rx_.Add({Time(), protocols::Direction::RX, 0, bytes, request_, direction == protocols::lateLamp});
    }
}

void TrafficPanel::Clear() {
    request_.reset();
    tx_.lines.Clear();
    rx_.lines.Clear();
    fields_.clear();
}

// The clock tells whole seconds and counts milliseconds by themselves. The smallest difference of both that was seen is
// where a second begins; one that is off by more shows that the clock was set.
QString TrafficPanel::Time() {
    constexpr int second = 1000;
    const core::DateTime now = clock_.Now();
    const std::int64_t difference = std::int64_t{clock_.Milliseconds()} - core::ToSeconds(now) * second;
    if (!secondStart_ || difference < *secondStart_ || difference - *secondStart_ >= second) {
        secondStart_ = difference;
    }
    return QString("%1.%2")
        .arg(QString::fromStdString(core::TimeText(now)))
        .arg(difference - *secondStart_, 3, 10, QChar('0'));
}

// One line at a time is selected, in whichever panel.
void TrafficPanel::ShowLine(TrafficView& view, TrafficView& other, int row) {
    if (row < 0) {
        return;
    }
    const QSignalBlocker still(&other);
    other.setCurrentIndex({});
    fields_.setPlainText(view.lines.Whole(row));
}

}  // namespace desk
