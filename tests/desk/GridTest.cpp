#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QVBoxLayout>

#include "desk/kit/Grid.h"
#include "support/ScreenDesk.h"

using namespace desk;

namespace {

// A page as the others are: Escape closes it, Alt+W is its command.
class GridPage : public Page {
  public:
    explicit GridPage(Desk& desk) : Page(desk, "Grid"), grid(this), close("&Close", this), write("&Write", this) {
        auto* column = new QVBoxLayout(this);
        column->addWidget(&grid);
        column->addWidget(&close);
        column->addWidget(&write);
        grid.FormatString("|   Description   |>Value|Unit");
        grid.AddItems({{"1", "Static Pressure", "4.2", "bar"},
                       {"2", "Temperature", "15", "C"},
                       {"3", "Diff. pressure", "120", "mbar"},
                       {"4", "Door Position", "OPEN", ""}});
        CloseCommand(&close);
        connect(&close, &QPushButton::clicked, this, [this] { ++closed; });
        grid.setFocus();
    }

    Grid grid;
    QPushButton close;
    QPushButton write;
    int closed = 0;
};

class GridTest : public testing::Test {
  protected:
    std::string Shown() const {
        std::string rows;
        for (int row = 0; row < grid.Rows(); ++row) {
            rows += grid.isRowHidden(row) ? "" : grid.TextMatrix(row, 0).toStdString();
        }
        return rows;
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&grid, key, modifiers); }
    QVariant Look(int row, int column, int role) const { return grid.model()->index(row, column).data(role); }

    support::ScreenDesk screen;
    GridPage& page = screen.Open<GridPage>();
    Grid& grid = page.grid;
};

TEST_F(GridTest, TypingLeavesTheRowsThatHoldItUntilEscape) {
    grid.SelectRow(1);
    QSignalSpy chosen(&grid, &Grid::RowChosen);
    QTest::keyClicks(&grid, "PRESS");
    EXPECT_EQ(Shown(), "13");
    EXPECT_EQ(support::Text(page, "lblfilter"), "Filter: PRESS   2 of 4 rows   (Esc)");
    Press(Qt::Key_Return);
    EXPECT_EQ(chosen.at(0).at(0).toInt(), 2) << "the next one below, by its own index";
    grid.AddItem("5\tPressure base\t1\tbar");
    grid.AddItem("6\tSG\t0.6\t");
    EXPECT_EQ(Shown(), "135");
    // Commands of the page are no filter; a copy holds the hidden rows too.
    Press(Qt::Key_W, Qt::AltModifier);
    EXPECT_TRUE(page.write.isDown());
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(grid.Filter(), "PRESS");
    EXPECT_EQ(QApplication::clipboard()->text().count("\r\n"), 7);
    Press(Qt::Key_Escape);
    EXPECT_EQ(Shown(), "123456");
    EXPECT_EQ(page.closed, 0);
    Press(Qt::Key_Escape);
    EXPECT_EQ(page.closed, 1);
}

TEST_F(GridTest, AMarkGoesByItselfAndNothingHidesAColour) {
    const auto turn = [this] { support::Fire(grid, "tmrmarks"); };
    grid.CellColour(0, 2, Qt::red);
    grid.Mark(0, 2);
    grid.Mark(1, 2);
    EXPECT_TRUE(Look(0, 2, Qt::FontRole).value<QFont>().bold());
    EXPECT_EQ(Look(0, 2, Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_TRUE(Look(1, 2, Qt::BackgroundRole).isValid());
    turn();
    turn();
    grid.Mark(1, 2);  // new once more: it stays longer
    turn();
    EXPECT_FALSE(Look(0, 2, Qt::FontRole).isValid());
    EXPECT_TRUE(Look(1, 2, Qt::FontRole).isValid());
    turn();
    turn();
    EXPECT_FALSE(Look(1, 2, Qt::BackgroundRole).isValid());
    EXPECT_EQ(Look(0, 2, Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));

    grid.SelectRow(0);
    const auto pixel = [this](int column) {
        const QRect cell = grid.visualRect(grid.model()->index(0, column));
        return grid.viewport()->grab().toImage().pixelColor(cell.left() + 1, cell.center().y());
    };
    EXPECT_EQ(pixel(2), QColor(Qt::red));
    EXPECT_NE(pixel(1), page.palette().color(QPalette::Base)) << "the rest of the row is seen as selected";
}

}  // namespace
