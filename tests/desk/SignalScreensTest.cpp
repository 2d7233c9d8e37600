// The screens of a station's signals by clicks and keys, on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include "desk/kit/Grid.h"
#include "desk/session/frm_CWM.h"
#include "desk/session/frmparalist.h"
#include "desk/shell/frmHisErrLog.h"
#include "desk/signals/ListPage.h"
#include "desk/signals/frmSignalSearch.h"
#include "session/Session.h"
#include "signals/lists/SignalText.h"
#include "support/ScreenDesk.h"

namespace {

using support::Answer;
using support::Click;
using support::Script;
using support::The;
using support::Type;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const demo::DemoStation corrector{"O'Neill <b>Gate</b>", "TeleCorrector", "BSAP", "", 1, 5};
const demo::DemoStation smallStation{"Micro", "CW_Micro", "BSAP", "", 2, 4};
const demo::DemoStation teleFlow{"Mill", "TeleFlow+", "Modbus", "RTU", 3, 3};

struct SignalScreens : testing::Test {
    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
    fieldsim::Field* field = nullptr;
    desk::frmparalist* paralist = nullptr;

    SignalScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = true;
        auto due = corrector;
        due.contracthour = "09:05";
        for (const auto& station : {due, smallStation, teleFlow}) {
            demo::AddStation(desk.dbconn, station);
        }
    }

    void Connect(const fieldsim::FieldOptions& options = {}) {
        field = &desk.OpenField(options);
        paralist = &desk.Open<desk::frmparalist>(1);
        Click(*paralist, "cmdConnect");
        ASSERT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
    }
    fieldsim::BsapStation& Station(std::int64_t locationID = 1) { return *field->Station(locationID)->bsap; }
    fieldsim::SignalList& Program() { return *Station().Lists().at(10); }

    desk::ListPage& OpenList() {
        Click(*paralist, "cmdfetch");
        return desk.Front<desk::frmparafetchlist>();
    }
    static desk::Grid& GridOf(const QWidget& page) { return The<desk::Grid>(page, "signalsGrid"); }
    static int Rows(const QWidget& page) { return GridOf(page).Rows(); }
    static std::string Cell(const QWidget& page, int row, int column) {
        return GridOf(page).TextMatrix(row, column).toStdString();
    }
    static bool Enabled(const QWidget& page, const char* name) { return The(page, name).isEnabled(); }
    static bool Seen(const QWidget& page, const char* name) { return The(page, name).isVisible(); }
    // The row of a signal, whose name it begins with.
    static int RowOf(const QWidget& page, const std::string& name) {
        int row = 0;
        while (row < Rows(page) && !Cell(page, row, 1).starts_with(name)) {
            ++row;
        }
        return row;
    }
    static void Choose(const QWidget& page, int row) {
        GridOf(page).SelectRow(row);
        QTest::keyClick(&GridOf(page), Qt::Key_Return);
    }
    std::vector<std::string> Trail() { return desk.dbconn.Texts("select * from TTS_table"); }
    std::string Saved(const QWidget& page, const char* command) {
        Click(page, command);
        const auto file = desk.shared.directory / "saved.xls";
        auto& dialog = *page.findChild<QFileDialog*>();
        EXPECT_EQ(dialog.nameFilters(), QStringList("Excel Files(*.xls)"));
        Q_EMIT dialog.fileSelected(QString::fromStdString(file.string()));
        dialog.reject();
        EXPECT_EQ(Answer(page), "Data Saved...");
        return support::FileText(file);
    }
    // Every signal of the program, as the file is to hold it.
    void ExpectProgram(const QWidget& page) {
        const auto& signals = Program().Signals();
        ASSERT_EQ(Rows(page), static_cast<int>(signals.size()));
        for (std::size_t row = 0; row < signals.size(); ++row) {
            EXPECT_THAT(Cell(page, static_cast<int>(row), 1), StartsWith(signals[row].description));
        }
    }
};

