// The screens of a station's signals by clicks and keys, on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>

#include "desk/session/frm_CWM.h"
#include "desk/session/frmparalist.h"
#include "desk/shell/frmHisErrLog.h"
#include "desk/signals/ListPage.h"
#include "desk/signals/frmSignalSearch.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::HasSubstr;
using testing::StartsWith;

struct SignalScreens : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
    fieldsim::Field* field = nullptr;
    desk::frmparalist* paralist = nullptr;

    SignalScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = true;
        demo::AddStation(desk.dbconn, {"O'Neill <b>Gate</b>", "TeleCorrector", "BSAP", "", 1, 5});
        demo::AddStation(desk.dbconn, {"Micro", "CW_Micro", "BSAP", "", 2, 4});
        demo::AddStation(desk.dbconn, {"Mill", "TeleFlow+", "Modbus", "RTU", 3, 3});
        field = &desk.OpenField();
    }

    void Connect() {
        paralist = &desk.Open<desk::frmparalist>(1);
        desk.Press(*paralist, "cmdConnect");
        ASSERT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
    }
    fieldsim::BsapStation& Station(std::int64_t locationID = 1) { return *field->Station(locationID)->bsap; }
    const std::vector<fieldsim::Signal>& Program() { return Station().Lists().at(10)->Signals(); }

    desk::ListPage& OpenList() {
        Click(*paralist, "cmdfetch");
        return desk.Front<desk::frmparafetchlist>();
    }
    // What is said at the end of a fetch.
    std::string Fetch(const QWidget& page, const char* list, std::vector<Script::Step> steps = {}) {
        Type(page, "txtListNo", list);
        desk.Press(page, "cmdfetch", std::move(steps));
        return Answer(page);
    }
    static int Rows(const QWidget& page) { return support::Rows(page, "signalsGrid"); }
    static std::string Cell(const QWidget& page, int row, int column) {
        return support::Cell(page, "signalsGrid", row, column);
    }
    static void Choose(const QWidget& page, int row) { ChooseRow(page, "signalsGrid", row); }
    // Enter on a row, another value, and the command that writes it.
    void Write(const QWidget& page, int row, const char* value) {
        Choose(page, row);
        Type(page, "txtvalue", value);
        desk.Press(page, "cmdwrite");
    }
    std::string Saved(const QWidget& page, const char* command) {
        Click(page, command);
        const auto file = desk.shared.directory / "saved.xls";
        EXPECT_EQ(PickFile(page, file), "Excel Files(*.xls)");
        EXPECT_EQ(Answer(page), "Data Saved...");
        return FileText(file);
    }
    // Every signal of the program is in its row.
    void ExpectProgram(const QWidget& page) {
        ASSERT_EQ(Rows(page), static_cast<int>(Program().size()));
        for (int row = 0; row < Rows(page); ++row) {
            EXPECT_THAT(Cell(page, row, 1), StartsWith(Program()[static_cast<std::size_t>(row)].description));
        }
    }
};

TEST_F(SignalScreens, AListIsFetchedSavedAndWrittenInASession) {
    Connect();
    auto& page = OpenList();
    const std::vector<const char*> commands{"cmbnodename", "txtListNo", "cmdfetch", "cmd_stop", "cmd_save", "cmdClose"};
    EXPECT_EQ(Text(page, "cmbnodename"), "O'Neill <b>Gate</b>");
    EXPECT_EQ(Usable(page, commands), "txtListNo cmdfetch cmdClose ");
    Type(page, "txtListNo", "a1-0x");
    EXPECT_EQ(Text(page, "txtListNo"), "10");
    desk.During({{"rows", [&] { return Rows(page) > 0; },
                  [&] {
                      EXPECT_EQ(Usable(page, commands), "cmd_stop ");
                      EXPECT_TRUE(Seen(page, "pbupdate"));
                      EXPECT_EQ(Text(page, "lblmsg"), "Please wait ....");
                      QTest::keyClick(&The(page, "signalsGrid"), Qt::Key_Escape);
                      EXPECT_EQ(desk.window.Front(), &page);
                      // A value waits for its turn.
                      Choose(page, 0);
                      Type(page, "txtvalue", "77");
                      Click(page, "cmdwrite");
                      EXPECT_TRUE(Seen(page, "lblWrite"));
                      EXPECT_TRUE(Station().Writes().empty());
                  }},
                 {"written", [&] { return Cell(page, 0, 2) == "77"; }, [] {}}},
                [&] { Key(page, Qt::Key_Return); });
    EXPECT_EQ(Answer(page), "List Fetched");
    ExpectProgram(page);
    EXPECT_EQ(Cell(page, 0, 2), "77");
    EXPECT_EQ(Usable(page, commands), "txtListNo cmdfetch cmd_save cmdClose ");
    const std::string text = Saved(page, "cmd_save");
    EXPECT_THAT(text, StartsWith("Sr. No.\tSignal Name\tValue\tUnits\t\r\n1\t"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), Rows(page) + 1);

    // A number is typed, a switch flipped.
    Choose(page, 0);
    EXPECT_TRUE(Seen(page, "frmvalue") && Seen(page, "txtvalue") && !Seen(page, "Cmb_input"));
    Type(page, "txtvalue", "");
    Click(page, "cmdwrite");
    EXPECT_EQ(Answer(page), "Enter Proper Data");
    QTest::keyClick(&The(page, "txtvalue"), Qt::Key_Escape);
    EXPECT_FALSE(Seen(page, "frmvalue"));
    int logical = 0;
    while (!Cell(page, logical, 1).ends_with("(Logical)")) {
        ++logical;
    }
    Choose(page, logical);
    EXPECT_TRUE(Seen(page, "Cmb_input") && Seen(page, "cmdtoggle"));
    const std::string before = Cell(page, logical, 2);
    Click(page, "cmdtoggle");
    desk.Press(page, "cmdwrite");
    EXPECT_NE(Cell(page, logical, 2), before);
    EXPECT_FALSE(Seen(page, "frmvalue") || Seen(page, "lblWrite"));
    EXPECT_EQ(Station().Writes().size(), 2U);
    // Nothing is chosen by a user who may write nothing.
    desk.shared.currentuser = "guest";
    Choose(page, 0);
    EXPECT_EQ(Answer(page), "Could not set. Lower user level.");

    Click(page, "cmdClose");
    EXPECT_EQ(desk.window.Front(), paralist);
    EXPECT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
}

