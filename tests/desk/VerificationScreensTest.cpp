// A station's lists before and after a change of its program, by clicks and keys on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>

#include "desk/kit/Grid.h"
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
using fieldsim::Kind;
using fieldsim::Signal;
using support::Answer;
using support::Click;
using support::The;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::int64_t twinID = 1;
constexpr std::int64_t dialledID = 2;
constexpr core::DateTime start{2026, 3, 9, 23, 58, 0};
constexpr int numbers = 20;  // in list 54, in two replies

struct VerificationScreens : testing::Test {
    support::ScreenDesk desk{start};
    fieldsim::Field* field = nullptr;
    desk::frmparalist* paralist = nullptr;

    VerificationScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = true;
        demo::AddStation(desk.dbconn, {"O'Neill", "CWGFC-AGA3", "BSAP", "", 2, 6, "", 1, {}, "12:00"});
        // A CW speaks BSAP whatever its row says.
        desk.dbconn.Execute("update configdata_master set protocol='Modbus', mode='RTU'");
        demo::AddStation(desk.dbconn, {"Hill Farm", "TeleFlow+", "BSAP", "", 1, 1, "5550142"});
    }

    // The far side, on which list 54 of both stations holds the numbers 1 to 20 and list 55 what there is else.
    void OpenField(const fieldsim::FieldOptions& options = {}) {
        field = &desk.OpenField(options);
        for (const std::int64_t station : {twinID, dialledID}) {
            std::vector<Signal> analogs;
            for (int n = 1; n <= numbers; ++n) {
                analogs.push_back({n, "S'" + std::to_string(n) + ".V", "bar", Kind::Float, static_cast<double>(n)});
            }
            List(station, 54) = fieldsim::SignalList(analogs);
            List(station, 55) =
                fieldsim::SignalList(std::vector<Signal>{{1, "Tap Type", "", Kind::Logical, 1, 4},
                                                         {2, "Door Position", "", Kind::Logical, 1},
                                                         {3, "SITE.NAME.", "", Kind::Text, 0, -1, "KOL"},
                                                         {4, "LAST", "", Kind::Float, 0.25, 50}});
        }
    }
    fieldsim::SignalList& List(std::int64_t station, int list) {
        return *field->Station(station)->bsap->Lists().at(list);
    }
    // What the engineer does to the program.
    void ChangeTheProgram() {
        auto& analogs = List(twinID, 54);
        analogs.SetValue("S'2.V", 2.5);
        analogs.Replace("S'3.V", {3, "S'3.V", "", Kind::Text, 0, -1, "HIGH"});
        analogs.Insert(5, {5, "NEW", "", Kind::Float, 99});
        analogs.Remove("S'18.V");
        auto& others = List(twinID, 55);
        others.SetValue("Tap Type", 0);
        others.Replace("Door Position", {2, "DOOR", "", Kind::Float, 1});
        others.Vacate("SITE.NAME.");
        others.Remove("LAST");
    }

    desk::frmDataVerification& Launcher(std::int64_t station, bool connected) {
        paralist = &desk.Open<desk::frmparalist>(station);
        if (connected) {
            Click(*paralist, "cmdConnect");
            EXPECT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
        }
        return desk.Open<desk::frmDataVerification>(paralist->GetSession());
    }
    template <class Form>
    Form& Front(const char* command) {
        Click(*desk.window.Front(), command);
        auto* form = dynamic_cast<Form*>(desk.window.Front());
        if (form == nullptr) {
            throw std::runtime_error("another page is in front");
        }
        return *form;
    }
    // Fetches a list, makes the steps in its waits, and gives what the operator is told at its end.
    std::string Fetch(const QWidget& page, const QString& list, std::vector<support::Script::Step> steps = {}) {
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
    static desk::Grid& Rows(const QWidget& page) { return The<desk::Grid>(page, "signalsGrid"); }
    // The text of a label that is in sight; "-" when it is not.
    static std::string Label(const QWidget& page, const char* name) {
        const auto& label = The<QLabel>(page, name);
        return label.isVisible() ? label.text().toStdString() : "-";
    }
    static bool Enabled(const QWidget& page, const char* name) { return The(page, name).isEnabled(); }
    std::int64_t Stored(const char* table = "tblBeforeChange") { return desk.Count(table); }

    // Presses a command that writes a file, and names it. Gives what the operator is told.
    std::string Save(const QWidget& page, const char* command, const std::filesystem::path& file, const char* filter,
                     QMessageBox::StandardButton button = QMessageBox::Ok) {
        Click(page, command);
        auto& dialog = *page.findChild<QFileDialog*>();
        EXPECT_EQ(dialog.nameFilters(), QStringList(filter));
        Q_EMIT dialog.fileSelected(QString::fromStdString(file.string()));
        dialog.reject();
        QCoreApplication::sendPostedEvents(&dialog, QEvent::DeferredDelete);
        return Answer(page, button);
    }
    static std::string Verify(const QWidget& page) {
        Click(page, "cmdVerify");
        while (support::Box(page) == nullptr) {
            QCoreApplication::processEvents();
        }
        return Answer(page);
    }
};

