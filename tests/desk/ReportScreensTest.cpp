#include <gmock/gmock.h>

#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QDateEdit>
#include <QImage>
#include <QLabel>
#include <QLineSeries>

#include "desk/core/Grid.h"
#include "desk/reports/frmHistLog.h"
#include "desk/reports/frmchart.h"
#include "desk/reports/frmdialout.h"
#include "support/ScreenDesk.h"

using support::Answer;
using support::Click;
using support::The;

namespace {

struct ReportScreens : testing::Test {
    support::ScreenDesk desk;  // on 09/03/2026
    std::int64_t mill = demo::AddStation(desk.dbconn, {"Mill & <b>Sons</b>", "TeleFlow", "Modbus", "RTU"});

    void Log(const char* date, double flow, double pressure, const char* text) {
        desk.dbconn.Execute(
            "insert into LogParam(LocationId, date, \"desc\", CurrentDayFlow, currentprs) values(?,?,?,?,?)",
            {mill, date, text, flow, pressure});
    }
};

TEST_F(ReportScreens, TheHistoryLogShowsAStationDayByDay) {
    Log("2026-03-08 08:01:00", 900, 18, "#Flowing Pressure=18.25?kg/cm2");
    auto& form = desk.Open<::desk::frmHistLog>();
    EXPECT_EQ(form.windowTitle(), "History Log --  - v10.3");
    EXPECT_FALSE(The(form, "cmbNode").isVisible());
    EXPECT_FALSE(The(form, "cmdList").isEnabled());
    The<QDateEdit>(form, "DTPicker1").setDate({2026, 3, 8});
    Click(form, "cmdGo");
    EXPECT_TRUE(The(form, "Label3").isVisible());
    EXPECT_EQ(The<QComboBox>(form, "cmbNode").currentText(), "1-Mill & <b>Sons</b>");
    Click(form, "cmdList");
    EXPECT_EQ(form.windowTitle(), "History Log -- 1-Mill & <b>Sons</b> - v10.3");
    auto& grid = The<::desk::Grid>(form, "Grid");
    EXPECT_THAT(grid.TabSeparated().toStdString(), testing::StartsWith("--\t08/03/2026\t09/03/2026\r\n"));
    EXPECT_THAT(grid.TabSeparated().toStdString(),
                testing::HasSubstr("\r\nFlowing Pressure[kg/cm2]\t18.25 kg/cm2\t\r\n"));
    Click(form, "cmdReset");
    EXPECT_FALSE(The(form, "cmbNode").isVisible());
    EXPECT_EQ(grid.Rows(), 0);
    EXPECT_EQ(The<QDateEdit>(form, "DTPicker1").date(), QDate(2026, 3, 9));
}

TEST_F(ReportScreens, TheHistoryLogSaysWhatIsWrong) {
    struct Case {
        QDate from, to;
        const char* message;
    };
    auto& form = desk.Open<::desk::frmHistLog>();
    for (const Case& c :
         {Case{{2026, 3, 9}, {2026, 3, 8}, "Properly Choose Date From which To which you want to view log"},
          Case{{2026, 3, 9}, {2026, 3, 10}, "Log Do Not have the Data"},
          Case{{2026, 3, 9}, {2026, 3, 9}, "No Record Found"}}) {
        The<QDateEdit>(form, "DTPicker1").setDate(c.from);
        The<QDateEdit>(form, "DTPicker2").setDate(c.to);
        Click(form, "cmdGo");
        EXPECT_EQ(Answer(form), c.message);
        EXPECT_FALSE(The(form, "cmdList").isEnabled());
    }
    The<QDateEdit>(form, "DTPicker2").setDate({2026, 3, 9});
    Log("2026-03-08 08:01:00", 900, 18, "");  // a day beside the range: the station is found, the range is empty
    Click(form, "cmdGo");
    Click(form, "cmdList");
    EXPECT_EQ(Answer(form), "No Record For Selected Node");
}

// What the chart in front draws: the flow of each day from 1, and the pressure's points.
std::vector<QPointF> LinePoints(const QWidget& form, const char* name) {
    for (QAbstractSeries* series : The<QChartView>(form, "chart").chart()->series()) {
        if (auto* line = qobject_cast<QLineSeries*>(series); line != nullptr && line->name().startsWith(name)) {
            const QList<QPointF> points = line->points();
            return {points.begin(), points.end()};
        }
    }
    return {};
}

TEST_F(ReportScreens, TheChartDrawsTheFiguresOfTheMonth) {
    Log("2026-03-02 08:01:00", 900, 18, "");
    Log("2026-03-09 08:01:00", 1100.5, 17.5, "");
    auto& form = desk.Open<::desk::frmchart>();
    EXPECT_FALSE(The(form, "cmdSavePng").isEnabled());
    The<QComboBox>(form, "cmbLocId").setCurrentIndex(0);
    The<QComboBox>(form, "cmbMonth").setCurrentText("3");
    Click(form, "cmdLineChart");
    EXPECT_EQ(LinePoints(form, "Day flow"), (std::vector<QPointF>{{1, 900}, {8, 1100.5}}));
    EXPECT_EQ(LinePoints(form, "Pressure"), (std::vector<QPointF>{{1, 18}, {8, 17.5}}));
    Click(form, "cmdBarChart");
    auto* bars = qobject_cast<QBarSeries*>(The<QChartView>(form, "chart").chart()->series().front());
    ASSERT_NE(bars, nullptr);
    EXPECT_EQ(bars->barSets().front()->count(), 31);
    EXPECT_EQ(bars->barSets().front()->at(8), 1100.5);
    EXPECT_EQ(LinePoints(form, "Pressure").size(), 2U);

    const QString file = QString::fromStdString((desk.shared.directory / "month.png").string());
    EXPECT_TRUE(form.SavePicture(file));
    EXPECT_FALSE(QImage(file).isNull());
    EXPECT_FALSE(form.SavePicture("/nowhere/month.png"));
}

TEST_F(ReportScreens, TheChartSaysWhatIsMissingEachFormInItsWords) {
    auto& form = desk.Open<::desk::frmchart>();
    const char* choose = "Should Select Month No. before generating Chart";
    Click(form, "cmdLineChart");
    EXPECT_EQ(Answer(form), choose);
    The<QComboBox>(form, "cmbLocId").setCurrentIndex(0);
    Click(form, "cmdBarChart");
    EXPECT_EQ(Answer(form), choose);
    The<QComboBox>(form, "cmbMonth").setCurrentText("4");
    Click(form, "cmdLineChart");
    EXPECT_EQ(Answer(form), "Selected month do not have any record");
    Click(form, "cmdBarChart");
    EXPECT_EQ(Answer(form), "Selected month does not have any record");
}

TEST_F(ReportScreens, AlarmCallsComeInWhileTheFlagIsSetAndAreAcknowledged) {
    desk.dbconn.Execute("insert into dialout(Phone_Num, Date_Time, Ack) values(4170253, '2026-03-08', false)");
    auto& form = desk.Open<::desk::frmdialout>();
    auto& grid = The<::desk::Grid>(form, "gridAlarm");
    form.Timer1();
    EXPECT_EQ(grid.Rows(), 1);
    form.AlarmFlag(true);
    form.Timer1();
    EXPECT_EQ(grid.Rows(), 2);
    Click(form, "cmdackalarm");
    EXPECT_EQ(grid.TextMatrix(0, 2), "True");
    EXPECT_EQ(grid.TextMatrix(1, 0), "3508216");
    EXPECT_EQ(grid.TextMatrix(1, 2), "False");
    EXPECT_EQ(The<QLabel>(form, "lblscheduler").text(), "2 calls, 1 not acknowledged");
}

}  // namespace
