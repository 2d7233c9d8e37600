#include <gmock/gmock.h>
#include <sys/resource.h>

#include <QBarSeries>
#include <QBarSet>
#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <csignal>

#include "desk/kit/FirstColumn.h"
#include "desk/kit/Grid.h"
#include "desk/reports/MonthDrawing.h"
#include "desk/reports/frmHistLog.h"
#include "desk/reports/frmchart.h"
#include "desk/reports/frmdialout.h"
#include "support/ScreenDesk.h"

namespace {

using support::AltKey;
using support::Answer;
using support::Box;
using support::Click;
using support::Focus;
using support::The;
using Texts = std::vector<std::string>;

struct ReportsTest : testing::Test {
    support::ScreenDesk screen;  // on the 9th of March 2026

    void Station(std::int64_t locationID, const std::string& consumer) {
        screen.dbconn.Execute("insert into configdata_master(locationID, consumer) values(?,?)",
                              {locationID, consumer});
    }
    void Parameter(std::int64_t locationID, const std::string& description, const std::string& unit) {
        screen.dbconn.Execute("insert into configdata_detail(locationID, description, unit) values(?,?,?)",
                              {locationID, description, unit});
    }
    void Log(std::int64_t locationID, const std::string& date, const core::Value& desc) {
        screen.dbconn.Execute("insert into LogParam(LocationId, date, \"desc\") values(?,?,?)",
                              {locationID, date, desc});
    }
    void Figures(std::int64_t locationID, const std::string& date, const core::Value& flow,
                 const core::Value& pressure) {
        screen.dbconn.Execute(
            "insert into LogParam(LocationId, date, CurrentDayFlow, CurrentMonthFlow, currentprs) values(?,?,?,?,?)",
            {locationID, date, flow, 1000.5, pressure});
    }
};

// Captions and rows of a grid, cells separated by "|".
Texts Lines(const QWidget& page, const char* name) {
    Texts lines;
    const QString text = The<desk::Grid>(page, name).TabSeparated().replace('\t', '|');
    for (const QString& line : text.split("\r\n", Qt::SkipEmptyParts)) {
        lines.push_back(line.toStdString());
    }
    return lines;
}

std::string Caption(const QWidget& page) {
    return page.windowTitle().toStdString();
}

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
        Station(1, "O'Hara & <b>Sons</b>");
        Station(2, "Bare");
        Parameter(1, "Volume <i>net</i>", "SCM");
        Parameter(1, "Volume <i>net</i>", "SCM");
        Parameter(1, "Door", "");
        Log(1, "2026-03-07 08:00:00", "#Volume <i>net</i>=7.12345678?SCM#Volume <i>net</i>=99#Door=OPEN");
        Log(1, "2026-03-09 08:00:00", "#Volume <i>net</i>=9");
        Log(2, "2026-03-09 08:00:00", "#Volume=9");
    }
};

TEST_F(HistLogTest, SaysWhatIsWrongWithTheRange) {
    struct Case {
        QString from, to;
        const char* box;
        const char* focus;
    };
    auto& form = screen.Open<desk::frmHistLog>();
    for (const Case& c :
         {Case{"09/03/2026", "08/03/2026", "Properly Choose Date From which To which you want to view log",
               "DTPicker1"},
          Case{"09/03/2026", "10/03/2026", "Log Do Not have the Data", "DTPicker2"},
          Case{"11/03/2026", "10/03/2026", "Properly Choose Date From which To which you want to view log",
               "DTPicker1"},
          Case{"01/02/2026", "28/02/2026", "No Record Found", "DTPicker1"},
          Case{"01/01/2000", "09/03/2026", "", "cmbNode"}, Case{"09/03/2026", "09/03/2026", "", "cmbNode"}}) {
        TypeDate(form, "DTPicker1", c.from);
        TypeDate(form, "DTPicker2", c.to);
        Click(form, "cmdGo");
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus) << c.from.toStdString();
        EXPECT_EQ(The(form, "cmdList").isEnabled(), *c.box == '\0') << c.from.toStdString();
    }
}

