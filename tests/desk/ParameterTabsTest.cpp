// The tabs and grids of a station's parameters: which are seen, and where a row stands.

#include <QPushButton>
#include <QTest>

#include "desk/kit/Grid.h"
#include "desk/session/ParameterTabs.h"

namespace {

using desk::Grid;
using desk::ParameterTabs;
using desk::TabChoices;

std::size_t Group(const char* aga) {
    return session::GroupOf(aga).value();
}

std::string Captions(const ParameterTabs& tabs) {
    std::string captions;
    for (int tab = 0; tab < tabs.count(); ++tab) {
        if (tabs.isTabVisible(tab)) {
            captions += (captions.empty() ? "" : ",") + tabs.tabText(tab).toStdString();
        }
    }
    return captions;
}

// The grids that are seen with rows on their tabs, each on its tab in front.
std::string GridsInFront(ParameterTabs& tabs) {
    std::string grids;
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        if (tabs.isTabVisible(tab)) {
            grids += (grids.empty() ? "" : ",") + tabs.GridInFront()->objectName().toStdString();
        }
    }
    return grids;
}

TEST(ParameterTabs, ShowsTheTabsAndGridsOfItsStation) {
    struct Case {
        TabChoices choices;
        std::string captions;
        std::string grids;
        int front;
    };
    const std::string middle = "gcgrid,totrendgrid,healthgrid,alarmgrid,IOGrid,nomgrid,controlgrid";
    for (const Case& c : {Case{{.isAga3 = true},
                               "AGA3,AGA8,GC,Totals,Health,Alarm,I/O,Nomination,PID,Radio,Keypad",
                               "aga3grid,aga8Detail," + middle + ",radiogrid,keypadgrid",
                               0},
                          Case{{.Gross_Detail = true, .superUser = true, .drs = 2},
                               "AGA7,AGA8,GC,Totals,Health,Alarm,I/O,Nomination,PID,DRS,Curve,Modem,Keypad",
                               "aga7grid,aga8gridGross," + middle + ",DRSgrid,radiogrid,modemgrid,keypadgrid",
                               0},
                          Case{{.isCW = true, .aga8_fpv = false, .Gross_Detail = true},
                               "AGA7,AGA8,GC,Totals,Health,Alarm,I/O Slot-1,I/O Slot-2,PID,Curve,Keypad",
                               "aga7grid,FPVGrid," + middle + ",radiogrid,keypadgrid",
                               0},
                          Case{{.drs = 1}, "DRS", "DRSgrid", 9}, Case{{.quantum = true}, "Quantum", "floatgrid", 16}}) {
        ParameterTabs tabs;
        tabs.FormatString("|a|b");
        for (const char* aga : {"RADIO", "KEYPAD", "MODEM", "Quantum"}) {
            tabs.Show(Group(aga), {{"", "x", "y"}});
        }
        tabs.Arrange({.isAga3 = !c.choices.isAga3, .drs = 2});
        tabs.Arrange(c.choices);
        EXPECT_EQ(tabs.currentIndex(), c.front);
        EXPECT_EQ(Captions(tabs), c.captions);
        EXPECT_EQ(GridsInFront(tabs), c.grids);
        EXPECT_EQ(!tabs.cmdgc().isHidden(), c.choices.aga8_fpv && c.choices.Gross_Detail);
    }
}

TEST(ParameterTabs, GroupsThatShareAGridKeepTheirRowsApart) {
    ParameterTabs tabs;
    tabs.FormatString("|name|value");
    Grid& grid = tabs.GridOf(Group("AGA7"));
    ASSERT_EQ(&grid, &tabs.GridOf(Group("AGA11")));
    tabs.Show(Group("AGA11"), {{"", "mass", ""}});
    tabs.Show(Group("AGA7"), {{"", "flow", ""}, {"", "factor", ""}});
    tabs.Show(Group("AGA9"), {{"", "sonic", ""}});
    EXPECT_EQ(tabs.GridRow(Group("AGA11"), 0), 3);
    EXPECT_EQ(tabs.GridRow(Group("AGA9"), 1), -1);
    tabs.Cell(Group("AGA11"), 0, 2, "7");
    tabs.Cell(Group("AGA11"), 1, 2, "of no row");
    tabs.Show(Group("AGA7"), {{"", "flow", ""}});
    EXPECT_EQ(grid.TabSeparated(), "\tname\tvalue\r\n\tflow\t\r\n\tsonic\t\r\n\tmass\t7\r\n");
    std::vector<std::pair<std::size_t, std::size_t>> chosen;
    QObject::connect(&tabs, &ParameterTabs::RowChosen, [&](auto group, auto row) { chosen.emplace_back(group, row); });
    for (int row = 0; row < 3; ++row) {
        grid.SelectRow(row);
        QTest::keyClick(&grid, Qt::Key_Return);
    }
    EXPECT_EQ(chosen, (std::vector<std::pair<std::size_t, std::size_t>>{
                          {Group("AGA7"), 0}, {Group("AGA9"), 0}, {Group("AGA11"), 0}}));
}

}  // namespace
