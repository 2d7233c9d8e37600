// The archive of a Modbus station by clicks, on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QRadioButton>

#include "archive/modbus/ModbusRecords.h"
#include "desk/archive/frmarcmbus.h"
#include "desk/kit/Grid.h"
#include "desk/kit/frmtxrxleds.h"
#include "desk/mail/frmemail.h"
#include "desk/session/frmparalist.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using support::Answer;
using support::Click;
using support::The;
using testing::HasSubstr;
using testing::StartsWith;

struct ModbusArchiveScreen : testing::Test {
    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
    std::int64_t locationID = 0;
    desk::frmarcmbus* page = nullptr;
    const demo::DemoStation station{"O'Brien's <b>Mill</b>", "TeleFlow", "Modbus", "RTU", 1, 5};

    ModbusArchiveScreen() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = true;
    }

    void AddField(const demo::DemoStation& added, const fieldsim::FieldOptions& options = {}) {
        locationID = demo::AddStation(desk.dbconn, added);
        desk.OpenField(options);
    }

    // Presses Collect, and makes the steps meanwhile.
    void Collect(std::vector<support::Script::Step> steps) { desk.Press(*page, "cmdarchive", std::move(steps)); }

    bool Enabled(const char* command) const { return The(*page, command).isEnabled(); }
    std::string Label(const char* name) const { return The<QLabel>(*page, name).text().toStdString(); }
    int Rows() const { return The<desk::Grid>(*page, "mfg1").Rows(); }
    std::int64_t Stored(const char* table) { return desk.Count(table); }
};

TEST_F(ModbusArchiveScreen, ACallOfItsOwnIsDialledReadAndHungUp) {
    demo::DemoStation dialled = station;
    dialled.phoneno = "5550142";
    AddField(dialled);
    page = &desk.Open<desk::frmarcmbus>(nullptr, locationID);
    EXPECT_EQ(page->windowTitle(), "MODBUS Archive - v10.3");
    EXPECT_EQ(Label("lblconsumer"), "O'Brien's <b>Mill</b>");
    EXPECT_EQ(Label("lblhrd"), "Number of Hours");
    EXPECT_FALSE(Enabled("cmd_stop"));
    EXPECT_FALSE(Enabled("cmdsave"));
    Click(*page, "optdly");
    EXPECT_EQ(Label("lblhrd"), "Number of Days");
    EXPECT_EQ(The<QComboBox>(*page, "cmbnum").count(), 31);
    bool lit = false;
    Collect({{"dialled", [this] { return Label("lblmsg").starts_with("Dialing"); }, [] {}},
             {"rows", [this] { return Rows() > 4; },
              [&] {
                  for (const char* const command : {"cmdarchive", "cmdsave", "cmdviewreport", "cmd_email", "cmdClose",
                                                    "opthrly", "optdly", "cmbnum"}) {
                      EXPECT_FALSE(Enabled(command)) << command;
                  }
                  EXPECT_EQ(support::Focus(*page), "cmd_stop");
                  QTest::keyClick(&The(*page, "cmd_stop"), Qt::Key_Escape);
                  QCoreApplication::processEvents();
                  EXPECT_EQ(desk.window.Front(), page);
                  EXPECT_EQ(Label("lblrecno"), "Record (8/40 )");
              }},
             {"lamp", [this] { return The<desk::LineMark>(*page, "TX").Lit(); }, [&] { lit = true; }}});
    EXPECT_TRUE(lit);
    EXPECT_FALSE(desk.Line().InUse());
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_EQ(Answer(*page), "Archive Collected");
    EXPECT_EQ(Rows(), 40);
    EXPECT_EQ(Stored("daily_tf"), 40);
    const auto& grid = The<desk::Grid>(*page, "mfg1");
    EXPECT_EQ(grid.model()->headerData(1, Qt::Horizontal).toString(), "Diff. Pressure ");
    EXPECT_EQ(grid.model()->data(grid.model()->index(0, 1), Qt::TextAlignmentRole).toInt() & Qt::AlignRight,
              Qt::AlignRight);
    EXPECT_THAT(grid.TextMatrix(3, 0).toStdString(), "9/3/2026 6:00:00");

    Click(*page, "cmdsave");
    const auto file = desk.shared.directory / "archive.xls";
    auto& dialog = *page->findChild<QFileDialog*>();
    EXPECT_EQ(dialog.nameFilters(), QStringList("Excel Files(*.xls)"));
    Q_EMIT dialog.fileSelected(QString::fromStdString(file.string()));
    dialog.reject();
    EXPECT_EQ(Answer(*page), "Data Saved...");
    const std::string saved = support::FileText(file);
    EXPECT_THAT(saved, StartsWith("Date                         \tDiff. Pressure \tStatic Pressure \t"));
    EXPECT_THAT(saved, HasSubstr("Battery Voltage  \t\r\n"));
    EXPECT_THAT(saved, HasSubstr("\r\n9/3/2026 6:00:00\t" + grid.TextMatrix(3, 1).toStdString() + "\t"));
    EXPECT_EQ(std::count(saved.begin(), saved.end(), '\n'), 41);
    EXPECT_EQ(std::count(saved.begin(), saved.end(), '\t'), 41 * 9);

    Click(*page, "cmdviewreport");
    EXPECT_EQ(support::Box(*page), nullptr);
    Click(*page, "cmd_email");
    EXPECT_NE(dynamic_cast<desk::frmemail*>(desk.window.Front()), nullptr);
}