TEST_F(HistLogTest, ListsAStationByKeysAlone) {
    auto& form = screen.Open<desk::frmHistLog>();
    EXPECT_EQ(Focus(form), "DTPicker1");
    EXPECT_EQ(Caption(form), "History Log -- No station - v10.3");
    EXPECT_FALSE(The(form, "cmbNode").isVisible());
    EXPECT_FALSE(The(form, "cmdList").isEnabled());
    TypeDate(form, "DTPicker1", "07/03/2026");
    AltKey(form, Qt::Key_G);
    EXPECT_EQ(Focus(form), "cmbNode");
    EXPECT_TRUE(The(form, "Label3").isVisible());
    EXPECT_EQ(The<QComboBox>(form, "cmbNode").itemText(0), "1-O'Hara & <b>Sons</b>");
    EXPECT_EQ(Lines(form, "Grid"), Texts{"--|07/03/2026|08/03/2026|09/03/2026"});
    AltKey(form, Qt::Key_L);
    EXPECT_EQ(Lines(form, "Grid"),
              (Texts{"--|07/03/2026|08/03/2026|09/03/2026", "Volume <i>net</i>[SCM]|7.123457 SCM||9",
                     "Volume <i>net</i>[SCM]|7.123457 SCM||9", "Door|OPEN||"}));
    EXPECT_EQ(Caption(form), "History Log -- 1-O'Hara & <b>Sons</b> - v10.3");
    EXPECT_EQ(Focus(form), "Grid");
    AltKey(form, Qt::Key_R);
    EXPECT_EQ(Lines(form, "Grid"), Texts{"--"});
    EXPECT_EQ(The<QDateEdit>(form, "DTPicker1").date(), QDate(2026, 3, 9));
    EXPECT_FALSE(The(form, "cmbNode").isVisible());
    EXPECT_FALSE(The(form, "Label3").isVisible());
    EXPECT_FALSE(The(form, "cmdList").isEnabled());
    EXPECT_EQ(Caption(form), "History Log -- No station - v10.3");
    auto& before = form;
    auto& next = screen.Open<desk::frmHistLog>();
    QTest::keyClick(screen.window.focusWidget(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_NE(screen.window.Front(), &next);
    EXPECT_EQ(screen.window.Front(), &before);
}

TEST_F(HistLogTest, TheColumnsStayThoseForWhichTheStationsWereFound) {
    auto& form = screen.Open<desk::frmHistLog>();
    Click(form, "cmdGo");
    TypeDate(form, "DTPicker1", "07/03/2026");
    Click(form, "cmdList");
    EXPECT_THAT(Lines(form, "Grid"), testing::Contains("Volume <i>net</i>[SCM]|9"));
    EXPECT_EQ(Lines(form, "Grid")[0], "--|09/03/2026");
}

TEST_F(HistLogTest, AStationWithNothingShowsNothingOfAnother) {
    auto& form = screen.Open<desk::frmHistLog>();
    Click(form, "cmdGo");
    Click(form, "cmdList");
    Choose(form, "cmbNode", "2");
    EXPECT_EQ(Lines(form, "Grid"), Texts{"--|09/03/2026"});
    EXPECT_EQ(Caption(form), "History Log -- No station - v10.3");
    Click(form, "cmdList");
    EXPECT_EQ(Answer(form), "No Record For Selected Node");
    EXPECT_EQ(Focus(form), "cmbNode");
    // Found by the day around the range, but without a row in it.
    TypeDate(form, "DTPicker1", "08/03/2026");
    TypeDate(form, "DTPicker2", "08/03/2026");
    Click(form, "cmdGo");
    Click(form, "cmdList");
    EXPECT_EQ(Answer(form), "No Record For Selected Node");
}

TEST_F(HistLogTest, AFailureOfTheDatabaseKeepsWhatIsShown) {
    auto& form = screen.Open<desk::frmHistLog>();
    Click(form, "cmdGo");
    Click(form, "cmdList");
    const Texts before = Lines(form, "Grid");
    screen.dbconn.Execute("drop table LogParam");
    Click(form, "cmdList");
    Click(form, "cmdGo");
    EXPECT_EQ(Lines(form, "Grid"), before);
    EXPECT_THAT(screen.feedback.status.back(), testing::HasSubstr("LogParam"));
}

TEST_F(HistLogTest, TheParametersStayInSight) {
    for (int n = 0; n < 60; ++n) {
        Parameter(1, "Parameter " + std::to_string(n), "");
    }
    auto& form = screen.Open<desk::frmHistLog>();
    TypeDate(form, "DTPicker1", "01/01/2026");
    Click(form, "cmdGo");
    Click(form, "cmdList");
    auto& grid = The<desk::Grid>(form, "Grid");
    auto* first = grid.findChild<desk::FirstColumn*>();
    QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
    grid.horizontalScrollBar()->setValue(grid.horizontalScrollBar()->maximum());
    ASSERT_LT(grid.columnViewportPosition(0), 0);
    ASSERT_GT(grid.verticalScrollBar()->value(), 0);
    const QPoint spot(20, first->viewport()->height() / 2);
    EXPECT_EQ(first->columnAt(spot.x()), 0);
    EXPECT_EQ(first->rowAt(spot.y()), grid.rowAt(spot.y()));
    EXPECT_EQ(first->width(), grid.columnWidth(0));
    QTest::mouseClick(first->viewport(), Qt::LeftButton, Qt::NoModifier, spot);
    EXPECT_EQ(grid.Row(), grid.rowAt(spot.y()));
}

struct ChartTest : ReportsTest {
    ChartTest() {
        Station(7, "O'Hara & <b>Sons</b>");
        Figures(7, "2025-03-04 08:00:00", 44.0, 4.0);
        Figures(7, "2026-03-02 08:00:00", 20.5, 3.25);
        Figures(7, "2026-03-05 08:00:00", 50.0, {});
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
         {Case{"", "", "cmdLineChart", choose, "cmbLocId"}, Case{"", "", "cmdBarChart", choose, "cmbLocId"},
          Case{"7", "", "cmdLineChart", choose, "cmbMonth"},
          Case{"", "4", "cmdLineChart", "Selected month do not have any record", "cmbMonth"},
          Case{"", "", "cmdBarChart", "Selected month does not have any record", "cmbMonth"},
          Case{"", "3", "cmdBarChart", "", "cmdBarChart"},
          Case{"", "5", "cmdBarChart", "Selected month does not have any record", "cmbMonth"}}) {
        Choose(form, "cmbLocId", c.station);
        Choose(form, "cmbMonth", c.month);
        Click(form, c.command);
        EXPECT_EQ(Answer(form), c.box);
        EXPECT_EQ(Focus(form), c.focus);
        // What stood there belongs to another choice.
        EXPECT_EQ(The<desk::MonthDrawing>(form, "chart").IsEmpty(), *c.box != '\0');
        EXPECT_EQ(The(form, "cmdSavePng").isEnabled(), *c.box == '\0');
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
    EXPECT_EQ(The<QLabel>(form, "lblflow").text(), "Volume This Month on day 5: 1000.5 SCM");

    AltKey(form, Qt::Key_B);
    EXPECT_EQ(Line(form, "Flowing pressure (kg/cm2)"), pressure);
    const auto series = The<desk::MonthDrawing>(form, "chart").chart()->series();
    const auto* bars = qobject_cast<QBarSeries*>(series.front());
    ASSERT_NE(bars, nullptr);
    const QBarSet& flow = *bars->barSets().constFirst();
    ASSERT_EQ(flow.count(), 31);
    for (int day = 1; day <= 31; ++day) {
        EXPECT_EQ(flow.at(day - 1), day == 2 ? 20.5 : day == 5 ? 50 : 0) << day;
    }
}

TEST_F(ChartTest, DrawsExtremes) {
    for (const auto& [flow, pressure] :
         {std::pair{0.0, 0.0}, {-5.0, -1.0}, {3.4e38, -3.4e38}, {1e-30, 1e-30}, {1.7e308, -1.7e308}}) {
        screen.dbconn.Execute("update LogParam set CurrentDayFlow=?, currentprs=?", {flow, pressure});
        auto& form = screen.Open<desk::frmchart>();
        Choose(form, "cmbLocId", "7");
        Choose(form, "cmbMonth", "3");
        for (const char* command : {"cmdLineChart", "cmdBarChart"}) {
            Click(form, command);
            EXPECT_EQ(Line(form, "Flowing pressure (kg/cm2)").front().y(), pressure);
            EXPECT_FALSE(form.grab().isNull());
        }
    }
}

// No file of this process grows beyond a hundred bytes: a disk that is full, without touching one.
class SmallDisk {
  public:
    SmallDisk() : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{100, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

  private:
    rlimit before_{};
    void (*signal_)(int);
};

TEST_F(ChartTest, SavesItsPicture) {
    auto& form = screen.Open<desk::frmchart>();
    Choose(form, "cmbLocId", "7");
    Choose(form, "cmbMonth", "3");
    Click(form, "cmdLineChart");
    const support::ScratchDirectory place;
    const std::string file = place.path / "march's <b>.png";
    form.SavePng(QString::fromStdString(file));
    EXPECT_EQ(Box(form), nullptr);
    const QImage picture(QString::fromStdString(file));
    EXPECT_EQ(picture.size(), The(form, "chart").size() * form.devicePixelRatio());
    EXPECT_NE(picture, QImage(picture).scaled(1, 1).scaled(picture.size()));  // not one colour

    form.SavePng(QString::fromStdString(place.path / "none" / "x.png"));
    EXPECT_THAT(Answer(form), testing::HasSubstr("x.png: "));
    {
        const SmallDisk full;
        form.SavePng(QString::fromStdString(file));
    }
    EXPECT_THAT(Answer(form), testing::HasSubstr(".png: "));
    EXPECT_EQ(QImage(QString::fromStdString(file)), picture);
}

TEST_F(ChartTest, AsksForTheFileWithoutWaiting) {
    auto& form = screen.Open<desk::frmchart>();
    Choose(form, "cmbLocId", "7");
    Choose(form, "cmbMonth", "3");
    Click(form, "cmdLineChart");
    AltKey(form, Qt::Key_P);
    const support::ScratchDirectory place;
    auto* dialog = form.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    const QString file = QString::fromStdString(place.path / "march.png");
    Q_EMIT dialog->fileSelected(file);
    dialog->close();
    EXPECT_FALSE(QImage(file).isNull());
}

TEST_F(ChartTest, FollowsThePalette) {
    auto& form = screen.Open<desk::frmchart>();
    Choose(form, "cmbLocId", "7");
    Choose(form, "cmbMonth", "3");
    Click(form, "cmdLineChart");
    QPalette dark = form.palette();
    dark.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x23));
    dark.setColor(QPalette::Text, Qt::white);
    form.setPalette(dark);
    QCoreApplication::processEvents();
    const QChart& chart = *The<desk::MonthDrawing>(form, "chart").chart();
    EXPECT_EQ(chart.backgroundBrush().color(), QColor(0x1B, 0x1E, 0x23));
    EXPECT_EQ(chart.titleBrush().color(), QColor(Qt::white));
    for (const QAbstractAxis* axis : chart.axes()) {
        EXPECT_EQ(axis->labelsColor(), QColor(Qt::white));
    }
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
    EXPECT_EQ(The<QLabel>(form, "lblscheduler").text(), "Calls: 4   Not acknowledged: 3");
    // A row that came from elsewhere meanwhile is there after the acknowledgement.
    Call(4170253, "2026-03-09", false);
    for (int times = 0; times < 2; ++times) {
        AltKey(form, Qt::Key_A);
        Texts after = before;
        after[1] = "4170253|08/03/2026 08:05:09|True";
        after[3] = "3508216|08/03/2026|True";
        after.push_back("4170253|09/03/2026|True");
        EXPECT_EQ(Lines(form, "gridAlarm"), after);
        EXPECT_EQ(The<QLabel>(form, "lblscheduler").text(), "Calls: 5   Not acknowledged: 1");
    }
}

TEST_F(DialoutTest, AStandingAlarmIsNotedAtEveryRunOfTheTimer) {
    auto& form = screen.Open<desk::frmdialout>();
    auto& timer = The<QTimer>(form, "Timer1");
    EXPECT_TRUE(timer.isActive());
    const auto run = [&timer] { QMetaObject::invokeMethod(&timer, "timeout"); };
    run();
    EXPECT_EQ(Lines(form, "gridAlarm").size(), 1U);
    form.Alarm(true);
    run();
    run();
    form.Alarm(false);
    run();
    EXPECT_EQ(Lines(form, "gridAlarm"),
              (Texts{"Phone number|Date|Acknowledged", "3508216|09/03/2026|False", "3508216|09/03/2026|False"}));
    EXPECT_EQ(screen.Count("dialout where Phone_Num=3508216 and Ack=false"), 2);
    form.Alarm(true);
    screen.dbconn.Execute("drop table dialout");
    run();
    EXPECT_THAT(screen.feedback.status.back(), testing::HasSubstr("dialout"));
}

}  // namespace
