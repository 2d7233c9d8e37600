#pragma once

#include <QTableView>

namespace desk {

class Grid;

// A grid's first column, which stays in sight however far the grid is moved to the side. It lies over the grid's own.
class FirstColumn : public QTableView {
    Q_OBJECT

  public:
    // The grid owns it.
    explicit FirstColumn(Grid* grid);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Fit(int width);

    Grid* grid_;
};

}  // namespace desk
