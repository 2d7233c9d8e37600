#include <gmock/gmock.h>

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

#include "desk/collection/frmScheduler.h"
#include "desk/collection/frm_Sch_Data.h"
#include "desk/kit/Grid.h"
#include "support/OddDevices.h"
#include "support/ScreenDesk.h"

using support::Answer;
using support::Click;
using support::Focus;
using support::The;

namespace {

// A night behind the desk: every station is collected from the simulated field but the last, which is silent.
struct ScheduleScreensTest : testing::Test {
    support::Silence silence;
    support::ScreenDesk desk;

    void Collect() {
        int last = 0;
        for (const demo::DemoStation& station : demo::OneOfEach("08:00")) {
            demo::AddStation(desk.dbconn, station);
            last = station.port;
        }
        desk.OpenField();
        desk.ports.Attach(last, silence);
        desk.clock.Run(30000);
        desk.scheduler.Tick();
    }

    std::vector<std::filesystem::path> opened;
    bool opens = true;
    desk::frm_Sch_Data::Opener opener = [this](const std::filesystem::path& document) {
        opened.push_back(document);
        return opens;
    };
};

TEST_F(ScheduleScreensTest, TheScheduleIsThatOfItsOpening) {
    Collect();
    auto& form = desk.Open<desk::frmScheduler>();
    EXPECT_EQ(form.windowTitle(), "Scheduler Task - v10.3");
    const auto& grid = The<desk::Grid>(form, "Grid");
    ASSERT_EQ(grid.Rows(), 5);
    EXPECT_EQ(grid.TextMatrix(3, 0), "O'Brien's Works");
    for (int row = 0; row < 5; ++row) {
        EXPECT_EQ(grid.TextMatrix(row, 1), "08:00");
        EXPECT_EQ(grid.TextMatrix(row, 2), row < 4 ? "Yes" : "No") << row;
    }
    const auto outcome = [&grid](int row) {
        QStringList cells;
        for (int column = 3; column < grid.Columns(); ++column) {
            cells << grid.TextMatrix(row, column);
        }
        return cells.join('|').toStdString();
    };
    EXPECT_THAT(outcome(0), testing::MatchesRegex("collected\\|08:0.\\|schedule\\|"));
    EXPECT_THAT(outcome(4), testing::MatchesRegex("no answer\\|08:0.\\|schedule\\|The unit does not answer; .+"));
    desk.dbconn.Execute("update configdata_master set sampledtoday=true");
    desk.clock.Run(120000);
    EXPECT_EQ(grid.TextMatrix(4, 2), "No");
    EXPECT_FALSE(The(form, "cmdCollect").isEnabled()) << "without the right to data";
    EXPECT_EQ(Focus(form), "Grid");
    QSignalSpy closed(&form, &desk::Page::Closed);
    QTest::keyClick(form.focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(ScheduleScreensTest, AnOperatorCollectsFromHere) {
    Collect();
    desk.OpenField();  // the silent one answers now
    desk.shared.rights.rightOnline = true;
    auto& form = desk.Open<desk::frmScheduler>();
    auto& grid = The<desk::Grid>(form, "Grid");
    const auto follow = [&form] { QMetaObject::invokeMethod(&The<QTimer>(form, "tmrfollow"), "timeout"); };
    desk.clock.After(1000, [&] {
        follow();
        EXPECT_EQ(grid.TextMatrix(4, 3), "collecting");
    });
    Click(form, "cmdMissing");
    follow();
    EXPECT_EQ(grid.TextMatrix(4, 2), "Yes");
    EXPECT_EQ(grid.TextMatrix(4, 3) + grid.TextMatrix(4, 5), "collectedhand");
    EXPECT_EQ(grid.TextMatrix(0, 5), "schedule");
    grid.SelectRow(0);
    QTest::keyClick(&grid, Qt::Key_F5);
    QCoreApplication::processEvents();
    follow();
    EXPECT_EQ(grid.TextMatrix(0, 5), "hand");
}

TEST_F(ScheduleScreensTest, AWorkbookIsPickedByStationAndDay) {
    Collect();
    for (const char* const date : {"31/12/2025", "1/3/2026", "yesterday"}) {
        desk.dbconn.Execute("insert into Scheduler values(?,'08:00:00',?,'')", {date, "O'Brien's Works"});
    }
    auto& form = desk.Open<desk::frm_Sch_Data>(opener);
    EXPECT_EQ(form.windowTitle(), "Scheduler - v10.3");
    EXPECT_EQ(Focus(form), "cmb_rtu");
    auto& stations = The<QComboBox>(form, "cmb_rtu");
    auto& dates = The<QComboBox>(form, "cmb_date");
    EXPECT_EQ(stations.count(), 4);  // the silent one was never collected
    EXPECT_FALSE(The(form, "cmd_open").isEnabled());
    while (stations.currentText() != "O'Brien's Works") {
        const int before = stations.currentIndex();
        QTest::keyClick(&stations, Qt::Key_Down);
        ASSERT_NE(stations.currentIndex(), before);
    }
    QStringList offered;
    for (int i = 0; i < dates.count(); ++i) {
        offered << dates.itemText(i);
    }
    EXPECT_EQ(offered, QStringList({"09/03/2026", "1/3/2026", "31/12/2025", "yesterday"}));
    Click(form, "cmd_open");
    EXPECT_THAT(opened, testing::ElementsAre(desk.shared.schedulerDirectory / "O'Brien's Works_932026.xls"));
    EXPECT_EQ(support::Box(form), nullptr);
    opens = false;
    Click(form, "cmd_open");
    EXPECT_THAT(Answer(form), testing::HasSubstr("O'Brien's Works_932026.xls"));
    dates.setCurrentIndex(1);
    Click(form, "cmd_open");
    EXPECT_EQ(Answer(form), "File Not Found");
    dates.setCurrentIndex(3);
    Click(form, "cmd_open");
    EXPECT_EQ(Answer(form), "\"yesterday\" is no date, so its workbook cannot be found.");
    EXPECT_EQ(Focus(form), "cmb_date");
    EXPECT_EQ(opened.size(), 2U);
}

TEST_F(ScheduleScreensTest, BeforeTheFirstCollectionThereIsNothingToPick) {
    auto& form = desk.Open<desk::frm_Sch_Data>(opener);
    EXPECT_EQ(Answer(form), "Scheduler Data not found");
    EXPECT_EQ(Focus(form), "cmd_Close");
    EXPECT_FALSE(The(form, "cmd_open").isEnabled());
}

}  // namespace