TEST_F(SignalScreens, AListIsFetchedSavedAndWrittenInASession) {
    Connect();
    auto& page = OpenList();
    EXPECT_EQ(page.windowTitle(), "Fetch List - v10.3");
    EXPECT_EQ(The<QComboBox>(page, "cmbnodename").currentText(), QString(corrector.consumer.c_str()));
    EXPECT_FALSE(Enabled(page, "cmbnodename") || Enabled(page, "cmd_save") || Enabled(page, "cmd_stop"));
    Type(page, "txtListNo", "a1-0x");
    EXPECT_EQ(The<QLineEdit>(page, "txtListNo").text(), "10");
    desk.During({{"rows", [&] { return Rows(page) > 0; },
                  [&] {
                      for (const char* control : {"cmdfetch", "cmdClose", "cmd_save", "txtListNo"}) {
                          EXPECT_FALSE(Enabled(page, control)) << control;
                      }
                      EXPECT_TRUE(Seen(page, "lblmsg") && Seen(page, "pbupdate") && Enabled(page, "cmd_stop"));
                      EXPECT_EQ(The<QLabel>(page, "lblmsg").text(), "Please wait ....");
                      QTest::keyClick(&GridOf(page), Qt::Key_Escape);
                      EXPECT_EQ(desk.window.Front(), &page);
                  }}},
                [&] {
                    QTest::keyClick(&The(page, "txtListNo"), Qt::Key_Return);
                    QCoreApplication::processEvents();
                });
    EXPECT_EQ(Answer(page), "List Fetched");
    ExpectProgram(page);
    EXPECT_TRUE(Enabled(page, "cmdfetch") && Enabled(page, "txtListNo") && !Enabled(page, "cmd_stop"));
    const std::string text = Saved(page, "cmd_save");
    EXPECT_THAT(text, StartsWith("Sr. No.\tSignal Name\tValue\tUnits\t\r\n1\t"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), Rows(page) + 1);

    // A number is typed, a switch flipped or picked.
    const int flow = RowOf(page, Program().Signals()[0].description);
    Choose(page, flow);
    EXPECT_TRUE(Seen(page, "frmvalue") && Seen(page, "txtvalue") && !Seen(page, "Cmb_input"));
    Type(page, "txtvalue", "");
    Click(page, "cmdwrite");
    EXPECT_EQ(Answer(page), "Enter Proper Data");
    Type(page, "txtvalue", "123.5");
    desk.Press(
        page, "cmdwrite",
        {{"on its way", [&] { return Seen(page, "lblWrite"); }, [&] { EXPECT_FALSE(Enabled(page, "cmdfetch")); }}});
    EXPECT_EQ(Cell(page, flow, 2), "123.5");
    EXPECT_FALSE(Seen(page, "frmvalue") || Seen(page, "lblWrite"));
    int logical = 0;
    while (!Cell(page, logical, 1).ends_with("(Logical)")) {
        ++logical;
    }
    Choose(page, logical);
    EXPECT_TRUE(Seen(page, "Cmb_input") && Seen(page, "cmdtoggle"));
    const std::string before = Cell(page, logical, 2);
    Click(page, "cmdtoggle");
    Click(page, "cmdwrite");
    EXPECT_NE(Cell(page, logical, 2), before);
    EXPECT_EQ(Station().Writes().size(), 2U);
    EXPECT_THAT(Trail().back(), HasSubstr("changed value of signal"));
    Choose(page, flow);
    QTest::keyClick(&The(page, "txtvalue"), Qt::Key_Escape);
    EXPECT_FALSE(Seen(page, "frmvalue"));
    EXPECT_EQ(Station().Writes().size(), 2U);

    Click(page, "cmdClose");
    EXPECT_EQ(desk.window.Front(), paralist);
    EXPECT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
}

// A guest signs on anew, so the load version is right again; the addresses of the rows are not.
TEST_F(SignalScreens, ARowOfAnEarlierProgramIsNotWritten) {
    Connect();
    auto& page = OpenList();
    Type(page, "txtListNo", "10");
    desk.Press(page, "cmdfetch", {});
    EXPECT_EQ(Answer(page), "List Fetched");
    Station().Options().password = "482913";
    Station().LoadProgram();
    Choose(page, 0);
    Type(page, "txtvalue", "77");
    desk.Press(page, "cmdwrite", {});
    EXPECT_THAT(Answer(page), HasSubstr("Not sent: the station's program has changed."));
    EXPECT_TRUE(Station().Writes().empty());
    EXPECT_TRUE(Station().SignedOn()) << "with the password";
    desk.Press(page, "cmdfetch", {});
    EXPECT_EQ(Answer(page), "List Fetched");
    Choose(page, 0);
    Type(page, "txtvalue", "77");
    desk.Press(page, "cmdwrite", {});
    EXPECT_THAT(Station().WritesText(), ElementsAre(HasSubstr(Program().Signals()[0].description + " = 77")));
}

