// A station's lists before and after a change of its program, by clicks and keys on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "desk/session/frmparalist.h"
#include "desk/signals/frmAfterChange.h"
#include "desk/signals/frmBeforeChange.h"
#include "desk/signals/frmDataVerification.h"
#include "desk/signals/frmVerify.h"
#include "session/Session.h"
#include "support/BookCells.h"
#include "support/ScreenDesk.h"

namespace {

using desk::frmAfterChange;
using desk::frmBeforeChange;
using desk::frmVerify;
using fieldsim::Fault;
using fieldsim::Kind;
using fieldsim::Signal;
using namespace support;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int numbers = 20;  // in list 54, in two replies

struct VerificationScreens : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 23, 58, 0}};
    std::int64_t station = 0;
    fieldsim::Field* field = nullptr;
    desk::frmparalist* paralist = nullptr;

    VerificationScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = true;
        station = demo::AddStation(desk.dbconn, {"O'Neill", "CWGFC-AGA3", "BSAP", "", 2, 6, "", 1, {}, "12:00"});
        // A CW speaks BSAP whatever its row says.
        desk.dbconn.Execute("update configdata_master set protocol='Modbus', mode='RTU'");
        OpenField();
    }
    // The far side, on which list 54 holds the numbers 1 to 20 and list 55 a switch.
    void OpenField(const fieldsim::FieldOptions& options = {}) {
        field = &desk.OpenField(options);
        std::vector<Signal> analogs;
        for (int n = 1; n <= numbers; ++n) {
            analogs.push_back({n, "S'" + std::to_string(n) + ".V", "bar", Kind::Float, static_cast<double>(n)});
        }
        List(54) = fieldsim::SignalList(analogs);
        List(55) = fieldsim::SignalList(std::vector<Signal>{{1, "Tap Type", "", Kind::Logical, 1, 4}});
    }
    fieldsim::SignalList& List(int list) { return *field->Station(station)->bsap->Lists().at(list); }

    void OpenLauncher(bool connected) {
        paralist = &desk.Open<desk::frmparalist>(station);
        if (connected) {
            desk.Press(*paralist, "cmdConnect");
        }
        desk.Open<desk::frmDataVerification>(paralist->GetSession());
    }
    template <class Form>
    Form& Front(const char* command) {
        Click(*desk.window.Front(), command);
        return desk.Front<Form>();
    }
    // Fetches a list, makes the steps in its waits, and gives what the operator is told at its end.
    std::string Fetch(const QWidget& page, const QString& list, std::vector<Script::Step> steps = {}) {
        Type(page, list);
        desk.Press(page, "cmdfetch", std::move(steps));
        return Answer(page);
    }
    static void Type(const QWidget& page, const QString& list) {
        auto& field = *The<QComboBox>(page, "txtListNo").lineEdit();
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, list);
    }
    void NextDay() {
        for (const int day = desk.clock.Now().day; desk.clock.Now().day == day;) {
            desk.clock.Run(1000);
        }
    }
    static int Rows(const QWidget& page) { return support::Rows(page, "signalsGrid"); }
    // The text of a label that is in sight; "-" when it is not.
    static std::string Label(const QWidget& page, const char* name) {
        return Seen(page, name) ? Text(page, name) : "-";
    }
    // Presses a command that writes a file, and names it. Gives what the operator is told.
    static std::string Save(const QWidget& page, const char* command, const std::filesystem::path& file,
                            const char* kind) {
        Click(page, command);
        EXPECT_EQ(PickFile(page, file), kind);
        return Answer(page);
    }
    static std::string Verify(const QWidget& page) {
        Click(page, "cmdVerify");
        EXPECT_TRUE(QTest::qWaitFor([&page] { return Box(page) != nullptr; }));
        return Answer(page);
    }
};

