#include "desk/kit/GridModel.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

namespace desk {

namespace {

// A mark is set between two turns of the timer, so it stays for two to three of them.
constexpr int markTurnMs = 500;
constexpr int markTurns = 3;

// Between the page's own colour and that of a selection: seen in a light and in a dark palette, and the text on it too.
QColor MarkTint() {
    const QPalette palette = QGuiApplication::palette();
    const QColor base = palette.color(QPalette::Base);
    const QColor highlight = palette.color(QPalette::Highlight);
    constexpr float part = 0.35F;
    const auto mixed = [](float from, float to) { return from + (to - from) * part; };
    return QColor::fromRgbF(mixed(base.redF(), highlight.redF()), mixed(base.greenF(), highlight.greenF()),
                            mixed(base.blueF(), highlight.blueF()));
}

}  // namespace

GridModel::GridModel(QObject* parent) : QAbstractTableModel(parent), markTimer_(this) {
    markTimer_.setObjectName("tmrmarks");
    markTimer_.setInterval(markTurnMs);
    connect(&markTimer_, &QTimer::timeout, this, &GridModel::AgeMarks);
}

void GridModel::Columns(const QStringList& captions, const std::vector<Qt::Alignment>& alignments) {
    beginResetModel();
    captions_ = captions;
    alignments_ = alignments;
    rows_.clear();
    ForgetCells();
    endResetModel();
}

void GridModel::Append(const std::vector<QStringList>& rows) {
    if (rows.empty()) {
        return;
    }
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
    rows_.insert(rows_.end(), rows.begin(), rows.end());
    endInsertRows();
}

void GridModel::Clear() {
    beginResetModel();
    rows_.clear();
    ForgetCells();
    endResetModel();
}

QString GridModel::Text(int row, int column) const {
    return row >= 0 && row < rowCount() ? rows_[static_cast<std::size_t>(row)].value(column) : QString();
}

bool GridModel::Text(int row, int column, const QString& text) {
    QStringList& cells = rows_.at(static_cast<std::size_t>(row));
    if (column < cells.size() && cells[column] == text) {
        return false;
    }
    while (cells.size() <= column) {
        cells.append(QString());
    }
    cells[column] = text;
    Q_EMIT dataChanged(index(row, column), index(row, column), {Qt::DisplayRole});
    return true;
}

void GridModel::Colour(int row, int column, const QColor& colour) {
    const Cell cell(row, column);
    const auto at = colours_.find(cell);
    if ((at == colours_.end() ? QColor() : at->second) == colour) {
        return;
    }
    if (colour.isValid()) {
        colours_[cell] = colour;
    } else {
        colours_.erase(cell);
    }
    Redraw(cell);
}

void GridModel::Mark(int row, int column) {
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) {
        return;
    }
    const Cell cell(row, column);
    const bool isNew = marks_.insert_or_assign(cell, markTurns).second;
    if (!markTimer_.isActive()) {
        markTimer_.start();
    }
    if (isNew) {
        Redraw(cell);
    }
}

void GridModel::Fade(int row, bool faded) {
    const bool changed = faded ? faded_.insert(row).second : faded_.erase(row) > 0;
    if (changed && row >= 0 && row < rowCount()) {
        Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1), {Qt::ForegroundRole});
    }
}

void GridModel::AgeMarks() {
    for (auto mark = marks_.begin(); mark != marks_.end();) {
        if (--mark->second > 0) {
            ++mark;
            continue;
        }
        const Cell cell = mark->first;
        mark = marks_.erase(mark);
        Redraw(cell);
    }
    if (marks_.empty()) {
        markTimer_.stop();
    }
}

void GridModel::ForgetCells() {
    colours_.clear();
    faded_.clear();
    marks_.clear();
    markTimer_.stop();
}

void GridModel::Redraw(const Cell& cell) {
    const QModelIndex at = index(cell.first, cell.second);
    Q_EMIT dataChanged(at, at, {Qt::BackgroundRole, Qt::ForegroundRole, Qt::FontRole});
}

bool GridModel::RowHolds(int row, const QString& text) const {
    const QStringList& cells = rows_.at(static_cast<std::size_t>(row));
    return std::any_of(cells.begin(), cells.end(),
                       [&](const QString& cell) { return cell.contains(text, Qt::CaseInsensitive); });
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(captions_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const Cell cell(index.row(), index.column());
    switch (role) {
        case Qt::DisplayRole:
            return Text(index.row(), index.column());
        case Qt::TextAlignmentRole:
            return QVariant(alignments_[static_cast<std::size_t>(index.column())] | Qt::AlignVCenter);
        case Qt::BackgroundRole:
            if (const auto colour = colours_.find(cell); colour != colours_.end()) {
                return colour->second;
            }
            return marks_.contains(cell) ? QVariant(MarkTint()) : QVariant();
        case Qt::ForegroundRole:  // readable on the cell's colour in a light and in a dark palette
            if (const auto colour = colours_.find(cell); colour != colours_.end()) {
                return QColor(colour->second.lightness() > 128 ? Qt::black : Qt::white);
            }
            return faded_.contains(index.row()) ? QVariant(QGuiApplication::palette().color(QPalette::PlaceholderText))
                                                : QVariant();
        case Qt::FontRole:
            if (marks_.contains(cell)) {
                QFont bold;
                bold.setBold(true);
                return bold;
            }
            return {};
        default:
            return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical) {
        return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant(alignments_[static_cast<std::size_t>(section)] | Qt::AlignVCenter);
    }
    return role == Qt::DisplayRole ? QVariant(captions_.value(section)) : QVariant();
}

}  // namespace desk