// A guest signs on anew, so the load version is right again; the addresses of the rows are not.
TEST_F(SignalScreens, ARowOfAnEarlierProgramIsNotWrittenNorOneWithoutALine) {
    Connect();
    auto& page = OpenList();
    EXPECT_EQ(Fetch(page, "10"), "List Fetched");
    Station().Options().password = "482913";
    Station().LoadProgram();
    Write(page, 0, "77");
    EXPECT_THAT(Answer(page), HasSubstr("Not sent: the station's program has changed."));
    EXPECT_TRUE(Station().Writes().empty());
    EXPECT_TRUE(Station().SignedOn()) << "with the password";
    EXPECT_EQ(Fetch(page, "10"), "List Fetched");
    Write(page, 0, "77");
    EXPECT_THAT(Station().WritesText(), testing::ElementsAre(HasSubstr(Program()[0].description + " = 77")));

    Choose(page, 0);
    Type(page, "txtvalue", "5");
    paralist->GetSession()->Disconnect();
    desk.Settle();
    Click(page, "cmdwrite");
    EXPECT_THAT(Answer(page), HasSubstr("There is no line to the station"));
    EXPECT_THAT(Answer(page), HasSubstr("was not written"));
    EXPECT_FALSE(Seen(page, "frmvalue") || Seen(page, "lblWrite"));
    EXPECT_TRUE(Enabled(page, "cmdfetch"));
    EXPECT_EQ(Station().Writes().size(), 1U);
}

TEST_F(SignalScreens, ASearchByNameAndByAttribute) {
    Connect();
    Click(*paralist, "cmdSignalSearch");
    auto& page = desk.Front<desk::frmSignalSearch>();
    const std::string name = Program()[0].description;
    Type(page, "txtSigName", QString::fromStdString(name).toLower());
    EXPECT_EQ(Text(page, "txtSigName"), name);
    desk.Press(page, "cmdSearch",
               {{"running", [&] { return Enabled(page, "cmdStop"); },
                 [&] {
                     EXPECT_EQ(Usable(page, {"cmdSearch", "cmdClose", "txtSigName"}), "");
                 }}});
    EXPECT_EQ(Answer(page), "Collected");
    ASSERT_EQ(Rows(page), 1);
    Write(page, 0, "8.5");
    EXPECT_EQ(Cell(page, 0, 2), "8.5");
    EXPECT_THAT(Saved(page, "cmdSaveExcel"), HasSubstr("1\t" + name));

    // The station falls silent behind the first reply: what was found stays.
    Type(page, "txtSigName", "*");
    desk.Press(page, "cmdSearch",
               {{"rows", [&] { return Rows(page) > 0; }, [&] { desk.ports.Attach(1, *field->Station(3)->device); }}});
    EXPECT_EQ(Answer(page), "Error Occured in Communication");
    EXPECT_GT(Rows(page), 0);
}

TEST_F(SignalScreens, ByACallOfItsOwnFromTheMenuAndOnAMicro) {
    Click(desk.Open<desk::frmHisErrLog>(), "cmd_list");
    auto& page = desk.Front<desk::frmfetchlist>();
    auto& nodes = The<QComboBox>(page, "cmbnodename");
    EXPECT_EQ(nodes.count(), 2);  // those on BSAP
    nodes.setCurrentIndex(0);
    EXPECT_EQ(Fetch(page, "10"), "List Fetched");
    ExpectProgram(page);
    EXPECT_FALSE(desk.ports.PortOpen());
    Choose(page, 0);
    EXPECT_FALSE(Seen(page, "frmvalue"));
    desk.ports.Attach(1, *field->Station(3)->device);  // another station behind the port
    EXPECT_EQ(Fetch(page, "10"), "RTU Dead");
    EXPECT_EQ(Box(page), nullptr);
    EXPECT_TRUE(Enabled(page, "cmdfetch"));

    auto& cw = desk.Open<desk::frm_CWM>(2);
    desk.Press(cw, "cmdConnect");
    Click(cw, "cmd_fetch");
    auto& list = desk.Front<desk::frmparafetchlist>();
    EXPECT_EQ(Fetch(list, "10"), "List Fetched");
    EXPECT_EQ(Rows(list), static_cast<int>(Station(2).Lists().at(10)->Signals().size()));
}

}  // namespace
