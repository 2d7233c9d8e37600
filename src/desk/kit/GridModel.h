#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QStringList>
#include <QTimer>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace desk {

// The cells of a grid: texts in rows, the colours of those that have one, and which are marked for a moment.
class GridModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    explicit GridModel(QObject* parent = nullptr);

    // Captions and alignments of the columns. The rows are taken away.
    void Columns(const QStringList& captions, const std::vector<Qt::Alignment>& alignments);
    void Append(const std::vector<QStringList>& rows);
    void Clear();

    QString Text(int row, int column) const;
    // Tells whether the text is another than before.
    bool Text(int row, int column, const QString& text);
    // An invalid colour takes the cell's colour away.
    void Colour(int row, int column, const QColor& colour);

    // Marks a cell for 1 to 1.5 s: bold, and tinted unless it has a colour.
    void Mark(int row, int column);

    // Shows a row in a muted shade, or as the others again.
    void Fade(int row, bool faded);

    // A text of the row holds this one, in any case.
    bool RowHolds(int row, const QString& text) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    using Cell = std::pair<int, int>;

    void ForgetCells();
    void AgeMarks();
    void Redraw(const Cell& cell);

    QStringList captions_;
    std::vector<Qt::Alignment> alignments_;
    std::vector<QStringList> rows_;
    std::map<Cell, QColor> colours_;
    std::set<int> faded_;        // rows
    std::map<Cell, int> marks_;  // with the turns of the timer that are left
    QTimer markTimer_;           // runs while there are marks
};

}  // namespace desk