TEST_F(VerificationScreens, AChangedProgramIsComparedWithWhatItWas) {
    OpenLauncher(true);
    auto& before = Front<frmBeforeChange>("cmdBefore");
    EXPECT_EQ(Label(before, "lblDate") + Label(before, "Label4"), "--");
    EXPECT_EQ(Fetch(before, "54",
                    {{"rows", [&] { return Rows(before) > 0; },
                      [&] {
                          EXPECT_EQ(Usable(before, {"txtListNo", "cmdfetch", "cmdView", "cmd_save", "cmdClose"}), "");
                          QTest::keyClick(&before, Qt::Key_Escape);
                          EXPECT_EQ(desk.window.Front(), &before);
                      }}}),
              "List Fetched");
    EXPECT_EQ(Label(before, "lblshown"), "List 54, fetched and stored");
    EXPECT_EQ(Fetch(before, "055"), "List Fetched");
    EXPECT_EQ(Label(before, "lblDate"), "09/03/2026");
    EXPECT_EQ(field->Station(station)->bsap->SignOns(), 3);  // with the password, each time
    Click(before, "cmdClose");

    // What the engineer does to the program.
    List(54).SetValue("S'2.V", 2.5);
    List(54).Replace("S'3.V", {3, "S'3.V", "", Kind::Text, 0, -1, "HIGH"});
    List(55).SetValue("Tap Type", 0);
    NextDay();
    auto& after = Front<frmAfterChange>("cmdAfterChange");
    EXPECT_EQ(Label(after, "lblFD"), "09/03/2026");
    EXPECT_EQ(Label(after, "lblL") + Label(after, "lblLD"), "--");
    auto& lists = The<QComboBox>(after, "txtListNo");
    EXPECT_EQ(lists.itemText(0) + lists.itemText(1), "5455");
    EXPECT_EQ(Fetch(after, "54"), "List Fetched");
    EXPECT_EQ(Fetch(after, "55"), "List Fetched");
    EXPECT_EQ(Label(after, "lblFD") + Label(after, "lblLD"), "09/03/202610/03/2026");
    Click(after, "cmdClose");

    auto& verify = Front<frmVerify>("cmdDataVerification");
    EXPECT_EQ(Usable(verify, {"cmdExcel", "cmdSvExcel"}), "");
    EXPECT_EQ(Verify(verify), "Verification complete");
    EXPECT_EQ(Label(verify, "lblsummary"), "3 of 21 rows differ.");
    const auto shown = Lines(verify, "signalsGrid");
    ASSERT_EQ(shown.size(), 22U);
    EXPECT_EQ(shown[1], "1|54|S'1.V (Analog)|bar|1|1|0.00000|");
    EXPECT_EQ(shown[2], "2|54|S'2.V (Analog)|bar|2|2.5|0.50000|differs");
    EXPECT_EQ(shown[3], "3|54|S'3.V (Analog)|bar|3|HIGH||differs");
    EXPECT_EQ(shown[21], "21|55|Tap Type (Logical Alarm)||PIPE|FLANGE||differs");
    for (int row = 0; row < 21; ++row) {
        const auto cell = The<desk::Grid>(verify, "signalsGrid").model()->index(row, 5);
        EXPECT_EQ(cell.data(Qt::BackgroundRole).isValid(), Cell(verify, "signalsGrid", row, 7) == "differs") << row;
    }
    const auto book = desk.shared.directory / "O'Neill.xlsx";
    EXPECT_EQ(Save(verify, "cmdExcel", book, "Excel Files(*.xlsx)"), "New file is created...");
    EXPECT_THAT(BookCells(book),
                Contains("FFFF0000|n 3 General|n 54 General|s S'3.V (Analog)|s bar|n 3 General|s HIGH"));
    const auto text = desk.shared.directory / "O'Neill.xls";
    EXPECT_EQ(Save(verify, "cmdSvExcel", text, "Excel Files(*.xls)"), "New File is Created..");
    EXPECT_THAT(FileText(text), HasSubstr("\r\n2\t54\tS'2.V (Analog)\tbar\t2\t2.5\t0.50000\t\r\n"));
}

