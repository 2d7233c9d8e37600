#include <gmock/gmock.h>

#include <QComboBox>
#include <QDateEdit>
#include <QLineSeries>

#include "archive/store/ArchiveStore.h"
#include "desk/archive/HistoryDrawing.h"
#include "desk/archive/frmHistory.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using Texts = std::vector<std::string>;

struct HistoryScreenTest : testing::Test {
    ScreenDesk screen;  // on the 9th of March 2026

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

Texts Lines(const QWidget& page) {
    return support::Lines(page, "Grid");
}

const std::string caption =
    "Date Time:                              |PRESSURE                |FLOW 'N'                ";

// The box at the end of a view, which is answered.
std::string End(const QWidget& page) {
    EXPECT_TRUE(QTest::qWaitFor([&page] { return Box(page) != nullptr; }));
    return Answer(page);
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
    EXPECT_EQ(Text(form, "lblconsumer"), "O'Hara & <b>Sons</b>");
    EXPECT_EQ(The<QComboBox>(form, "cmbStream").count(), 2);
    EXPECT_EQ(Usable(form, {"DTPicker1", "cmdStop", "cmdView"}), "cmdView ");
    AltKey(form, Qt::Key_V);
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form),
              (Texts{caption, "09/03/2026   0:0:0|0.5|0", "09/03/2026   1:0:0|1.5|10", "09/03/2026   2:0:0|2.5|20",
                     "09/03/2026   3:0:0|30|", "09/03/2026   4:0:0|4.5|40", "09/03/2026   5:0:0|5.5|50"}));
    EXPECT_EQ(Text(form, "lblmsg"), "6 records");
    EXPECT_EQ(Focus(form), "Grid");
    const auto file = screen.shared.directory / "history.xls";
    form.SaveExcel(QString::fromStdString(file.string()));
    std::string shown;
    for (const std::string& line : Lines(form)) {
        shown += line + "|\r\n";
    }
    std::replace(shown.begin(), shown.end(), '|', '\t');
    EXPECT_EQ(FileText(file), shown);
    form.SaveExcel("/no/such/place/history.xls");
    EXPECT_THAT(Answer(form), testing::HasSubstr("/no/such/place/history.xls"));

    AltKey(form, Qt::Key_N);
    QTest::keyClick(&The(form, "cmbStream"), Qt::Key_Down);
    AltKey(form, Qt::Key_V);
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form).size(), 4U);
    AltKey(form, Qt::Key_D);
    AltKey(form, Qt::Key_V);
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Lines(form), Texts{"Date Time:                              "});
    EXPECT_EQ(Text(form, "lblmsg"), "No record is stored for this choice.");
    EXPECT_EQ(Focus(form), "cmdView");
}

TEST_F(HistoryScreenTest, ARangeOfDatesIsChosen) {
    Store(30);
    auto& form = Open();
    AltKey(form, Qt::Key_T);
    EXPECT_TRUE(Enabled(form, "DTPicker1"));
    Click(form, "cmdView");
    EXPECT_EQ(End(form), "Collected");
    EXPECT_EQ(Text(form, "lblmsg"), "25 records");  // both midnights
    AltKey(form, Qt::Key_A);
    EXPECT_FALSE(Enabled(form, "DTPicker1"));
}

TEST_F(HistoryScreenTest, StopsInTheMiddleAndShowsWhatItHas) {
    Store(3000);
    auto& form = Open();
    const auto rows = [&form] { return Rows(form, "Grid"); };
    const std::vector<const char*> commands{"cmdView", "cmdStop", "cmdExcel", "cmdClose"};
    Click(form, "cmdView");
    EXPECT_EQ(Usable(form, commands), "cmdStop ");
    EXPECT_TRUE(Seen(form, "pgb"));
    while (rows() == 0) {
        QCoreApplication::processEvents();
    }
    Click(form, "cmdStop");
    EXPECT_EQ(End(form), "Collected");
    EXPECT_LT(rows(), 3000);
    EXPECT_EQ(Text(form, "lblmsg"),
              QLocale(QLocale::English).toString(rows()).toStdString() + " of 3,000 records: not all are shown");
    EXPECT_EQ(Usable(form, commands), "cmdView cmdExcel cmdClose ");
    EXPECT_FALSE(Seen(form, "pgb"));
    // A failure of the database in the middle ends the view.
    Click(form, "cmdView");
    screen.dbconn.Execute("alter table tArchiveData rename to gone");
    EXPECT_TRUE(QTest::qWaitFor([&form] { return Enabled(form, "cmdView"); }));
    EXPECT_EQ(Box(form), nullptr);
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
    Key(form, Qt::Key_Down);
    Key(form, Qt::Key_Space);
    EXPECT_EQ(Drawn(form, "FLOW 'N'"), "0 10 20 30 40 50");
    EXPECT_EQ(Chart(form).chart()->axes(Qt::Vertical).size(), 2) << "a scale each";
    // The choice stays for the next view.
    Click(form, "cmdView");
    End(form);
    EXPECT_EQ(Drawn(form, "FLOW 'N'"), "0 10 20 30 40 50");
    // A key shows half of the time.
    const auto shown = [&form] { return Chart(form).Shown().to - Chart(form).Shown().from; };
    const double whole = shown();
    AltKey(form, Qt::Key_I);
    EXPECT_EQ(shown(), whole / 2);
    const auto file = screen.shared.directory / "history.png";
    form.SavePng(QString::fromStdString(file.string()));
    EXPECT_TRUE(FileText(file).starts_with("\x89PNG"));
}

}  // namespace
