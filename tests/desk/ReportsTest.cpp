#include <gmock/gmock.h>

#include <QBarSeries>
#include <QBarSet>
#include <QComboBox>
#include <QDateEdit>
#include <QImage>
#include <QLineSeries>

#include "desk/reports/MonthDrawing.h"
#include "desk/reports/frmHistLog.h"
#include "desk/reports/frmchart.h"
#include "desk/reports/frmdialout.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using Texts = std::vector<std::string>;

struct ReportsTest : testing::Test {
    ScreenDesk screen;  // on the 9th of March 2026
};

// As an operator types a date: over the day, the rest follows.
void TypeDate(const QWidget& page, const char* name, const QString& date) {
    auto& field = The<QDateEdit>(page, name);
    field.setFocus();
    field.setSelectedSection(QDateTimeEdit::DaySection);
    QTest::keyClicks(&field, QString(date).remove('/'));
}

void Choose(const QWidget& page, const char* name, const QString& text) {
    QApplication::setKeyboardInputInterval(0);  // each key begins a new search
    auto& box = The<QComboBox>(page, name);
    box.setFocus();
    QTest::keyClicks(&box, text);
}

struct HistLogTest : ReportsTest {
    HistLogTest() {
        screen.dbconn.Execute(
            "insert into configdata_master(locationID, consumer) values(1,'O''Hara & <b>Sons</b>'),(2,'Bare')");
        screen.dbconn.Execute(
            "insert into configdata_detail(locationID, description, unit) values"
            "(1,'Volume <i>net</i>','SCM'),(1,'Volume <i>net</i>','SCM'),(1,'Door','')");
        screen.dbconn.Execute(
            "insert into LogParam(LocationId, date, \"desc\") values"
            "(1,'2026-03-07 08:00:00','#Volume <i>net</i>=7.12345678?SCM#Volume <i>net</i>=99#Door=OPEN'),"
            "(1,'2026-03-09 08:00:00','#Volume <i>net</i>=9'),(2,'2026-03-09 08:00:00','#Volume=9')");
    }
};

TEST_F(HistLogTest, SaysWhatIsWrongWithTheRange) {
    struct Case {
        QString from, to;
        const char* box;
        const char* focus;
    };
    auto& form = screen.Open<desk::frmHistLog>();
    const char* const properly = "Properly Choose Date From which To which you want to view log";
    for (const Case& c : {Case{"09/03/2026", "08/03/2026", properly, "DTPicker1"},
                          Case{"09/03/2026", "10/03/2026", "Log Do Not have the Data", "DTPicker2"},
                          Case{"11/03/2026", "10/03/2026", properly, "DTPicker1"},
                          Case{"01/02/2026", "28/02/2026", "No Record Found", "DTPicker1"},
                          Case{"09/03/2026", "09/03/2026", "", "cmbNode"}}) {
        TypeDate(form, "DTPicker1", c.from);
        TypeDate(form, "DTPicker2", c.to);
        Click(form, "cmdGo");
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus) << c.from.toStdString();
        EXPECT_EQ(Enabled(form, "cmdList"), *c.box == '\0') << c.from.toStdString();
    }
    // The columns stay those for which the stations were found.
    TypeDate(form, "DTPicker1", "07/03/2026");
    Click(form, "cmdList");
    EXPECT_EQ(Lines(form, "Grid")[0], "--|09/03/2026");
    EXPECT_EQ(Lines(form, "Grid")[1], "Volume <i>net</i>[SCM]|9");
}

TEST_F(HistLogTest, ListsAStationByKeysAlone) {
    auto& form = screen.Open<desk::frmHistLog>();
    EXPECT_EQ(Focus(form), "DTPicker1");
    EXPECT_FALSE(Seen(form, "cmbNode") || Enabled(form, "cmdList"));
    TypeDate(form, "DTPicker1", "07/03/2026");
    AltKey(form, Qt::Key_G);
    EXPECT_EQ(Focus(form), "cmbNode");
    EXPECT_TRUE(Seen(form, "Label3"));
    EXPECT_EQ(The<QComboBox>(form, "cmbNode").itemText(0), "1-O'Hara & <b>Sons</b>");
    EXPECT_EQ(Lines(form, "Grid"), Texts{"--|07/03/2026|08/03/2026|09/03/2026"});
    AltKey(form, Qt::Key_L);
    EXPECT_EQ(Lines(form, "Grid"),
              (Texts{"--|07/03/2026|08/03/2026|09/03/2026", "Volume <i>net</i>[SCM]|7.123457 SCM||9",
                     "Volume <i>net</i>[SCM]|7.123457 SCM||9", "Door|OPEN||"}));
    EXPECT_EQ(form.windowTitle().toStdString(), "History Log -- 1-O'Hara & <b>Sons</b> - v10.3");
    EXPECT_EQ(Focus(form), "Grid");
    AltKey(form, Qt::Key_R);
    EXPECT_EQ(Lines(form, "Grid"), Texts{"--"});
    EXPECT_FALSE(Seen(form, "cmbNode") || Enabled(form, "cmdList"));
    EXPECT_EQ(form.windowTitle(), "History Log -- No station - v10.3");
}