// What the comparison is to show: number, list, name, unit, before, after, difference; "!" in front of those that
// differ.
std::vector<std::string> Expected() {
    std::vector<std::string> rows{"1|54|S'1.V (Analog)|bar|1|1|0.00000", "!2|54|S'2.V (Analog)|bar|2|2.5|0.50000",
                                  "!3|54|S'3.V (Analog)|bar|3|HIGH", "4|54|S'4.V (Analog)|bar|4|4|0.00000",
                                  "!5|54|S'5.V (Analog)|bar|5|99|94.00000"};
    const auto row = [](int n, int after, const char* difference) {
        const std::string number = std::to_string(n);
        return number + "|54|S'" + number + ".V (Analog)|bar|" + number + "|" + std::to_string(after) + "|" +
               difference;
    };
    for (int n = 6; n <= 18; ++n) {  // against their neighbours
        rows.push_back("!" + row(n, n - 1, "-1.00000"));
    }
    rows.push_back(row(19, 19, "0.00000"));
    rows.push_back(row(20, 20, "0.00000"));
    rows.push_back("!21|55|Tap Type (Logical Alarm)||PIPE|FLANGE");
    rows.push_back("!22|55|Door Position (Logical)||OPEN|1|#VALUE!");
    rows.push_back("!23|55|SITE.NAME.||KOL|");
    return rows;
}

