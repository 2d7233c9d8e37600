#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QStringList>
#include <map>
#include <utility>
#include <vector>

namespace desk {

// The cells of a grid: texts in rows, and the colours of those that have one.
class GridModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    // Captions and alignments of the columns. The rows are taken away.
    void Columns(const QStringList& captions, const std::vector<Qt::Alignment>& alignments);
    void Append(const std::vector<QStringList>& rows);
    void Clear();

    QString Text(int row, int column) const;
    void Text(int row, int column, const QString& text);
    void Colour(int row, int column, const QColor& colour);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    QStringList captions_;
    std::vector<Qt::Alignment> alignments_;
    std::vector<QStringList> rows_;
    std::map<std::pair<int, int>, QColor> colours_;
};

}  // namespace desk
