#include <gmock/gmock.h>

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLegendMarker>
#include <QLineSeries>
#include <QListWidget>
#include <QProgressBar>
#include <QRadioButton>
#include <QWheelEvent>

#include "archive/store/ArchiveStore.h"
#include "desk/archive/HistoryDrawing.h"
#include "desk/archive/frmHistory.h"
#include "desk/kit/Grid.h"
#include "support/ScreenDesk.h"

namespace {

using support::AltKey;
using support::Answer;
using support::Click;
using support::Focus;
using support::The;
using Texts = std::vector<std::string>;

struct HistoryScreenTest : testing::Test {
    support::ScreenDesk screen;  // on the 9th of March 2026

    HistoryScreenTest() {
        screen.dbconn.Execute(
            "insert into configdata_master(locationID, consumer, protocol, No_Stream) values(7,'O''Hara & <b>Sons</b>',"
            "'BSAP',2)");
    }

    // Hours from the beginning of the 9th on; PRESSURE lacks in every fourth of them.
    void Store(int hours, int streamno = 1) {
        archive::ArchiveDownload download{{"PRESSURE         ", "FLOW 'N'         "}, {}};
        const std::int64_t begin = core::ToSeconds({2026, 3, 9, 0, 0, 0});
        for (int hour = 0; hour < hours; ++hour) {
            const double nothing = std::nan("");
            download.records.push_back(
                {core::FromSeconds(begin + hour * 3600), 1, 1, {hour % 4 == 3 ? nothing : hour + 0.5, hour * 10.0}});
        }
        archive::SaveArchive(screen.dbconn, {7, streamno, archive::HistoryType(streamno, archive::ArchiveKind::Hourly)},
                             download);
    }

    desk::frmHistory& Open() { return screen.Open<desk::frmHistory>(7); }
};

// Captions and rows, cells separated by "|".
Texts Lines(const QWidget& page) {
    Texts lines;
    for (const QString& line : The<desk::Grid>(page, "Grid").TabSeparated().replace('\t', '|').split("\r\n")) {
        lines.push_back(line.toStdString());
    }
    lines.pop_back();
    return lines;
}

const std::string caption =
    "Date Time:                              |PRESSURE                |FLOW 'N'                ";

// The box at the end of a view, which is answered.
std::string End(const QWidget& page) {
    EXPECT_TRUE(QTest::qWaitFor([&page] { return support::Box(page) != nullptr; }));
    return Answer(page);
}

std::string Says(const QWidget& page) {
    return The<QLabel>(page, "lblmsg").text().toStdString();
}

desk::HistoryDrawing& Chart(const QWidget& page) {
    return The<desk::HistoryDrawing>(page, "chart");
}

// The drawn points of a column, its pieces separated by a comma: "0.5 1.5 2.5, 4.5".
std::string Drawn(const QWidget& page, const QString& name) {
    std::string text;
    for (const QAbstractSeries* one : Chart(page).chart()->series()) {
        if (const auto* line = qobject_cast<const QLineSeries*>(one); line != nullptr && line->name() == name) {
            text += text.empty() ? "" : ",";
            for (const QPointF& point : line->points()) {
                text += (text.empty() ? "" : " ") + QString::number(point.y()).toStdString();
            }
        }
    }
    return text;
}

TEST_F(HistoryScreenTest, ViewsAStreamByKeysAlone) {
    Store(3, 2);
    Store(6);
    auto& form = Open();
    EXPECT_EQ(form.windowTitle(), "History - v10.3");
    EXPECT_EQ(The<QLabel>(form, "lblconsumer").text(), "O'Hara & <b>Sons</b>");
    EXPECT_EQ(The<QComboBox>(form, "cmbStream").count(), 2);
    EXPECT_EQ(The<QDateEdit>(form, "DTPicker1").date(), QDate(2026, 3, 9));
    EXPECT_EQ(The<QDateEdit>(form, "DTPicker2").date(), QDate(2026, 3, 10));
    EXPECT_FALSE(The(form, "DTPicker1").isEnabled());
    EXPECT_FALSE(The(form, "cmdStop").isEnabled());
    AltKey(form, Qt::Key_V);
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form),
              (Texts{caption, "09/03/2026   0:0:0|0.5|0", "09/03/2026   1:0:0|1.5|10", "09/03/2026   2:0:0|2.5|20",
                     "09/03/2026   3:0:0|30|", "09/03/2026   4:0:0|4.5|40", "09/03/2026   5:0:0|5.5|50"}));
    EXPECT_EQ(Says(form), "6 records");
    EXPECT_EQ(Focus(form), "Grid");
    EXPECT_FALSE(The(form, "pgb").isVisible());

    AltKey(form, Qt::Key_N);
    QTest::keyClick(&The(form, "cmbStream"), Qt::Key_Down);
    AltKey(form, Qt::Key_V);
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form).size(), 4U);
    AltKey(form, Qt::Key_D);
    AltKey(form, Qt::Key_V);
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form), Texts{"Date Time:                              "});
    EXPECT_EQ(Says(form), "No record is stored for this choice.");
    EXPECT_EQ(Focus(form), "cmdView");

    auto& next = Open();
    QTest::keyClick(screen.window.focusWidget(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_NE(screen.window.Front(), &next);
}

TEST_F(HistoryScreenTest, EqualDatesMoveTheStartOnAndNothingIsFound) {
    Store(30);
    auto& form = Open();
    AltKey(form, Qt::Key_T);
    EXPECT_TRUE(The(form, "DTPicker1").isEnabled());
    Click(form, "cmdView");
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Says(form), "25 records");  // both midnights
    The<QDateEdit>(form, "DTPicker2").setDate({2026, 3, 9});
    Click(form, "cmdView");
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form), Texts{caption});
    EXPECT_EQ(The<QDateEdit>(form, "DTPicker1").date(), QDate(2026, 3, 10));
    AltKey(form, Qt::Key_A);
    EXPECT_FALSE(The(form, "DTPicker1").isEnabled());
}