TEST_F(VerificationScreens, AChangedProgramIsComparedWithWhatItWas) {
    OpenField();
    Launcher(twinID, true);
    auto& before = Front<frmBeforeChange>("cmdBefore");
    EXPECT_EQ(before.windowTitle(), "Before Change - v10.3");
    EXPECT_EQ(The<QComboBox>(before, "cmbnodename").currentText(), "O'Neill");
    EXPECT_EQ(support::Box(before), nullptr);
    EXPECT_EQ(Label(before, "lblDate") + Label(before, "Label4"), "--");
    EXPECT_EQ(Fetch(before, "54",
                    {{"rows", [&] { return Rows(before).Rows() > 0; },
                      [&] {
                          for (const char* command : {"txtListNo", "cmdfetch", "cmdView", "cmd_save", "cmdClose"}) {
                              EXPECT_FALSE(Enabled(before, command)) << command;
                          }
                          QTest::keyClick(&before, Qt::Key_Escape);
                          EXPECT_EQ(desk.window.Front(), &before);
                      }}}),
              "List Fetched");
    EXPECT_EQ(Label(before, "lblshown"), "List 54, fetched and stored");
    EXPECT_EQ(Fetch(before, "055"), "List Fetched");
    EXPECT_EQ(Label(before, "lblDate"), "09/03/2026");
    EXPECT_EQ(Stored(), numbers + 4);
    EXPECT_EQ(
        desk.dbconn.Texts("select parameter_name||'='||para_value||' '||unit from tblBeforeChange where list_no=55 "
                          "or sr_no=20 order by list_no,sr_no"),
        (std::vector<std::string>{"S'20.V (Analog)=20 bar", "Tap Type (Logical Alarm)=PIPE ",
                                  "Door Position (Logical)=OPEN ", "SITE.NAME.=KOL ", "LAST (System Signal)=0.25 "}));
    EXPECT_EQ(field->Station(twinID)->bsap->SignOns(), 3);  // with the password, each time
    EXPECT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
    Click(before, "cmdClose");

    ChangeTheProgram();
    NextDay();
    auto& after = Front<frmAfterChange>("cmdAfterChange");
    EXPECT_EQ(Label(after, "lblFD"), "09/03/2026");
    EXPECT_EQ(Label(after, "lblL") + Label(after, "lblLD"), "--");
    auto& lists = The<QComboBox>(after, "txtListNo");
    EXPECT_EQ(lists.itemText(0) + lists.itemText(1), "5455");
    EXPECT_EQ(Fetch(after, "54"), "List Fetched");
    EXPECT_EQ(Fetch(after, "55"), "List Fetched");
    EXPECT_EQ(Label(after, "lblFD") + Label(after, "lblLD"), "09/03/202610/03/2026");
    EXPECT_EQ(Rows(after).TextMatrix(2, 1), "Signal Not Found");
    EXPECT_EQ(Stored("tblAfterChange"), numbers + 3);
    Click(after, "cmdClose");

    auto& verify = Front<frmVerify>("cmdDataVerification");
    EXPECT_FALSE(Enabled(verify, "cmdExcel") || Enabled(verify, "cmdSvExcel"));
    EXPECT_EQ(Verify(verify), "Verification complete");
    EXPECT_EQ(Label(verify, "lblsummary"),
              "19 of 23 rows differ. Lists with rows (before, after) that are not compared: 55 (4, 3).");
    const desk::Grid& grid = Rows(verify);
    std::vector<std::string> shown;
    for (int row = 0; row < grid.Rows(); ++row) {
        QStringList cells;
        int coloured = 0;
        for (int column = 0; column < 7; ++column) {
            const QString text = grid.TextMatrix(row, column);
            column == 6 && text.isEmpty() ? cells : cells << text;
            coloured += grid.model()->index(row, column).data(Qt::BackgroundRole).isValid() ? 1 : 0;
        }
        const bool differs = grid.TextMatrix(row, 7) == "differs";
        EXPECT_EQ(coloured, differs ? 7 : 0) << row;
        shown.push_back((differs ? "!" : "") + cells.join('|').toStdString());
    }
    EXPECT_EQ(shown, Expected());

    const auto book = desk.shared.directory / "O'Neill.xlsx";
    EXPECT_EQ(Save(verify, "cmdExcel", book, "Excel Files(*.xlsx)"), "New file is created...");
    EXPECT_FALSE(The(verify, "Frame2").isVisible());
    const auto cells = support::BookCells(book);
    ASSERT_EQ(cells.size(), 25U);
    EXPECT_EQ(cells[0], "sheet Data Varification Report");
    EXPECT_EQ(cells[3],
              "FFFF0000|n 2 General|n 54 General|s S'2.V (Analog)|s bar|n 2 General|n 2.5 General|n 0.5 0.00000");
    EXPECT_EQ(cells[4], "FFFF0000|n 3 General|n 54 General|s S'3.V (Analog)|s bar|n 3 General|s HIGH");
    for (std::size_t row = 0; row < shown.size(); ++row) {
        EXPECT_THAT(cells[row + 2], StartsWith(shown[row].front() == '!' ? "FFFF0000|" : "FF000000|"));
    }
    const auto text = desk.shared.directory / "O'Neill.xls";
    EXPECT_EQ(Save(verify, "cmdSvExcel", text, "Excel Files(*.xls)"), "New File is Created..");
    std::string lines =
        " Sr. No.     |List No| Signal Name                                 | Units                 |"
        " Before Value              | After Value              |Difference         |\r\n";
    for (const std::string& row : Expected()) {
        lines += row.substr(row.front() == '!' ? 1 : 0) + "|\r\n";
    }
    std::replace(lines.begin(), lines.end(), '|', '\t');
    EXPECT_EQ(support::FileText(text), lines);
}