TEST_F(SignalScreens, FetchesThatFailAreToldAndSaveNothing) {
    Connect();
    auto& page = OpenList();
    const auto fetch = [&](const char* list, std::vector<Script::Step> steps = {}) {
        Type(page, "txtListNo", list);
        desk.Press(page, "cmdfetch", std::move(steps));
        return Answer(page);
    };
    for (const char* none : {"", "256", "999"}) {
        EXPECT_EQ(fetch(none), "Enter the number of a list, from 0 to 255") << none;
    }
    EXPECT_EQ(fetch("99"), "List Not Found");
    EXPECT_FALSE(Enabled(page, "cmd_save"));
    const auto rows = [&] { return Rows(page) > 0; };
    EXPECT_THAT(fetch("10", {{"rows", rows, [&] { Click(page, "cmd_stop"); }}}),
                StartsWith("List Fetched up to the stop: "));
    EXPECT_GT(Rows(page), 0);
    Station().Options().betweenReplies = [&] { Station().Options().silentLists = {10}; };
    EXPECT_EQ(fetch("10"), "Error Occured in Communication");
    EXPECT_GT(Rows(page), 0);  // what came stays
    EXPECT_FALSE(Enabled(page, "cmd_save"));
    Station().Options() = {};

    // A signal that is gone cannot be chosen.
    Program().Vacate(Program().Signals()[1].description);
    EXPECT_EQ(fetch("10"), "List Fetched");
    EXPECT_EQ(Cell(page, 1, 1), "Signal Not Found");
    Choose(page, 1);
    EXPECT_FALSE(Seen(page, "frmvalue"));

    // Nor any by a user who may write nothing.
    desk.shared.currentuser = "guest";
    Choose(page, 0);
    EXPECT_EQ(Answer(page), "Could not set. Lower user level.");
    EXPECT_TRUE(Station().Writes().empty());
}

TEST_F(SignalScreens, AWriteWaitsForItsTurnInAFetch) {
    Connect();
    auto& page = OpenList();
    Type(page, "txtListNo", "10");
    desk.Press(page, "cmdfetch",
               {{"rows", [&] { return Rows(page) > 0; },
                 [&] {
                     Choose(page, 0);
                     Type(page, "txtvalue", "77");
                     Click(page, "cmdwrite");
                     EXPECT_TRUE(Seen(page, "lblWrite"));
                     EXPECT_TRUE(Station().Writes().empty());
                 }},
                {"written", [&] { return Cell(page, 0, 2) == "77"; }, [] {}}});
    EXPECT_EQ(Answer(page), "List Fetched");
    ExpectProgram(page);
    EXPECT_EQ(Cell(page, 0, 2), "77");
}

TEST_F(SignalScreens, ADueCollectionTakesTheLineAndTheScreenSaysSo) {
    Connect();
    desk.StartTicking();
    auto& page = OpenList();
    Type(page, "txtListNo", "10");
    // The tick of 09:05 comes in the midst of a fetch.
    desk.clock.Run(299000 - desk.clock.Elapsed() % 60000);
    desk.Press(page, "cmdfetch");
    EXPECT_EQ(Answer(page), "The line is gone: A scheduled collection has taken the line");
    EXPECT_TRUE(desk.Master(1).Bool("sampledtoday")) << desk.RtuErr();
    EXPECT_FALSE(Enabled(page, "cmd_save"));
    // With no line nothing is read and nothing said; a value that was entered is not sent later.
    desk.Press(page, "cmdfetch");
    EXPECT_EQ(Answer(page), "");
    EXPECT_EQ(Rows(page), 0);
}

TEST_F(SignalScreens, WithoutALineAValueIsNotWritten) {
    Connect();
    auto& page = OpenList();
    Type(page, "txtListNo", "10");
    desk.Press(page, "cmdfetch");
    Answer(page);
    Choose(page, 0);
    Type(page, "txtvalue", "5");
    paralist->GetSession()->Disconnect();
    Click(page, "cmdwrite");
    EXPECT_THAT(Answer(page), HasSubstr("There is no line to the station"));
    EXPECT_THAT(Answer(page), HasSubstr("was not written"));
    EXPECT_FALSE(Seen(page, "frmvalue") || Seen(page, "lblWrite"));
    EXPECT_TRUE(Enabled(page, "cmdfetch"));
    EXPECT_TRUE(Station().Writes().empty());
}

