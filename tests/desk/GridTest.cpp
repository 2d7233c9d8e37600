#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "desk/kit/Grid.h"
#include "support/ScreenDesk.h"

using namespace desk;

namespace {

// A page as the others are: Escape closes it, Ctrl+R and Alt+W are its commands.
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
        for (int row = 0; row < page.grid.Rows(); ++row) {
            rows += page.grid.isRowHidden(row) ? "" : page.grid.TextMatrix(row, 0).toStdString();
        }
        return rows;
    }
    std::string Says() const {
        const auto& label = support::The<QLabel>(page.grid, "lblfilter");
        return label.isVisible() ? label.text().toStdString() : "";
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&page.grid, key, modifiers); }
    // The timer of the marks, run by hand.
    void TurnOfMarks() {
        QMetaObject::invokeMethod(page.grid.findChild<QTimer*>("tmrmarks"), "timeout", Qt::DirectConnection);
    }
    QVariant Look(int row, int column, int role) const { return page.grid.model()->index(row, column).data(role); }

    support::ScreenDesk screen;
    GridPage& page = screen.Open<GridPage>();
};

TEST_F(GridTest, TypingLeavesTheRowsThatHoldIt) {
    page.grid.SelectRow(1);
    QSignalSpy chosen(&page.grid, &Grid::RowChosen);
    QTest::keyClicks(&page.grid, "PRESS");
    EXPECT_EQ(Shown(), "13");
    EXPECT_EQ(Says(), "Filter: PRESS   2 of 4 rows   (Esc)");
    EXPECT_EQ(page.grid.Row(), 2);  // the next one below, by its own index
    Press(Qt::Key_Return);
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toInt(), 2);
    Press(Qt::Key_Up);
    EXPECT_EQ(page.grid.Row(), 0);
    EXPECT_EQ(page.grid.TextMatrix(3, 2), "OPEN");

    // In any column, the blank too once something is typed.
    Press(Qt::Key_Escape);
    QTest::keyClicks(&page.grid, "r p");
    EXPECT_EQ(Shown(), "4");
    for (int i = 0; i < 3; ++i) {
        Press(Qt::Key_Backspace);
    }
    EXPECT_EQ(Shown(), "1234");
    EXPECT_EQ(Says(), "");
    QTest::keyClicks(&page.grid, "mbar");
    EXPECT_EQ(Shown(), "3");
}

TEST_F(GridTest, EscapeTakesTheFilterAwayBeforeItClosesThePage) {
    QTest::keyClicks(&page.grid, "temp");
    Press(Qt::Key_Escape);
    EXPECT_EQ(Shown(), "1234");
    EXPECT_EQ(page.closed, 0);
    Press(Qt::Key_Escape);
    EXPECT_EQ(page.closed, 1);
}

TEST_F(GridTest, CommandsOfThePageAreNoFilter) {
    Press(Qt::Key_W, Qt::AltModifier);
    EXPECT_TRUE(page.write.isDown());
    Press(Qt::Key_Space);
    Press(Qt::Key_F5);
    Press(Qt::Key_Delete);
    Press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(page.grid.Filter(), "");
    QTest::keyClicks(&page.grid, "door");
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(page.grid.Filter(), "door");
    // All rows, the hidden ones too, and not what the filter hides.
    EXPECT_EQ(QApplication::clipboard()->text().count("\r\n"), 5);
}

TEST_F(GridTest, TheFilterStandsWhenRowsComeAndGo) {
    QTest::keyClicks(&page.grid, "press");
    page.grid.AddItem("5\tPressure base\t1\tbar");
    page.grid.AddItem("6\tSG\t0.6\t");
    EXPECT_EQ(Shown(), "135");
    EXPECT_EQ(Says(), "Filter: press   3 of 6 rows   (Esc)");
    page.grid.Clear();
    EXPECT_EQ(Says(), "Filter: press   0 of 0 rows   (Esc)");
    page.grid.AddItems({{"7", "SG"}, {"8", "Pressure"}});
    EXPECT_EQ(Shown(), "8");
    page.grid.FormatString("A|B");
    page.grid.AddItem("9\tPressure");
    EXPECT_EQ(Shown(), "9");
    // A row that the program selects is seen.
    page.grid.AddItem("0\tDoor");
    page.grid.SelectRow(1);
    EXPECT_EQ(Shown(), "90");
    EXPECT_EQ(page.grid.Row(), 1);
}

TEST_F(GridTest, WithoutAnyRowNoneIsSelected) {
    page.grid.SelectRow(2);
    QTest::keyClicks(&page.grid, "xyz");
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(Says(), "Filter: xyz   0 of 4 rows   (Esc)");
    EXPECT_EQ(page.grid.Row(), -1);
    Press(Qt::Key_Return);
    Press(Qt::Key_Down);
    EXPECT_EQ(page.grid.Row(), -1);
    Press(Qt::Key_Escape);
    EXPECT_EQ(page.grid.Row(), 2);
}