TEST_F(ModbusArchiveScreen, ASessionLendsItsLineAndGoesOn) {
    AddField(station);
    auto& paralist = desk.Open<desk::frmparalist>(locationID);
    session::Session& session = *paralist.GetSession();
    const auto open = [&] {
        Click(paralist, "cmd_arc");
        page = dynamic_cast<desk::frmarcmbus*>(desk.window.Front());
        ASSERT_NE(page, nullptr);
    };
    Click(paralist, "cmdConnect");
    open();
    Collect({{"stopped", [this] { return Rows() == 4; },
              [&] {
                  EXPECT_EQ(session.GetState(), session::State::Connected);
                  Click(*page, "cmd_stop");
                  EXPECT_FALSE(Enabled("cmd_stop"));
              }}});
    EXPECT_THAT(Answer(*page), StartsWith("Stopped before the end\n8 of 72 records received, 8 stored."));
    EXPECT_EQ(Stored("hourly_tf"), 8);
    EXPECT_EQ(session.GetState(), session::State::Connected);
    Click(*page, "cmdClose");
    ASSERT_EQ(desk.window.Front(), &paralist);

    // While it is polled the run waits for the answer in hand, and the poll for the run.
    const auto script = std::make_shared<support::Script>(std::vector<support::Script::Step>{
        {"polled", [&] { return session.ValuesAt().has_value(); },
         [&] {
             open();
             Click(*page, "cmdarchive");
             EXPECT_FALSE(Enabled("cmdClose"));
         }},
        {"collected", [&] { return support::Box(*page) != nullptr; },
         [&] {
             EXPECT_EQ(Answer(*page), "Archive Collected");
             EXPECT_EQ(Rows(), 72);
             EXPECT_EQ(Stored("hourly_tf"), 72) << "the table was emptied before";
             Click(*page, "cmdClose");
         }},
        {"polled again", [&, at = desk.clock.Now()] { return session.ValuesAt() > at; },
         [&] { Click(paralist, "cmddisconnect"); }},
    });
    desk.clock.Every(20, [script] { script->Turn(); });
    desk.clock.After(600000, [&] { session.Disconnect(); });
    Click(paralist, "cmdgetdata");
    EXPECT_EQ(script->Missing(), "");
    EXPECT_EQ(session.Requests().failed, 0);
}

TEST_F(ModbusArchiveScreen, AScheduledRunTakesTheLineFromEither) {
    for (const bool guest : {false, true}) {
        SCOPED_TRACE(guest);
        support::ScreenDesk screen{{2026, 3, 9, 9, 1, 58}};
        screen.shared.currentuser = "WARDEN";
        demo::DemoStation due{"Due", "TeleFlow", "Modbus", "RTU", 2, 9};
        due.contracthour = "09:02";
        demo::AddStation(screen.dbconn, due);
        const auto location = demo::AddStation(screen.dbconn, station);
        screen.OpenField();
        desk::frmparalist* paralist = guest ? &screen.Open<desk::frmparalist>(location) : nullptr;
        if (guest) {
            Click(*paralist, "cmdConnect");
        }
        page = &screen.Open<desk::frmarcmbus>(guest ? paralist->GetSession() : nullptr, location);
        screen.clock.After(3000, [&] { screen.scheduler.Tick(); });
        Click(*page, "cmdarchive");
        const std::string said = Answer(*page);
        EXPECT_THAT(said, StartsWith("A scheduled collection has taken the line\n"));
        EXPECT_THAT(said, HasSubstr(" of 72 records received, "));
        EXPECT_GE(Rows(), 4);
        EXPECT_EQ(screen.Count("hourly_tf"), Rows());
        EXPECT_TRUE(Enabled("cmdClose"));
        EXPECT_EQ(support::Focus(*page), "cmdarchive");
        EXPECT_TRUE(screen.Master(1).Bool("sampledtoday"));
        EXPECT_FALSE(screen.lines.InUse());
    }
}

TEST_F(ModbusArchiveScreen, AFailureIsToldAndALineInUseIsLeftAlone) {
    fieldsim::FieldOptions options;
    AddField(station);
    options.faults[locationID].script = {fieldsim::Fault::None, fieldsim::Fault::None, fieldsim::Fault::None,
                                         fieldsim::Fault::None, fieldsim::Fault::Silence};
    desk.OpenField(options);
    page = &desk.Open<desk::frmarcmbus>(nullptr, locationID);
    Click(*page, "cmdarchive");
    // The last box stands before the one of the transaction.
    std::vector<std::string> said;
    for (QMessageBox* box : page->findChildren<QMessageBox*>()) {
        said.push_back(box->text().toStdString());
        box->close();
    }
    EXPECT_THAT(said, testing::ElementsAre("There was No Response from the controller!\nCheck Settings and try again!",
                                           "There was No Response from the controller! Check Settings and try again!\n"
                                           "4 of 72 records received, 4 stored."));
    EXPECT_EQ(Rows(), 4);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    const auto lease = desk.Line().TakeIfFree();
    Click(*page, "cmdarchive");
    EXPECT_THAT(Answer(*page), StartsWith("The line is in use"));
    EXPECT_EQ(support::Box(*page), nullptr);
    EXPECT_TRUE(Enabled("cmdarchive"));
    EXPECT_EQ(Stored("hourly_tf"), 4) << "nothing was begun";
}

}  // namespace