TEST_F(VerificationScreens, StoredListsAreShownWithTheirDates) {
    OpenField();
    Launcher(dialledID, false);
    auto* before = &Front<frmBeforeChange>("cmdBefore");
    Click(*before, "cmdView");
    EXPECT_EQ(Answer(*before), "List is not collected");
    for (const char* list : {"", "256", "999"}) {
        EXPECT_EQ(Fetch(*before, list), "Enter the number of a list, from 0 to 255") << list;
    }
    Type(*before, "5x4");
    EXPECT_EQ(The<QComboBox>(*before, "txtListNo").currentText(), "54");
    QTest::keyClick(The<QComboBox>(*before, "txtListNo").lineEdit(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(support::Focus(*before), "cmdfetch");  // and nothing is replaced yet
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_EQ(Fetch(*before, "54"), "List Fetched");
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_FALSE(desk.Line().InUse());
    const auto file = desk.shared.directory / "list.xls";
    EXPECT_EQ(Save(*before, "cmd_save", file, "Excel Files(*.xls)"), "Data Saved...");
    EXPECT_THAT(support::FileText(file), HasSubstr("\r\n20\tS'20.V (Analog)\t20\tbar\t\r\n"));
    Type(*before, "9");
    Click(*before, "cmdView");
    EXPECT_EQ(Answer(*before), "List is not collected");
    EXPECT_EQ(Rows(*before).Rows(), 0);
    Type(*before, "54");
    Click(*before, "cmdView");
    EXPECT_EQ(Rows(*before).Rows(), numbers);
    EXPECT_EQ(Rows(*before).TextMatrix(1, 1), "S'2.V (Analog)");
    EXPECT_EQ(Label(*before, "lblshown"), "List 54, as it is stored");
    EXPECT_TRUE(Enabled(*before, "cmd_save"));
    Click(*before, "cmdClose");

    before = &Front<frmBeforeChange>("cmdBefore");
    EXPECT_EQ(Answer(*before), "Before change data is already collected.....");
    EXPECT_EQ(Label(*before, "lblDate"), "09/03/2026");
    EXPECT_TRUE(Enabled(*before, "cmdfetch"));  // nothing is barred
    Click(*before, "cmdClose");
    auto& after = Front<frmAfterChange>("cmdAfterChange");
    EXPECT_EQ(support::Box(after), nullptr);
    Type(after, "54");
    Click(after, "cmdView");  // the other side
    EXPECT_EQ(Answer(after), "List is not collected");
}

// How a fetch ends otherwise: nothing is stored, and what was stays.
TEST_F(VerificationScreens, AListThatDoesNotComeWholeIsNotStored) {
    OpenField();
    Launcher(twinID, false);
    auto& page = Front<frmBeforeChange>("cmdBefore");
    EXPECT_EQ(Fetch(page, "54"), "List Fetched");
    const auto before = desk.dbconn.Texts("select para_value from tblBeforeChange");
    const auto expectNothing = [&](const std::string& told, const std::string& message, const std::string& trace) {
        EXPECT_THAT(told, StartsWith(message)) << trace;
        EXPECT_EQ(desk.dbconn.Texts("select para_value from tblBeforeChange"), before) << trace;
        EXPECT_EQ(desk.dbconn.Texts("select before_date from tblDateTime"), std::vector<std::string>{"2026-03-09"})
            << trace;
        EXPECT_EQ(desk.Count("tblListNo"), 1) << trace;
        EXPECT_FALSE(Enabled(page, "cmd_save") || desk.ports.PortOpen() || desk.Line().InUse()) << trace;
        EXPECT_TRUE(Enabled(page, "cmdfetch") && Enabled(page, "cmdClose")) << trace;
    };
    NextDay();
    expectNothing(Fetch(page, "7"), "List Not Found", "no such list");

    using fieldsim::Fault;
    // The poll, the sign-on and the version come first, then the two replies of the list.
    for (std::size_t step = 0; step < 5; ++step) {
        for (const Fault fault : {Fault::Silence, Fault::Cut}) {
            fieldsim::FieldOptions options;
            auto& script = options.faults[twinID].script;
            script.resize(step, Fault::None);
            script.resize(step + 40, fault);
            OpenField(options);
            expectNothing(Fetch(page, "54"), step < 3 ? "RTU Dead" : "Error Occured in Communication",
                          "step " + std::to_string(step) + (fault == Fault::Cut ? " cut" : " silent"));
        }
    }

    OpenField();
    expectNothing(
        Fetch(page, "54", {{"rows", [&] { return Rows(page).Rows() > 0; }, [&] { Click(page, "cmd_stop"); }}}),
        "List Fetched up to the stop: ", "stop");
    EXPECT_THAT(Label(page, "lblshown"), "List 54, not stored");
    expectNothing(
        Fetch(page, "54", {{"called", [&] { return desk.ports.PortOpen(); }, [&] { Click(page, "cmd_stop"); }}}),
        "List Fetched up to the stop: 0", "stop before the first reply");
    expectNothing(Fetch(page, "54",
                        {{"rows", [&] { return Rows(page).Rows() > 0; },
                          [&] { desk.Line().EndConversation("The program ends"); }}}),
                  "The line is gone: The program ends\nNothing was stored.", "end");
    {
        const auto held = desk.Line().TakeIfFree();
        Type(page, "54");
        Click(page, "cmdfetch");
        EXPECT_THAT(Answer(page), StartsWith("The line is in use"));
        EXPECT_EQ(desk.dbconn.Texts("select para_value from tblBeforeChange"), before);
    }
    desk.dbconn.Execute("create trigger full before insert on tblBeforeChange begin select raise(abort,'disk'); end");
    expectNothing(Fetch(page, "54"), "List Fetched\nIt could not be stored: disk", "database");
    EXPECT_THAT(desk.RtuErr(), HasSubstr("disk"));
    desk.dbconn.Execute("drop trigger full");
    EXPECT_EQ(Fetch(page, "54"), "List Fetched");
    EXPECT_EQ(Label(page, "lblDate"), "10/03/2026");
}

// A scheduled collection that comes due in a fetch waits, and is made right behind it.
TEST_F(VerificationScreens, AScheduledCollectionWaitsForAFetch) {
    OpenField();
    desk.StartTicking();
    desk.Line().WhenReleased([this] { desk.clock.After(1, [this] { desk.scheduler.Serve(); }); });
    std::uint64_t tick = 0;
    for (const bool connected : {false, true}) {
        Launcher(twinID, connected);
        auto& page = Front<frmBeforeChange>("cmdBefore");
        Answer(page);  // that it is collected, the second time
        tick = (desk.clock.Elapsed() / 60000 + 1) * 60000;
        const auto at = core::FromSeconds(core::ToSeconds(start) + static_cast<std::int64_t>(tick) / 1000);
        desk.dbconn.Execute("update configdata_master set contracthour=?,sampledtoday=0 where locationID=?",
                            {core::TimeText(at).substr(0, 5), dialledID});
        desk.clock.Run(tick - desk.clock.Elapsed() - 400);
        EXPECT_EQ(Fetch(page, "54",
                        {{"due", [&] { return desk.clock.Elapsed() > tick + 100; },
                          [&] {
                              EXPECT_TRUE(desk.Line().InUse());
                              EXPECT_TRUE(desk.scheduler.InHand().empty());
                              EXPECT_FALSE(desk.Master(dialledID).Bool("sampledtoday"));
                          }}}),
                  "List Fetched");
        EXPECT_EQ(Rows(page).Rows(), numbers);
        desk.clock.Run(30000);  // no tick lies in these
        EXPECT_TRUE(desk.Master(dialledID).Bool("sampledtoday")) << connected << desk.RtuErr();
        Click(page, "cmdClose");
    }
}

TEST_F(VerificationScreens, FilesOfAComparison) {
    OpenField();
    Launcher(twinID, false);
    auto& verify = Front<frmVerify>("cmdDataVerification");
    EXPECT_EQ(Verify(verify), "Verification complete");
    EXPECT_EQ(Label(verify, "lblsummary"), "No list of this station is collected.");
    const auto& directory = desk.shared.directory;
    EXPECT_EQ(Save(verify, "cmdExcel", directory / "none.xls", "Excel Files(*.xlsx)"), "New file is created...");
    EXPECT_EQ(support::BookCells(directory / "none.xls.xlsx").size(), 2U);  // the ending that its content has
    EXPECT_THAT(Save(verify, "cmdExcel", directory / "none.xls", "Excel Files(*.xlsx)", QMessageBox::No),
                HasSubstr("none.xls.xlsx exists. Replace it?"));
    EXPECT_THAT(Save(verify, "cmdExcel", directory / "gone" / "a.xlsx", "Excel Files(*.xlsx)"), HasSubstr("a.xlsx: "));
    EXPECT_THAT(Save(verify, "cmdSvExcel", directory / "gone" / "a.xls", "Excel Files(*.xls)"), HasSubstr("a.xls: "));
}

}  // namespace
