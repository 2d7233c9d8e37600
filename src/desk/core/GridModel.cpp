#include "desk/core/GridModel.h"

namespace desk {

void GridModel::Columns(const QStringList& captions, const std::vector<Qt::Alignment>& alignments) {
    beginResetModel();
    captions_ = captions;
    alignments_ = alignments;
    rows_.clear();
    colours_.clear();
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
    colours_.clear();
    endResetModel();
}

QString GridModel::Text(int row, int column) const {
    return row >= 0 && row < rowCount() ? rows_[static_cast<std::size_t>(row)].value(column) : QString();
}

void GridModel::Text(int row, int column, const QString& text) {
    QStringList& cells = rows_.at(static_cast<std::size_t>(row));
    while (cells.size() <= column) {
        cells.append(QString());
    }
    cells[column] = text;
    Q_EMIT dataChanged(index(row, column), index(row, column));
}

void GridModel::Colour(int row, int column, const QColor& colour) {
    colours_[{row, column}] = colour;
    Q_EMIT dataChanged(index(row, column), index(row, column), {Qt::BackgroundRole, Qt::ForegroundRole});
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(captions_.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    const auto colour = colours_.find({index.row(), index.column()});
    switch (role) {
        case Qt::DisplayRole:
            return Text(index.row(), index.column());
        case Qt::TextAlignmentRole:
            return QVariant(alignments_[static_cast<std::size_t>(index.column())] | Qt::AlignVCenter);
        case Qt::BackgroundRole:
            return colour == colours_.end() ? QVariant() : QVariant(colour->second);
        case Qt::ForegroundRole:  // readable on the cell's colour in a light and in a dark palette
            return colour == colours_.end()           ? QVariant()
                   : colour->second.lightness() > 128 ? QVariant(QColor(Qt::black))
                                                      : QVariant(QColor(Qt::white));
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