TEST_F(VerificationScreens, StoredListsAreShownWithTheirDates) {
    OpenLauncher(false);
    auto* before = &Front<frmBeforeChange>("cmdBefore");
    Click(*before, "cmdView");
    EXPECT_EQ(Answer(*before), "List is not collected");
    Type(*before, "5x4");
    QTest::keyClick(The<QComboBox>(*before, "txtListNo").lineEdit(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(Text(*before, "txtListNo"), "54");
    EXPECT_EQ(Focus(*before), "cmdfetch");  // and nothing is replaced yet
    EXPECT_EQ(Fetch(*before, "54"), "List Fetched");
    EXPECT_FALSE(desk.ports.PortOpen());
    Click(*before, "cmdClose");

    before = &Front<frmBeforeChange>("cmdBefore");
    EXPECT_EQ(Answer(*before), "Before change data is already collected.....");
    EXPECT_EQ(Label(*before, "lblDate"), "09/03/2026");
    EXPECT_TRUE(Enabled(*before, "cmdfetch"));  // nothing is barred
    Type(*before, "54");
    Click(*before, "cmdView");
    EXPECT_EQ(Rows(*before), numbers);
    EXPECT_EQ(Cell(*before, "signalsGrid", 1, 1), "S'2.V (Analog)");
    EXPECT_EQ(Label(*before, "lblshown"), "List 54, as it is stored");
    Click(*before, "cmdClose");
    auto& after = Front<frmAfterChange>("cmdAfterChange");
    EXPECT_EQ(Box(after), nullptr);
    Type(after, "54");
    Click(after, "cmdView");  // the other side
    EXPECT_EQ(Answer(after), "List is not collected");
}

// How a fetch ends otherwise: nothing is stored, and what was stays.
TEST_F(VerificationScreens, AListThatDoesNotComeWholeIsNotStored) {
    OpenLauncher(false);
    auto& page = Front<frmBeforeChange>("cmdBefore");
    EXPECT_EQ(Fetch(page, "54"), "List Fetched");
    NextDay();
    const auto before = desk.dbconn.Texts("select para_value from tblBeforeChange");
    const auto expectNothing = [&](const std::string& told, const std::string& message) {
        EXPECT_THAT(told, StartsWith(message));
        EXPECT_EQ(desk.dbconn.Texts("select para_value from tblBeforeChange"), before) << message;
        EXPECT_EQ(desk.dbconn.Texts("select before_date from tblDateTime"), std::vector<std::string>{"2026-03-09"})
            << message;
        EXPECT_FALSE(desk.ports.PortOpen() || desk.lines.InUse()) << message;
        EXPECT_EQ(Usable(page, {"cmd_save", "cmdfetch", "cmdClose"}), "cmdfetch cmdClose ") << message;
    };
    const auto rows = [&] { return Rows(page) > 0; };
    EXPECT_EQ(Fetch(page, "256"), "Enter the number of a list, from 0 to 255");
    expectNothing(Fetch(page, "7"), "List Not Found");
    fieldsim::FieldOptions options;  // silent at the second reply
    auto& script = options.faults[station].script;
    script.resize(4, Fault::None);
    script.resize(40, Fault::Silence);
    OpenField(options);
    expectNothing(Fetch(page, "54"), "Error Occured in Communication");
    OpenField();
    expectNothing(Fetch(page, "54", {{"rows", rows, [&] { Click(page, "cmd_stop"); }}}),
                  "List Fetched up to the stop: ");
    EXPECT_EQ(Label(page, "lblshown"), "List 54, not stored");
    expectNothing(Fetch(page, "54", {{"rows", rows, [&] { desk.Line(2).EndConversation("The program ends"); }}}),
                  "The line is gone: The program ends\nNothing was stored.");
    desk.dbconn.Execute("create trigger full before insert on tblBeforeChange begin select raise(abort,'disk'); end");
    expectNothing(Fetch(page, "54"), "List Fetched\nIt could not be stored: disk");
    EXPECT_THAT(desk.RtuErr(), HasSubstr("disk"));
    desk.dbconn.Execute("drop trigger full");
    EXPECT_EQ(Fetch(page, "54"), "List Fetched");
    EXPECT_EQ(Label(page, "lblDate"), "10/03/2026");
}

}  // namespace
