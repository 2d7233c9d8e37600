#pragma once

#include <QTableView>

#include "desk/core/GridModel.h"

namespace desk {

// The grid of every screen: rows of texts under named columns, one row selected. Its columns fit what they hold; it can
// be copied and saved as tab-separated text (Ctrl+C, Ctrl+S, the menu of the right button).
class Grid : public QTableView {
    Q_OBJECT

  public:
    explicit Grid(QWidget* parent = nullptr);

    // The columns: captions separated by "|", each led by "<" left, ">" right or "^" centred; left without a sign.
    // The rows are taken away.
    void FormatString(const QString& format);

    // Adds a row, its cells separated by tabs; or many at once. The selection and the place stay.
    void AddItem(const QString& row);
    void AddItems(const std::vector<QStringList>& rows);
    void Clear() { model_.Clear(); }

    int Rows() const { return model_.rowCount(); }
    int Columns() const { return model_.columnCount(); }
    QString TextMatrix(int row, int column) const { return model_.Text(row, column); }
    void TextMatrix(int row, int column, const QString& text) { model_.Text(row, column, text); }
    void CellColour(int row, int column, const QColor& colour) { model_.Colour(row, column, colour); }

    // The selected row from 0; -1 when there is none.
    int Row() const { return currentIndex().row(); }
    void SelectRow(int row);

    // Captions and rows, a line each, cells separated by tabs. What would break a line stands as blanks.
    QString TabSeparated() const;

    // Writes that text to a file in UTF-8, whole or not at all. Tells why not; empty when it is written.
    QString Save(const QString& file) const;

  Q_SIGNALS:
    // Another row is selected, by click, key or program.
    void RowSelected(int row);
    // A row is chosen to be worked on: a click, or Enter on it.
    void RowChosen(int row);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    void FitColumns();
    void Copy() const;
    void SaveAs();

    GridModel model_;
};

}  // namespace desk