TEST_F(SignalScreens, ASearchByNameAndByAttribute) {
    Connect();
    Click(*paralist, "cmdSignalSearch");
    auto& page = desk.Front<desk::frmSignalSearch>();
    EXPECT_TRUE(The<QRadioButton>(page, "Option1_1").isChecked());
    const std::string name = Program().Signals()[0].description;
    Type(page, "txtSigName", QString::fromStdString(name).toLower());
    EXPECT_EQ(The<QLineEdit>(page, "txtSigName").text().toStdString(), name);
    desk.Press(
        page, "cmdSearch",
        {{"running", [&] { return Enabled(page, "cmdStop"); },
          [&] {
              EXPECT_FALSE(Enabled(page, "cmdSearch") || Enabled(page, "cmdClose") || Enabled(page, "txtSigName"));
          }}});
    EXPECT_EQ(Answer(page), "Collected");
    ASSERT_EQ(Rows(page), 1);
    EXPECT_THAT(Cell(page, 0, 1), StartsWith(name));
    Choose(page, 0);
    Type(page, "txtvalue", "8.5");
    Click(page, "cmdwrite");
    EXPECT_EQ(Cell(page, 0, 2), "8.5");
    EXPECT_THAT(Saved(page, "cmdSaveExcel"), HasSubstr("1\t" + name));

    Type(page, "txtSigName", "no such*");
    desk.Press(page, "cmdSearch");
    EXPECT_EQ(support::Box(page), nullptr);
    ASSERT_EQ(Rows(page), 1);
    EXPECT_EQ(Cell(page, 0, 1), "Signal Not Found");
    Choose(page, 0);
    EXPECT_FALSE(Seen(page, "frmvalue"));

    Click(page, "Option1_0");
    EXPECT_EQ(The<QLineEdit>(page, "txtSigName").text(), "");
    Type(page, "txtSigName", "rates");
    EXPECT_EQ(The<QLineEdit>(page, "txtSigName").text(), "RATE");
    QTest::keyClick(&The(page, "txtSigName"), Qt::Key_Backspace);
    EXPECT_EQ(The<QLineEdit>(page, "txtSigName").text(), "RAT");

    Click(page, "Option1_1");
    Type(page, "txtSigName", "*");
    desk.Press(page, "cmdSearch", {{"rows", [&] { return Rows(page) > 0; }, [&] { Click(page, "cmdStop"); }}});
    EXPECT_THAT(Answer(page), HasSubstr("up to the stop"));
    // The station falls silent behind the first reply: what was found stays.
    desk.Press(page, "cmdSearch",
               {{"rows", [&] { return Rows(page) > 0; }, [&] { desk.ports.Attach(1, *field->Station(3)->device); }}});
    EXPECT_EQ(Answer(page), "Error Occured in Communication");
    EXPECT_GT(Rows(page), 0);
}

TEST_F(SignalScreens, ByACallOfItsOwnFromTheMenuAndOnAMicro) {
    field = &desk.OpenField();
    auto& menu = desk.Open<desk::frmHisErrLog>();
    Click(menu, "cmd_list");
    auto& page = desk.Front<desk::frmfetchlist>();
    auto& nodes = The<QComboBox>(page, "cmbnodename");
    EXPECT_EQ(nodes.count(), 2);  // those on BSAP
    nodes.setCurrentIndex(0);
    Type(page, "txtListNo", "10");
    desk.Press(page, "cmdfetch");
    EXPECT_EQ(Answer(page), "List Fetched");
    ExpectProgram(page);
    EXPECT_FALSE(desk.ports.PortOpen());
    Choose(page, 0);
    EXPECT_FALSE(Seen(page, "frmvalue"));
    desk.ports.Attach(1, *field->Station(3)->device);  // another station behind the port
    desk.Press(page, "cmdfetch");
    EXPECT_EQ(Answer(page), "RTU Dead");
    EXPECT_EQ(support::Box(page), nullptr);
    EXPECT_TRUE(Enabled(page, "cmdfetch"));

    auto& cw = desk.Open<desk::frm_CWM>(2);
    Click(cw, "cmdConnect");
    Click(cw, "cmd_fetch");
    auto& list = desk.Front<desk::frmparafetchlist>();
    Type(list, "txtListNo", "10");
    desk.Press(list, "cmdfetch");
    EXPECT_EQ(Answer(list), "List Fetched");
    EXPECT_EQ(Rows(list), static_cast<int>(Station(2).Lists().at(10)->Signals().size()));
}

}  // namespace
