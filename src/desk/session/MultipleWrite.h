#pragma once

#include <QFrame>
#include <QStringList>
#include <set>
#include <vector>

class QPushButton;

namespace desk {

class Grid;

// The copy of the gas composition in which several values are changed before they are written together.
class MultipleWrite : public QFrame {
    Q_OBJECT

  public:
    explicit MultipleWrite(QWidget* parent = nullptr);

    // Takes the rows as the composition's own grid has them, and comes up.
    void copyGrid(const QString& format, const std::vector<QStringList>& rows);
    void Leave();

    // A value was entered for a row.
    void Enter(int row, const QString& text);
    QString Text(int row) const;
    int Rows() const;
    bool Changed(int row) const { return changed_.count(row) != 0; }

  Q_SIGNALS:
    void RowChosen(int row);
    void Send();
    void Left();

  private:
    Grid* gcMultiGrid_;
    QPushButton* cmdMulWrite_;
    std::set<int> changed_;
};

}  // namespace desk
