#include <gmock/gmock.h>

#include <QDateEdit>
#include <QFileDialog>
#include <QPushButton>

#include "desk/collection/frmrpt.h"
#include "desk/kit/Grid.h"
#include "support/ScreenDesk.h"

using support::Answer;
using support::Click;
using support::FileText;
using support::The;

namespace {

struct DailyReportScreenTest : testing::Test {
    support::ScreenDesk desk;

    void Collect() {
        for (const demo::DemoStation& station : demo::OneOfEach("08:00")) {
            demo::AddStation(desk.dbconn, station);
        }
        desk.OpenField();
        desk.clock.Run(30000);
        desk.scheduler.Tick();
    }
    // Picks a file in the dialog over the form.
    static void Pick(const QWidget& form, const std::filesystem::path& file) {
        QCoreApplication::processEvents();
        auto& dialog = *form.findChild<QFileDialog*>();
        Q_EMIT dialog.fileSelected(QString::fromStdString(file.string()));
        dialog.reject();
        QCoreApplication::processEvents();
    }
};

TEST_F(DailyReportScreenTest, ShowsAndSavesTheReportOfTheDay) {
    Collect();
    auto& form = desk.Open<desk::frmrpt>();
    EXPECT_EQ(form.windowTitle(), "Daily Report  - v10.3");
    auto& date = The<QDateEdit>(form, "dtpicker");
    EXPECT_EQ(date.date(), QDate(2026, 3, 9));
    EXPECT_FALSE(The(form, "cmdsavertf").isEnabled());
    Click(form, "cmddaily");
    auto& grid = The<desk::Grid>(form, "Grid");
    ASSERT_EQ(grid.Rows(), 5);
    EXPECT_EQ(grid.TextMatrix(3, 0), "4");
    EXPECT_EQ(grid.TextMatrix(3, 1), "O'Brien's Works");
    EXPECT_EQ(grid.TextMatrix(0, 3), "24000.00");
    EXPECT_EQ(grid.TextMatrix(0, 9), "8.50");
    const auto logged = desk.dbconn.First("select * from LogParam where LocationId=1").value();
    const double monthflow = logged.Number("CurrentMonthFlow");
    EXPECT_GT(monthflow, 0);
    EXPECT_NEAR(grid.TextMatrix(0, 5).toDouble(), logged.Number("CurrentDayFlow"), 0.005);
    EXPECT_NEAR(grid.TextMatrix(0, 6).toDouble(), monthflow, 0.005);
    EXPECT_NEAR(grid.TextMatrix(0, 7).toDouble(), monthflow / 9, 0.005);  // on the ninth
    EXPECT_NEAR(grid.TextMatrix(0, 8).toDouble(), logged.Number("currentprs"), 0.005);

    EXPECT_THAT(grid.TextMatrix(0, 2).toStdString(), testing::HasSubstr(" by schedule"));

    // Another day: nothing of the one before stays, and what was not collected is no zero.
    date.setFocus();
    QTest::keyClick(&date, Qt::Key_Down);
    EXPECT_EQ(date.date(), QDate(2026, 3, 8));
    EXPECT_EQ(grid.Rows(), 0);
    EXPECT_FALSE(The(form, "cmdsavertf").isEnabled());
    Click(form, "cmddaily");
    EXPECT_EQ(grid.TextMatrix(0, 6), "no data");

    // Meanwhile the scheduled mail has made the report of today.
    desk.dbconn.Execute("update daily_rep set monthflow=777");
    const auto file = desk.shared.directory / "of the 8th.rtf";
    Click(form, "cmdsavertf");
    Pick(form, file);
    EXPECT_EQ(Answer(form), "Report saved");
    EXPECT_THAT(FileText(file), testing::AllOf(testing::HasSubstr("08/03/2026"), testing::HasSubstr("O'Brien's Works"),
                                               testing::Not(testing::HasSubstr("777"))));
}

TEST_F(DailyReportScreenTest, AFileIsReplacedWhenToldSoAndAFailureIsTold) {
    demo::AddStation(desk.dbconn, {"Mill", "TeleFlow", "Modbus", "RTU", 1, 1});
    auto& form = desk.Open<desk::frmrpt>();
    Click(form, "cmddaily");
    const auto file = desk.shared.directory / "report.rtf";
    std::ofstream(file) << "mine";
    Click(form, "cmdsavertf");
    Pick(form, file);
    EXPECT_THAT(Answer(form, QMessageBox::No), testing::HasSubstr("Replace it?"));
    EXPECT_EQ(FileText(file), "mine");
    Click(form, "cmdsavertf");
    Pick(form, file);
    Answer(form, QMessageBox::Yes);
    EXPECT_EQ(Answer(form), "Report saved");
    EXPECT_THAT(FileText(file), testing::StartsWith("{\\rtf1"));
    Click(form, "cmdsavertf");
    Pick(form, desk.shared.directory / "nowhere" / "report.rtf");
    EXPECT_THAT(Answer(form), testing::HasSubstr("No such file or directory"));
}

TEST_F(DailyReportScreenTest, AnEmptyRegisterIsTold) {
    auto& form = desk.Open<desk::frmrpt>();
    Click(form, "cmddaily");
    EXPECT_EQ(Answer(form), "No Data available");
    EXPECT_FALSE(The(form, "cmdsavertf").isEnabled());
}

}  // namespace
