#include "desk/core/Grid.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>

#include "desk/core/Boxes.h"
#include "desk/core/WholeFile.h"

namespace desk {

namespace {

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

Grid::Grid(QWidget* parent) : QTableView(parent) {
    setModel(&model_);
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
    connect(this, &QTableView::clicked, this, [this](const QModelIndex& index) { Q_EMIT RowChosen(index.row()); });
}

void Grid::FormatString(const QString& format) {
    QStringList captions;
    std::vector<Qt::Alignment> alignments;
    for (QString column : format.split('|')) {
        const QChar sign = column.isEmpty() ? QChar('<') : column.front();
        alignments.push_back(sign == '>' ? Qt::AlignRight : sign == '^' ? Qt::AlignHCenter : Qt::AlignLeft);
        if (sign == '<' || sign == '>' || sign == '^') {
            column.remove(0, 1);
        }
        captions.append(column);
    }
    model_.Columns(captions, alignments);
    FitColumns();
}

// As wide as caption and cells, with room between a number and the text of the next column.
void Grid::FitColumns() {
    constexpr int gap = 16;
    resizeColumnsToContents();
    for (int column = 0; column < Columns(); ++column) {
        setColumnWidth(column, columnWidth(column) + gap);
    }
}

void Grid::AddItem(const QString& row) {
    AddItems({row.split('\t')});
}

void Grid::AddItems(const std::vector<QStringList>& rows) {
    model_.Append(rows);
    FitColumns();
}

void Grid::SelectRow(int row) {
    if (row >= 0 && row < Rows()) {
        setCurrentIndex(model_.index(row, 0));
    }
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
    } else {
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