TEST_F(HistLogTest, AStationWithNothingShowsNothingOfAnother) {
    auto& form = screen.Open<desk::frmHistLog>();
    Click(form, "cmdGo");
    Click(form, "cmdList");
    Choose(form, "cmbNode", "2");
    EXPECT_EQ(Lines(form, "Grid"), Texts{"--|09/03/2026"});
    EXPECT_EQ(form.windowTitle().toStdString(), "History Log -- No station - v10.3");
    Click(form, "cmdList");
    EXPECT_EQ(Answer(form), "No Record For Selected Node");
    EXPECT_EQ(Focus(form), "cmbNode");
    // A failure of the database keeps what is shown.
    Choose(form, "cmbNode", "1");
    Click(form, "cmdList");
    const Texts before = Lines(form, "Grid");
    screen.dbconn.Execute("drop table LogParam");
    Click(form, "cmdList");
    Click(form, "cmdGo");
    EXPECT_EQ(Lines(form, "Grid"), before);
    EXPECT_THAT(screen.feedback.status.back(), testing::HasSubstr("LogParam"));
}

struct ChartTest : ReportsTest {
    ChartTest() {
        screen.dbconn.Execute("insert into configdata_master(locationID, consumer) values(7,'O''Hara & <b>Sons</b>')");
        screen.dbconn.Execute(
            "insert into LogParam(LocationId, date, CurrentDayFlow, CurrentMonthFlow, currentprs) values"
            "(7,'2025-03-04 08:00:00',44,1000.5,4),(7,'2026-03-02 08:00:00',20.5,1000.5,3.25),"
            "(7,'2026-03-05 08:00:00',50,1000.5,null)");
    }
};

std::vector<QPointF> Line(const QWidget& form, const QString& name) {
    for (QAbstractSeries* series : The<desk::MonthDrawing>(form, "chart").chart()->series()) {
        auto* line = qobject_cast<QLineSeries*>(series);
        if (line != nullptr && line->name() == name) {
            const QList<QPointF> points = line->points();
            return {points.begin(), points.end()};
        }
    }
    return {};
}

TEST_F(ChartTest, ChecksWhatIsChosen) {
    auto& form = screen.Open<desk::frmchart>();
    const char* const choose = "Should Select Month No. before generating Chart";
    struct Case {
        const char *station, *month, *command, *box, *focus;
    };
    for (const Case& c :
         {Case{"", "", "cmdLineChart", choose, "cmbLocId"}, Case{"7", "", "cmdLineChart", choose, "cmbMonth"},
          Case{"", "4", "cmdLineChart", "Selected month do not have any record", "cmbMonth"},
          Case{"", "3", "cmdBarChart", "", "cmdBarChart"},
          Case{"", "5", "cmdBarChart", "Selected month does not have any record", "cmbMonth"}}) {
        Choose(form, "cmbLocId", c.station);
        Choose(form, "cmbMonth", c.month);
        Click(form, c.command);
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus);
        // What stood there belongs to another choice.
        EXPECT_EQ(The<desk::MonthDrawing>(form, "chart").IsEmpty(), *c.box != '\0');
        EXPECT_EQ(Enabled(form, "cmdSavePng"), *c.box == '\0');
    }
}