TEST_F(HistoryScreenTest, AStationThatIsGoneHasNoStream) {
    screen.dbconn.Execute("delete from configdata_master");
    auto& form = Open();
    Click(form, "cmdView");
    EXPECT_EQ(Answer(form), "Select Stream ");
    EXPECT_EQ(Focus(form), "cmbStream");
    Click(form, "cmdExcel");
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(HistoryScreenTest, StopsInTheMiddleAndShowsWhatItHas) {
    Store(3000);
    auto& form = Open();
    Click(form, "cmdView");
    for (const char* command : {"cmdView", "cmdExcel", "cmdClose"}) {
        EXPECT_FALSE(The(form, command).isEnabled()) << command;
    }
    EXPECT_TRUE(The(form, "pgb").isVisible());
    const auto rows = [&form] { return The<desk::Grid>(form, "Grid").Rows(); };
    while (rows() == 0) {
        QCoreApplication::processEvents();
    }
    Click(form, "cmdStop");
    EXPECT_EQ(End(form), "Collected");
    EXPECT_GT(rows(), 0);
    EXPECT_LT(rows(), 3000);
    EXPECT_EQ(Says(form),
              QLocale(QLocale::English).toString(rows()).toStdString() + " of 3,000 records: not all are shown");
    EXPECT_FALSE(The(form, "cmdStop").isEnabled());
    EXPECT_TRUE(The(form, "cmdClose").isEnabled());
    // The next one is whole.
    Click(form, "cmdView");
    End(form);
    EXPECT_EQ(rows(), 3000);
}

TEST_F(HistoryScreenTest, AFailureInTheMiddleEndsTheView) {
    Store(1000);
    auto& form = Open();
    Click(form, "cmdView");
    screen.dbconn.Execute("alter table tArchiveData rename to gone");
    EXPECT_TRUE(QTest::qWaitFor([&form] { return The(form, "cmdView").isEnabled(); }));
    EXPECT_EQ(support::Box(form), nullptr);
    EXPECT_THAT(screen.RtuErr(), testing::HasSubstr("tArchiveData"));
}

TEST_F(HistoryScreenTest, DrawsTheChosenColumnsWithGaps) {
    Store(6);
    auto& form = Open();
    Click(form, "cmdView");
    End(form);
    EXPECT_EQ(Drawn(form, "PRESSURE"), "0.5 1.5 2.5, 4.5 5.5");
    EXPECT_EQ(Drawn(form, "FLOW 'N'"), "");
    AltKey(form, Qt::Key_U);
    auto& list = The<QListWidget>(form, "lstColumns");
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(Drawn(form, "FLOW 'N'"), "0 10 20 30 40 50");
    // One entry a column in the legend, and a scale each.
    QCoreApplication::processEvents();
    const auto markers = Chart(form).chart()->legend()->markers();
    EXPECT_EQ(std::count_if(markers.begin(), markers.end(), [](const auto* marker) { return marker->isVisible(); }), 2);
    EXPECT_EQ(Chart(form).chart()->axes(Qt::Vertical).size(), 2);
    // The choice stays for the next view.
    Click(form, "cmdView");
    End(form);
    EXPECT_EQ(Drawn(form, "FLOW 'N'"), "0 10 20 30 40 50");
}

TEST_F(HistoryScreenTest, ZoomsByKeysAndMouseAndBack) {
    Store(97);
    auto& form = Open();
    Click(form, "cmdView");
    End(form);
    desk::HistoryDrawing& chart = Chart(form);
    const auto hours = [&chart] { return (chart.Shown().to - chart.Shown().from) / 3600; };
    const double begin = chart.Shown().from;
    EXPECT_EQ(hours(), 96);
    AltKey(form, Qt::Key_I);
    EXPECT_EQ(hours(), 48);
    EXPECT_EQ(chart.Shown().from, begin + 24 * 3600);
    chart.setFocus();
    QTest::keyClick(&chart, Qt::Key_Plus);
    QTest::keyClick(&chart, Qt::Key_Left);
    EXPECT_EQ(hours(), 24);
    EXPECT_EQ(chart.Shown().from, begin + 30 * 3600);
    QTest::keyClick(&chart, Qt::Key_0);
    EXPECT_EQ(hours(), 96);
    QTest::keyClick(&chart, Qt::Key_Minus);
    EXPECT_EQ(hours(), 96);

    // A frame over the middle half.
    const auto at = [&chart](double part) {
        const QRectF plot = chart.chart()->plotArea();
        return QPoint(qRound(plot.left() + plot.width() * part), qRound(plot.center().y()));
    };
    QCoreApplication::processEvents();
    QTest::mousePress(chart.viewport(), Qt::LeftButton, {}, at(0.75));
    QTest::mouseMove(chart.viewport(), at(0.5));
    QTest::mouseRelease(chart.viewport(), Qt::LeftButton, {}, at(0.25));
    EXPECT_NEAR(hours(), 48, 1);
    EXPECT_NEAR((chart.Shown().from - begin) / 3600, 24, 1);
    QTest::mouseClick(chart.viewport(), Qt::LeftButton, {}, at(0.5));
    EXPECT_NEAR(hours(), 48, 1);
    QTest::mouseClick(chart.viewport(), Qt::RightButton, {}, at(0.5));
    EXPECT_NEAR(hours(), 96, 2);
    Click(form, "cmdWhole");
    QWheelEvent wheel(at(0.0), chart.viewport()->mapToGlobal(at(0.0)), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(chart.viewport(), &wheel);
    EXPECT_NEAR(hours(), 48, 1);
    EXPECT_NEAR((chart.Shown().from - begin) / 3600, 0, 1);
    // Never nearer than a minute, however often.
    for (int i = 0; i < 20; ++i) {
        chart.ZoomIn();
    }
    EXPECT_NEAR(hours() * 60, 1, 0.01);
}

TEST_F(HistoryScreenTest, SavesTheRowsAndThePicture) {
    Store(4);
    auto& form = Open();
    Click(form, "cmdView");
    End(form);
    const auto file = [this](const char* name) { return screen.shared.DatabasePath().parent_path() / name; };
    form.SaveExcel(QString::fromStdString(file("history.xls").string()));
    EXPECT_EQ(support::FileText(file("history.xls")),
              "Date Time:                              \tPRESSURE                \tFLOW 'N'                \t\r\n"
              "09/03/2026   0:0:0\t0.5\t0\t\r\n"
              "09/03/2026   1:0:0\t1.5\t10\t\r\n"
              "09/03/2026   2:0:0\t2.5\t20\t\r\n"
              "09/03/2026   3:0:0\t30\t\t\r\n");
    form.SavePng(QString::fromStdString(file("history.png").string()));
    EXPECT_TRUE(support::FileText(file("history.png")).starts_with("\x89PNG"));
    form.SaveExcel("/no/such/place/history.xls");
    EXPECT_THAT(Answer(form), testing::HasSubstr("/no/such/place/history.xls"));
    Click(form, "cmdExcel");
    ASSERT_NE(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(QApplication::activeModalWidget()->windowTitle(), "Save To Excel");
    QApplication::activeModalWidget()->close();
}

}  // namespace
