#include "desk/kit/Grid.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>

#include "desk/kit/Boxes.h"
#include "desk/kit/WholeFile.h"

namespace desk {

namespace {

// Between a number and the text of the next column.
constexpr int columnGap = 16;

constexpr int longestFilter = 40;

// A cell with a colour keeps it where its row is selected: an alarm is never behind the selection. Lines in the colour
// of the selection carry the row on.
class CellPainter : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if ((option.state & QStyle::State_Selected) != 0 && index.data(Qt::BackgroundRole).isValid()) {
            constexpr int line = 2;
            const QColor colour = option.palette.color(QPalette::Highlight);
            painter->fillRect(QRect(option.rect.topLeft(), QSize(option.rect.width(), line)), colour);
            painter->fillRect(option.rect.adjusted(0, option.rect.height() - line, 0, 0), colour);
        }
    }

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.data(Qt::BackgroundRole).isValid()) {
            option->state &= ~QStyle::State_Selected;
        }
    }
};

QString OneLine(QString cell) {
    return cell.replace('\t', ' ').replace('\r', ' ').replace('\n', ' ');
}

QString JoinCells(const QStringList& cells) {
    QStringList clean;
    for (const QString& cell : cells) {
        clean.append(OneLine(cell));
    }
    return clean.join('\t') + "\r\n";
}

}  // namespace

Grid::Grid(QWidget* parent) : QTableView(parent), model_(this), lblfilter_(this) {
    setModel(&model_);
    setItemDelegate(new CellPainter(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lblfilter_.setObjectName("lblfilter");
    lblfilter_.setTextFormat(Qt::PlainText);
    lblfilter_.setAutoFillBackground(true);
    lblfilter_.setBackgroundRole(QPalette::Highlight);
    lblfilter_.setForegroundRole(QPalette::HighlightedText);
    lblfilter_.setContentsMargins(8, 0, 8, 0);
    lblfilter_.hide();
    connect(this, &QTableView::clicked, this, [this](const QModelIndex& index) { Q_EMIT RowChosen(index.row()); });
}

void Grid::FormatString(const QString& format) {
    FormatString(format.split('|'));
}

void Grid::FormatString(const QStringList& columns) {
    QStringList captions;
    std::vector<Qt::Alignment> alignments;
    for (QString column : columns) {
        const QChar sign = column.isEmpty() ? QChar('<') : column.front();
        alignments.push_back(sign == '>' ? Qt::AlignRight : sign == '^' ? Qt::AlignHCenter : Qt::AlignLeft);
        if (sign == '<' || sign == '>' || sign == '^') {
            column.remove(0, 1);
        }
        captions.append(column);
    }
    model_.Columns(captions, alignments);
    lostRow_ = -1;
    HideOthers(0);
    FitColumns(0);
}

// As wide as the caption and the cells from this row on. Below other rows a column only grows, and behind a filter: its
// rows are not all that there are.
void Grid::FitColumns(int firstRow) {
    const int margin = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1) + columnGap;
    const bool grows = firstRow > 0 || hidden_ > 0;
    for (int column = 0; column < Columns(); ++column) {
        const int before = grows ? columnWidth(column) : horizontalHeader()->sectionSizeHint(column) + columnGap;
        double widest = 0;
        for (int row = firstRow; row < Rows(); ++row) {
            widest = std::max(widest, widths_.Of(TextMatrix(row, column), font()));
        }
        const int needed = widest > 0 ? static_cast<int>(std::ceil(widest)) + margin : 0;
        if (needed > before || !grows) {
            setColumnWidth(column, std::max(before, needed));
        }
    }
}

void Grid::AddItem(const QString& row) {
    AddItems({row.split('\t')});
}

void Grid::AddItems(const std::vector<QStringList>& rows) {
    const int first = Rows();
    model_.Append(rows);
    HideOthers(first);
    FitColumns(first);
}

void Grid::Clear() {
    model_.Clear();
    lostRow_ = -1;
    HideOthers(0);
}

void Grid::TextMatrix(int row, int column, const QString& text) {
    if (!model_.Text(row, column, text)) {
        return;
    }
    const int needed = fontMetrics().horizontalAdvance(text) + columnGap;
    if (needed > columnWidth(column) && horizontalHeader()->sectionResizeMode(column) == QHeaderView::Interactive) {
        setColumnWidth(column, needed);
    }
}

void Grid::SelectRow(int row) {
    if (row < 0 || row >= Rows()) {
        return;
    }
    if (isRowHidden(row)) {
        showRow(row);
        --hidden_;
        ShowFilter();
    }
    setCurrentIndex(model_.index(row, 0));
}

void Grid::Filter(const QString& text) {
    if (text == filter_) {
        return;
    }
    filter_ = text;
    HideOthers(0);
    SelectShown();
}

// Judges the rows from this one on.
void Grid::HideOthers(int firstRow) {
    if (firstRow == 0) {
        hidden_ = 0;
    }
    for (int row = firstRow; row < Rows(); ++row) {
        const bool hide = !filter_.isEmpty() && !model_.RowHolds(row, filter_);
        hidden_ += hide ? 1 : 0;
        if (hide != isRowHidden(row)) {
            setRowHidden(row, hide);
        }
    }
    ShowFilter();
}

int Grid::FirstShown(int from) const {
    while (from < Rows() && isRowHidden(from)) {
        ++from;
    }
    return from;
}

// In place of a selected row that is hidden now the next one below is selected, or else the first: Enter behind the
// typing chooses what was found.
void Grid::SelectShown() {
    const int row = Row() < 0 ? lostRow_ : Row();
    if (row < 0) {
        return;
    }
    if (hidden_ == Rows()) {
        lostRow_ = row;
        setCurrentIndex({});
        return;
    }
    lostRow_ = -1;
    const int below = FirstShown(row);
    SelectRow(below < Rows() ? below : FirstShown(0));
    scrollTo(currentIndex());
}

void Grid::ShowFilter() {
    lblfilter_.setVisible(!filter_.isEmpty());
    if (filter_.isEmpty()) {
        return;
    }
    lblfilter_.setText("Filter: " + filter_ + "   " + QString::number(Rows() - hidden_) + " of " +
                       QString::number(Rows()) + " rows   (Esc)");
    const QSize wanted = lblfilter_.sizeHint();
    const int width = std::min(wanted.width(), viewport()->width());
    const int height = std::max(horizontalHeader()->height(), wanted.height());
    lblfilter_.setGeometry(viewport()->geometry().right() + 1 - width, frameWidth(), width, height);
    lblfilter_.raise();
}

void Grid::updateGeometries() {
    QTableView::updateGeometries();
    ShowFilter();
}

// The keys that a filter takes: what is typed, and while it stands those that mend it. Keys with Ctrl or Alt are
// commands of the page, and the blank begins no filter: by itself it selects a row.
bool Grid::FilterKey(const QKeyEvent& event) {
    const bool filtered = !filter_.isEmpty();
    if (filtered && event.key() == Qt::Key_Escape) {
        Filter({});
        return true;
    }
    if (filtered && event.key() == Qt::Key_Backspace) {
        Filter(filter_.chopped(1));
        return true;
    }
    const bool command = (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    const QString typed = event.text();
    if (command || typed.isEmpty() || !typed.front().isPrint() || (!filtered && (typed == " " || Rows() == 0))) {
        return false;
    }
    Filter((filter_ + typed).left(longestFilter));
    return true;
}

// A filter comes before the keys of the page, Escape above all.
bool Grid::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && !filter_.isEmpty()) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Backspace) {
            event->accept();
            return true;
        }
    }
    return QTableView::event(event);
}