TEST_F(ChartTest, DrawsTheNumbersOfTheNewestYear) {
    auto& form = screen.Open<desk::frmchart>();
    AltKey(form, Qt::Key_S);
    EXPECT_EQ(Focus(form), "cmbLocId");
    QTest::keyClick(&The(form, "cmbLocId"), Qt::Key_Down);
    AltKey(form, Qt::Key_M);
    QTest::keyClicks(&The(form, "cmbMonth"), "3");
    AltKey(form, Qt::Key_L);
    const std::vector<QPointF> pressure{{1, 3.25}};
    EXPECT_EQ(Line(form, "Day flow (SCM)"), (std::vector<QPointF>{{1, 20.5}, {4, 50}}));
    EXPECT_EQ(Line(form, "Flowing pressure (kg/cm2)"), pressure);
    EXPECT_EQ(The<desk::MonthDrawing>(form, "chart").chart()->title(),
              "7-O'Hara &amp; &lt;b&gt;Sons&lt;/b&gt;: March 2026");
    EXPECT_EQ(Text(form, "lblflow"), "Volume This Month on day 5: 1000.5 SCM");

    AltKey(form, Qt::Key_B);
    EXPECT_EQ(Line(form, "Flowing pressure (kg/cm2)"), pressure);
    const auto series = The<desk::MonthDrawing>(form, "chart").chart()->series();
    const auto* bars = qobject_cast<QBarSeries*>(series.front());
    ASSERT_NE(bars, nullptr);
    const QBarSet& flow = *bars->barSets().constFirst();
    EXPECT_EQ(flow.count(), 31);
    EXPECT_EQ(flow.at(1) + flow.at(2) + flow.at(4), 20.5 + 0 + 50);
}

TEST_F(ChartTest, SavesItsPicture) {
    auto& form = screen.Open<desk::frmchart>();
    Choose(form, "cmbLocId", "7");
    Choose(form, "cmbMonth", "3");
    Click(form, "cmdLineChart");
    AltKey(form, Qt::Key_P);
    const ScratchDirectory place;
    const std::string file = place.path / "march's <b>.png";
    EXPECT_EQ(PickFile(form, file), "PNG (*.png)");
    EXPECT_EQ(Box(form), nullptr);
    const QImage picture(QString::fromStdString(file));
    EXPECT_EQ(picture.size(), The(form, "chart").size() * form.devicePixelRatio());
    EXPECT_NE(picture, QImage(picture).scaled(1, 1).scaled(picture.size()));  // not one colour
    form.SavePng(QString::fromStdString(place.path / "none" / "x.png"));
    EXPECT_THAT(Answer(form), testing::HasSubstr(".png: "));
}

struct DialoutTest : ReportsTest {
    void Call(const core::Value& phone, const char* moment, bool acknowledged) {
        screen.dbconn.Execute("insert into dialout(Phone_Num, Date_Time, Ack) values(?,?,?)",
                              {phone, moment, acknowledged});
    }
};

TEST_F(DialoutTest, ListsAndAcknowledges) {
    Call(4170253, "2026-03-08 08:05:09", false);
    Call(4170253, "2026-03-07", true);
    Call(3508216, "2026-03-08", false);
    Call("<b>O'Hara</b>", "damaged", false);
    auto& form = screen.Open<desk::frmdialout>();
    const Texts before{"Phone number|Date|Acknowledged", "4170253|08/03/2026 08:05:09|False", "4170253|07/03/2026|True",
                       "3508216|08/03/2026|False", "<b>O'Hara</b>|damaged|False"};
    EXPECT_EQ(Lines(form, "gridAlarm"), before);
    EXPECT_EQ(Text(form, "lblscheduler"), "Calls: 4   Not acknowledged: 3");
    // A row that came from elsewhere meanwhile is there after the acknowledgement.
    Call(4170253, "2026-03-09", false);
    AltKey(form, Qt::Key_A);
    EXPECT_EQ(Lines(form, "gridAlarm"), (Texts{before[0], "4170253|08/03/2026 08:05:09|True", before[2],
                                               "3508216|08/03/2026|True", before[4], "4170253|09/03/2026|True"}));
    EXPECT_EQ(Text(form, "lblscheduler"), "Calls: 5   Not acknowledged: 1");
}

TEST_F(DialoutTest, AStandingAlarmIsNotedAtEveryRunOfTheTimer) {
    auto& form = screen.Open<desk::frmdialout>();
    EXPECT_TRUE(The<QTimer>(form, "Timer1").isActive());
    Fire(form, "Timer1");
    EXPECT_EQ(Lines(form, "gridAlarm").size(), 1U);
    form.Alarm(true);
    Fire(form, "Timer1");
    Fire(form, "Timer1");
    form.Alarm(false);
    Fire(form, "Timer1");
    EXPECT_EQ(Lines(form, "gridAlarm"),
              (Texts{"Phone number|Date|Acknowledged", "3508216|09/03/2026|False", "3508216|09/03/2026|False"}));
    form.Alarm(true);
    screen.dbconn.Execute("drop table dialout");
    Fire(form, "Timer1");
    EXPECT_THAT(screen.feedback.status.back(), testing::HasSubstr("dialout"));
}

}  // namespace
