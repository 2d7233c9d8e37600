// What the schedule has left, as an operator looks at it in the morning, and the gas composition that it takes along.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>

#include "collection/CollectionRun.h"
#include "desk/collection/frmGCWrite.h"
#include "desk/collection/frmScheduler.h"
#include "desk/collection/frm_Sch_Data.h"
#include "desk/collection/frmrpt.h"
#include "desk/collection/frmvalue.h"
#include "support/OddDevices.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::HasSubstr;

// A night behind the desk: every station is collected from the simulated field but the last, which is silent.
struct CollectionScreens : testing::Test {
    Silence silence;
    ScreenDesk desk;

    void Collect() {
        int last = 0;
        for (const demo::DemoStation& station : demo::OneOfEach("08:00")) {
            demo::AddStation(desk.dbconn, station);
            last = station.port;
        }
        desk.OpenField();
        desk.ports.Attach(last, silence);
        desk.clock.Run(30000);
        desk.Tick();
    }

    std::vector<std::filesystem::path> opened;
    bool opens = true;
    desk::frm_Sch_Data::Opener opener = [this](const std::filesystem::path& document) {
        opened.push_back(document);
        return opens;
    };
};

TEST_F(CollectionScreens, TheScheduleIsShownAndAnOperatorCollectsFromIt) {
    Collect();
    EXPECT_FALSE(Enabled(desk.Open<desk::frmScheduler>(), "cmdCollect")) << "without the right to data";
    desk.shared.rights.rightOnline = true;
    auto& form = desk.Open<desk::frmScheduler>();
    const auto rows = [&form] { return Lines(form, "Grid"); };
    EXPECT_THAT(rows().at(4), testing::MatchesRegex("O'Brien's Works\\|08:00\\|Yes\\|collected\\|08:0.\\|schedule\\|"));
    EXPECT_THAT(rows().at(5),
                testing::MatchesRegex(".+\\|08:00\\|No\\|no answer\\|08:0.\\|schedule\\|The unit does not answer; .+"));
    EXPECT_EQ(Focus(form), "Grid");

    desk.OpenField();  // the silent one answers now
    desk.clock.After(1000, [&] {
        Fire(form, "tmrfollow");
        EXPECT_EQ(Cell(form, "Grid", 4, 3), "collecting");
    });
    desk.Press(form, "cmdMissing");
    Fire(form, "tmrfollow");
    EXPECT_THAT(rows().at(5), testing::MatchesRegex(".+\\|08:00\\|Yes\\|collected\\|08:..\\|hand\\|"));
    EXPECT_EQ(Cell(form, "Grid", 0, 5), "schedule");
    The<desk::Grid>(form, "Grid").SelectRow(0);
    desk.During({}, [&] { Key(form, Qt::Key_F5); });
    Fire(form, "tmrfollow");
    EXPECT_EQ(Cell(form, "Grid", 0, 5), "hand");
}

TEST_F(CollectionScreens, AWorkbookIsPickedByStationAndDay) {
    EXPECT_EQ(Answer(desk.Open<desk::frm_Sch_Data>(opener)), "Scheduler Data not found");
    Collect();
    for (const char* const date : {"31/12/2025", "1/3/2026", "yesterday"}) {
        desk.dbconn.Execute("insert into Scheduler values(?,'08:00:00',?,'')", {date, "O'Brien's Works"});
    }
    auto& form = desk.Open<desk::frm_Sch_Data>(opener);
    EXPECT_EQ(Focus(form), "cmb_rtu");
    EXPECT_FALSE(Enabled(form, "cmd_open"));
    auto& stations = The<QComboBox>(form, "cmb_rtu");
    auto& dates = The<QComboBox>(form, "cmb_date");
    EXPECT_EQ(stations.count(), 4);  // the silent one was never collected
    stations.setCurrentText("O'Brien's Works");
    QStringList offered;
    for (int i = 0; i < dates.count(); ++i) {
        offered << dates.itemText(i);
    }
    EXPECT_EQ(offered, QStringList({"09/03/2026", "1/3/2026", "31/12/2025", "yesterday"}));
    Click(form, "cmd_open");
    EXPECT_THAT(opened, testing::ElementsAre(desk.shared.schedulerDirectory / "O'Brien's Works_932026.xls"));
    EXPECT_EQ(Box(form), nullptr);
    opens = false;
    Click(form, "cmd_open");
    EXPECT_THAT(Answer(form), HasSubstr("O'Brien's Works_932026.xls"));
    dates.setCurrentIndex(1);
    Click(form, "cmd_open");
    EXPECT_EQ(Answer(form), "File Not Found");
    dates.setCurrentIndex(3);
    Click(form, "cmd_open");
    EXPECT_EQ(Answer(form), "\"yesterday\" is no date, so its workbook cannot be found.");
    EXPECT_EQ(Focus(form), "cmb_date");
    EXPECT_EQ(opened.size(), 2U);
}

