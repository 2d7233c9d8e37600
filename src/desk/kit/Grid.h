#pragma once

#include <QLabel>
#include <QTableView>

#include "desk/kit/GridModel.h"
#include "desk/kit/TextWidths.h"

namespace desk {

// The grid of every screen: rows of texts under named columns, one row selected. Its columns fit what they hold; it can
// be copied and saved as tab-separated text (Ctrl+C, Ctrl+S, the menu of the right button).
//
// Typing filters it: the rows that hold the typed text in any column stay, the others are hidden and keep their index.
// Backspace shortens the text, Escape takes the filter away. A row is judged when it comes and when the filter changes,
// not when its texts change, so that no row goes from under the operator's eyes. The selected row is always one that is
// shown. Copies and files hold all rows.
class Grid : public QTableView {
    Q_OBJECT

  public:
    explicit Grid(QWidget* parent = nullptr);

    // The columns: captions separated by "|", each led by "<" left, ">" right or "^" centred; left without a sign.
    // The rows are taken away.
    void FormatString(const QString& format);
    // The same, a text each, which may hold a "|".
    void FormatString(const QStringList& columns);

    // Adds a row, its cells separated by tabs; or many at once. The selection and the place stay, and so does a width
    // that a column has, unless a new text needs more. It costs what is new, however many rows there are.
    void AddItem(const QString& row);
    void AddItems(const std::vector<QStringList>& rows);
    void Clear();

    int Rows() const { return model_.rowCount(); }
    int Columns() const { return model_.columnCount(); }
    QString TextMatrix(int row, int column) const { return model_.Text(row, column); }
    // A column gets wider for a text that does not fit; the same text again costs nothing.
    void TextMatrix(int row, int column, const QString& text);
    // An invalid colour takes the cell's colour away.
    void CellColour(int row, int column, const QColor& colour) { model_.Colour(row, column, colour); }

    // Marks a cell for a moment, as one whose value is new; the mark goes by itself. A colour of the cell stays.
    void Mark(int row, int column) { model_.Mark(row, column); }

    // What was typed to filter the rows; empty without a filter. It outlives the rows.
    const QString& Filter() const { return filter_; }
    void Filter(const QString& text);

    // Shows a row in a muted shade, or as the others again. A cell's own colour stays.
    void Fade(int row, bool faded) { model_.Fade(row, faded); }

    // The selected row from 0; -1 when there is none. One that is selected by program is shown, whatever the filter.
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
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void updateGeometries() override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    void FitColumns(int firstRow);
    bool FilterKey(const QKeyEvent& event);
    void HideOthers(int firstRow);
    void SelectShown();
    void ShowFilter();
    int FirstShown(int from) const;
    void Copy() const;
    void SaveAs();

    GridModel model_;
    TextWidths widths_;
    QString filter_;
    int hidden_ = 0;    // rows
    int lostRow_ = -1;  // was selected when the filter left no row to be selected
    QLabel lblfilter_;  // over the captions, so that no row is behind it
};

}  // namespace desk