QString Grid::TabSeparated() const {
    QStringList captions;
    for (int column = 0; column < Columns(); ++column) {
        captions.append(model_.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    }
    QString text = JoinCells(captions);
    for (int row = 0; row < Rows(); ++row) {
        QStringList cells;
        for (int column = 0; column < Columns(); ++column) {
            cells.append(TextMatrix(row, column));
        }
        text += JoinCells(cells);
    }
    return text;
}

QString Grid::Save(const QString& file) const {
    return WriteWhole(file, TabSeparated().toUtf8());
}

void Grid::Copy() const {
    QApplication::clipboard()->setText(TabSeparated());
}

void Grid::SaveAs() {
    AskForFile(this, {"Save as tab-separated text", "Text (*.txt *.tsv)", "txt"}, [this](const QString& file) {
        if (const QString failure = Save(file); !failure.isEmpty()) {
            ShowBox(this, failure, "Save");
        }
    });
}

void Grid::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        Copy();
    } else if (event->matches(QKeySequence::Save)) {
        SaveAs();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && Row() >= 0) {
        Q_EMIT RowChosen(Row());
    } else if (!FilterKey(*event)) {
        QTableView::keyPressEvent(event);
    }
}

void Grid::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("&Copy", QKeySequence::Copy, this, &Grid::Copy);
    menu->addAction("&Save As...", QKeySequence::Save, this, &Grid::SaveAs);
    menu->popup(event->globalPos());
}

void Grid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (current.row() != previous.row() || !previous.isValid()) {
        Q_EMIT RowSelected(current.row());
    }
}

}  // namespace desk