TEST_F(CollectionScreens, TheReportOfADayIsShownAndSaved) {
    auto& empty = desk.Open<desk::frmrpt>();
    Click(empty, "cmddaily");
    EXPECT_EQ(Answer(empty), "No Data available");
    EXPECT_FALSE(Enabled(empty, "cmdsavertf"));
    Collect();
    auto& form = desk.Open<desk::frmrpt>();
    auto& date = The<QDateEdit>(form, "dtpicker");
    EXPECT_EQ(date.date(), QDate(2026, 3, 9));
    Click(form, "cmddaily");
    ASSERT_EQ(Rows(form, "Grid"), 5);
    EXPECT_EQ(Cell(form, "Grid", 3, 1), "O'Brien's Works");
    EXPECT_THAT(Cell(form, "Grid", 0, 2), HasSubstr(" by schedule"));
    const auto logged = desk.dbconn.First("select * from LogParam where LocationId=1").value();
    const double monthflow = logged.Number("CurrentMonthFlow");
    EXPECT_GT(monthflow, 0);
    const auto figure = [&form](int column) { return std::stod(Cell(form, "Grid", 0, column)); };
    EXPECT_NEAR(figure(5), logged.Number("CurrentDayFlow"), 0.005);
    EXPECT_NEAR(figure(6), monthflow, 0.005);
    EXPECT_NEAR(figure(7), monthflow / 9, 0.005);  // on the ninth
    EXPECT_NEAR(figure(8), logged.Number("currentprs"), 0.005);

    // Another day: nothing of the one before stays, and what was not collected is no zero.
    date.setFocus();
    QTest::keyClick(&date, Qt::Key_Down);
    EXPECT_EQ(date.date(), QDate(2026, 3, 8));
    EXPECT_EQ(Rows(form, "Grid"), 0);
    EXPECT_FALSE(Enabled(form, "cmdsavertf"));
    Click(form, "cmddaily");
    EXPECT_EQ(Cell(form, "Grid", 0, 6), "no data");

    // Meanwhile the scheduled mail has made the report of today. A file that is there is replaced when told so.
    desk.dbconn.Execute("update daily_rep set monthflow=777");
    const auto file = desk.shared.directory / "of the 8th.rtf";
    std::ofstream(file) << "mine";
    const auto save = [&form](const std::filesystem::path& to) {
        Click(form, "cmdsavertf");
        PickFile(form, to);
    };
    save(file);
    EXPECT_THAT(Answer(form, QMessageBox::No), HasSubstr("Replace it?"));
    EXPECT_EQ(FileText(file), "mine");
    save(file);
    Answer(form, QMessageBox::Yes);
    EXPECT_EQ(Answer(form), "Report saved");
    EXPECT_THAT(FileText(file), testing::AllOf(testing::StartsWith("{\\rtf1"), HasSubstr("08/03/2026"),
                                               HasSubstr("O'Brien's Works"), testing::Not(HasSubstr("777"))));
    save(desk.shared.directory / "nowhere" / "report.rtf");
    EXPECT_THAT(Answer(form), HasSubstr("No such file or directory"));
}

// A station collected from the simulated field, and one in whose place nothing was read yet.
struct GasCompositionScreenTest : testing::Test {
    ScreenDesk desk;
    std::int64_t mill = demo::AddStation(desk.dbconn, {"O'Brien's Mill", "TeleFlow", "Modbus", "RTU", 1, 1});
    std::int64_t farm = demo::AddStation(desk.dbconn, {"Farm", "TeleFlow", "Modbus", "RTU", 2, 1});

    desk::frmGCWrite& Open() {
        auto& field = desk.OpenField();
        field.Values(mill, 1, "Methane")->Fix("Methane", 90.5);
        reading::RunState state;
        collection::collectiong_Data(desk.place, mill, state);
        EXPECT_FALSE(state.runfailed) << desk.RtuErr();
        return desk.Open<desk::frmGCWrite>();
    }
    // The window that asks for a value, in its focus; null when there is none.
    static desk::frmvalue* Window(const QWidget& form) {
        QCoreApplication::processEvents();
        auto* window = form.findChild<desk::frmvalue*>();
        if (window == nullptr || !window->isVisible()) {
            return nullptr;
        }
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        QCoreApplication::processEvents();
        return window;
    }
    // Enter on the value in front; what the window offers is given and typed over.
    static std::string Change(const QWidget& form, const QString& text) {
        Key(form, Qt::Key_Return);
        auto* window = Window(form);
        if (window == nullptr) {
            throw std::runtime_error("no value is asked for");
        }
        const std::string offered = The<QLineEdit>(*window, "txtvalue").selectedText().toStdString();
        QTest::keyClicks(window->focusWidget(), text);
        Key(*window, Qt::Key_Return);
        EXPECT_EQ(Window(form), nullptr);
        return offered;
    }
};