TEST_F(GridTest, AMarkGoesByItselfAndLeavesTheColour) {
    page.grid.CellColour(0, 2, Qt::red);
    page.grid.Mark(0, 2);
    page.grid.Mark(1, 2);
    page.grid.Mark(99, 2);
    EXPECT_TRUE(Look(0, 2, Qt::FontRole).value<QFont>().bold());
    EXPECT_EQ(Look(0, 2, Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_TRUE(Look(1, 2, Qt::FontRole).value<QFont>().bold());
    EXPECT_TRUE(Look(1, 2, Qt::BackgroundRole).isValid());
    EXPECT_FALSE(Look(1, 1, Qt::FontRole).isValid());

    TurnOfMarks();
    TurnOfMarks();
    page.grid.Mark(1, 2);  // new once more: it stays longer
    TurnOfMarks();
    EXPECT_FALSE(Look(0, 2, Qt::FontRole).isValid());
    EXPECT_EQ(Look(0, 2, Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_TRUE(Look(1, 2, Qt::FontRole).isValid());
    TurnOfMarks();
    TurnOfMarks();
    EXPECT_FALSE(Look(1, 2, Qt::BackgroundRole).isValid());
    EXPECT_FALSE(page.grid.findChild<QTimer*>("tmrmarks")->isActive());

    page.grid.CellColour(0, 2, QColor());
    EXPECT_FALSE(Look(0, 2, Qt::BackgroundRole).isValid());
    page.grid.Mark(1, 2);
    page.grid.Clear();
    page.grid.AddItem("1\tA\tB");
    page.grid.AddItem("2\tA\tB");
    EXPECT_FALSE(Look(1, 2, Qt::FontRole).isValid());
}

TEST_F(GridTest, TheSelectionHidesNoColour) {
    page.grid.CellColour(0, 1, Qt::red);
    page.grid.SelectRow(0);
    const auto pixel = [this](int column) {
        const QRect cell = page.grid.visualRect(page.grid.model()->index(0, column));
        return page.grid.viewport()->grab().toImage().pixelColor(cell.left() + 1, cell.center().y());
    };
    EXPECT_EQ(pixel(1), QColor(Qt::red));
    EXPECT_NE(pixel(2), QColor(Qt::red));
    EXPECT_NE(pixel(2), page.palette().color(QPalette::Base)) << "the rest of the row is seen as selected";
}

TEST_F(GridTest, ARefreshCostsWhatChanges) {
    std::vector<QStringList> rows;
    for (int row = 0; row < 480; ++row) {
        rows.push_back({QString::number(row), "Parameter", "1.000000", "bar"});
    }
    page.grid.Clear();
    page.grid.AddItems(rows);
    QSignalSpy changes(page.grid.model(), &QAbstractItemModel::dataChanged);
    QSignalSpy widths(page.grid.horizontalHeader(), &QHeaderView::sectionResized);
    QElapsedTimer time;
    time.start();
    for (int row = 0; row < 480; ++row) {
        page.grid.TextMatrix(row, 2, row % 100 == 0 ? "2.000000" : "1.000000");
        page.grid.CellColour(row, 2, QColor());
    }
    EXPECT_LT(time.nsecsElapsed(), 20'000'000);  // a tenth of it when the machine does nothing else
    EXPECT_EQ(changes.size(), 5);
    EXPECT_EQ(widths.size(), 0);
    page.grid.TextMatrix(7, 2, "a value that is longer than the column is wide");
    EXPECT_EQ(widths.size(), 1);
}

TEST_F(GridTest, RowsThatArriveKeepThePlace) {
    Grid& grid = page.grid;
    std::vector<QStringList> rows(1500, {"1", "Static Pressure", "4.2", "bar"});
    rows.push_back({"2", "Static Pressure", "a text that is wider than all the others", "bar"});
    grid.AddItems(rows);
    EXPECT_GE(grid.columnWidth(2), grid.fontMetrics().horizontalAdvance(rows.back()[2]));  // however far down it stands
    grid.setColumnWidth(1, 1500);                                                          // as the operator drags it
    grid.SelectRow(700);
    QCoreApplication::processEvents();
    grid.horizontalScrollBar()->setValue(300);
    grid.verticalScrollBar()->setValue(650);
    const auto place = [&grid] {
        return std::vector{grid.horizontalScrollBar()->value(),
                           grid.verticalScrollBar()->value(),
                           grid.Row(),
                           grid.columnWidth(0),
                           grid.columnWidth(1),
                           grid.columnWidth(2)};
    };
    const auto before = place();
    for (int row = 0; row < 4; ++row) {
        grid.AddItem("3\tTemperature\t15\tC");
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(place(), before);
    grid.AddItem("a number that needs more room\tTemperature\t15\tC");
    EXPECT_GT(grid.columnWidth(0), before[3]);
    EXPECT_EQ(grid.columnWidth(1), 1500);
    // Into an empty grid they fit anew.
    grid.Clear();
    grid.AddItem("1\tSG\t0.6\t");
    EXPECT_LT(grid.columnWidth(1), 1500);
    EXPECT_LE(grid.columnWidth(0), before[3]);
}

}  // namespace
