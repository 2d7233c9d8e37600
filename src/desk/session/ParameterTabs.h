#pragma once

#include <QStringList>
#include <QTabWidget>
#include <array>
#include <map>
#include <vector>

#include "session/ParameterGroups.h"

class QPushButton;

namespace desk {

class Grid;

// What decides which tabs and grids a station has.
struct TabChoices {
    bool isCW = false;
    bool isAga3 = false;        // an orifice meter; off: any other
    bool aga8_fpv = true;       // AGA8; off: NX-19
    bool Gross_Detail = false;  // Gross; off: Detail
    bool superUser = false;
    bool quantum = false;
    int drs = 0;  // 1 a TeleRTU, 2 a TeleRTU(M), 0 any other
};

// The grids of a station's parameter groups on their tabs. It owns them all; which are seen follows from the station
// and, behind the tenth tab, from whether there are rows. Where groups share a grid their rows follow one another in
// it, so a row is known here by its group and its place in the group, both from 0.
class ParameterTabs : public QTabWidget {
    Q_OBJECT

  public:
    explicit ParameterTabs(QWidget* parent = nullptr);

    // Captions, tabs and grids of a station; its first tab comes to the front. The rows stay.
    void Arrange(const TabChoices& choices);

    // The columns of all grids. All rows are taken away.
    void FormatString(const QString& format);

    // The rows of a group, in place of those that it had. A group without a grid (TIME) shows none.
    void Show(std::size_t group, const std::vector<QStringList>& rows);

    // Changes one cell in place; nothing happens for a row that the group does not have.
    void Cell(std::size_t group, std::size_t row, int column, const QString& text);
    QString Cell(std::size_t group, std::size_t row, int column) const;

    // The grid of a group, which must have one (std::out_of_range for TIME), and the place of a row in it; -1 for a
    // row that the group does not have.
    Grid& GridOf(std::size_t group) const { return *grids_.at(group); }
    int GridRow(std::size_t group, std::size_t row) const;
    std::size_t Rows(std::size_t group) const { return count_.at(group); }

    // The command beside the Gross composition.
    QPushButton& cmdgc() const { return *cmdgc_; }

    // The tab of a group's grid comes to the front.
    void BringForward(std::size_t group);

    // The grid in front; null when its tab holds none that is seen.
    Grid* GridInFront() const;

  Q_SIGNALS:
    // A row is chosen to be worked on: a click, or Enter on it.
    void RowChosen(std::size_t group, std::size_t row);

  private:
    void ShowTabs();
    bool HasRows(int tab) const;
    int FirstRow(std::size_t group) const;
    void GridRowChosen(const Grid* grid, int row);

    TabChoices choices_;
    std::array<std::size_t, session::groupCount> count_{};  // rows of each group
    std::map<std::size_t, Grid*> grids_;                    // by group
    std::vector<Grid*> all_;                                // each once
    QPushButton* cmdgc_ = nullptr;
};

}  // namespace desk