std::string Value(const QWidget& form, int row) {
    return Cell(form, "gcgrid", row, 2);
}

std::string Usable(const QWidget& form) {
    return support::Usable(form, {"Grid", "gcgrid", "cmdedit", "cmdsave", "cmdCancel", "cmdClose"});
}

const char* const looking = "Grid cmdedit cmdClose ";
const char* const editing = "gcgrid cmdsave cmdCancel ";

TEST_F(GasCompositionScreenTest, AValueIsEditedByKeysAndSaved) {
    auto& form = Open();
    EXPECT_EQ(Usable(form), looking);
    EXPECT_EQ(Focus(form), "Grid");
    EXPECT_EQ(Cell(form, "gcgrid", 0, 1), "Methane");
    EXPECT_EQ(Value(form, 0), "90.5");
    Click(form, "cmdedit");
    EXPECT_EQ(Usable(form), editing);
    EXPECT_EQ(Focus(form), "gcgrid");
    EXPECT_EQ(Change(form, "91.25"), "90.5");
    EXPECT_EQ(Value(form, 0), "91.25");
    EXPECT_EQ(desk.Count("write_gc"), 0);
    Click(form, "cmdsave");
    EXPECT_EQ(Usable(form), looking);
    EXPECT_EQ(desk.Count("write_gc where locationid=? and lastvalue=91.25 and description='Methane'", {mill}), 1);
    // Of the other station nothing is known yet.
    Key(form, Qt::Key_Down);
    EXPECT_EQ(Value(form, 0), "-");
    EXPECT_EQ(Text(form, "lblsum"), "");
    Click(form, "cmdedit");
    EXPECT_EQ(Change(form, "88"), "");
    EXPECT_EQ(Text(form, "lblsum"), "Sum: 88 (20 without a value)");
    Click(form, "cmdsave");
    EXPECT_EQ(desk.Count("write_gc where locationid=? and lastvalue is null", {farm}), 20);
    Key(form, Qt::Key_Up);
    EXPECT_EQ(Value(form, 0), "91.25");
}

TEST_F(GasCompositionScreenTest, OnlyANumberIsTaken) {
    auto& form = Open();
    Click(form, "cmdedit");
    Key(form, Qt::Key_Return);
    auto* window = Window(form);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(Text(*window, "lbldescription"), "Methane");
    for (const char* const text : {"abc", "1,5", "9'"}) {
        QTest::keyClicks(window->focusWidget(), text);
        Key(*window, Qt::Key_Return);
        EXPECT_THAT(Answer(*window), testing::HasSubstr(text));
        EXPECT_EQ(Focus(*window), "txtvalue");
        EXPECT_EQ(The<QLineEdit>(*window, "txtvalue").selectedText().toStdString(), text);
    }
    Click(*window, "cmdCancel");
    EXPECT_EQ(Window(form), nullptr);
    EXPECT_EQ(Value(form, 0), "90.5");
}

TEST_F(GasCompositionScreenTest, CancelShowsWhatIsStoredAndASaveThatFailsLeavesTheForm) {
    collection::SaveGasComposition(desk.dbconn, mill, {{"9", "Methane", 60}, {"11", "Ethane", 39.9}});
    auto& form = Open();
    EXPECT_EQ(Text(form, "lblsum"), "Sum: 99.9");
    Click(form, "cmdedit");
    Key(form, Qt::Key_Down);
    Change(form, "40");
    EXPECT_EQ(Text(form, "lblsum"), "Sum: 100");
    QTest::keyClick(&The(form, "gcgrid"), Qt::Key_Escape);
    EXPECT_EQ(Value(form, 1), "39.9");
    EXPECT_EQ(Text(form, "lblsum"), "Sum: 99.9");
    EXPECT_EQ(Usable(form), looking);
    Click(form, "cmdedit");
    desk.dbconn.Execute("alter table write_gc rename to gone");
    Click(form, "cmdsave");
    EXPECT_EQ(Usable(form), editing);
    EXPECT_THAT(desk.feedback.status.back(), testing::HasSubstr("write_gc"));
}

}  // namespace
