// Whole sessions by clicks and keys, in front of the simulated field on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "desk/session/ParameterTabs.h"
#include "desk/session/frmparalist.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct SessionStory : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
    std::int64_t locationID = 0;
    fieldsim::Field* field = nullptr;
    desk::frmparalist* page = nullptr;
    session::Session* session = nullptr;

    SessionStory() {
        desk.dbconn.Execute(
            "insert into users(userid, firstname, readsec, writesec) values('ann','ann',6,1),('bob','bob',6,6)");
        desk.shared.currentuser = "bob";
        desk.shared.rights.rightOnline = desk.shared.rights.rightSetup = true;
    }

    void Open(const demo::DemoStation& station, fieldsim::FieldOptions options = {}) {
        locationID = demo::AddStation(desk.dbconn, station);
        options.alarmCycle = 240;
        field = &desk.OpenField(options);
        page = &desk.Open<desk::frmparalist>(locationID);
        session = page->GetSession();
        ASSERT_NE(session, nullptr);
    }

    // Connects, then makes the steps while the station is polled, and ends with the last of them.
    void Run(std::vector<Script::Step> steps) {
        desk.Press(*page, "cmdConnect");
        ASSERT_EQ(Label("lblmsg"), "Connected");
        desk.clock.After(600000, [&] { session->Disconnect(); });
        desk.Press(*page, "cmdgetdata", std::move(steps));
        EXPECT_EQ(session->GetState(), session::State::Idle);
    }

    bool Polled() const { return session->ValuesAt().has_value() && !session->WritePending(); }
    bool Enabled(const char* command) const { return support::Enabled(*page, command); }
    bool Seen(const char* control) const { return support::Seen(*page, control); }
    std::string Label(const char* name) const { return Text(*page, name); }
    session::RowPlace Place(const char* aga, const char* description) const {
        return session->Parameters().Find(aga, description).value();
    }
    std::string Cell(const char* aga, const char* description, int column) const {
        const auto place = Place(aga, description);
        return The<desk::ParameterTabs>(*page, "gridtab").Cell(place.group, place.row, column).toStdString();
    }
    // Enter on a row.
    void Choose(const char* aga, const char* description) const {
        auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
        const auto place = Place(aga, description);
        tabs.BringForward(place.group);
        desk::Grid& grid = tabs.GridOf(place.group);
        grid.setFocus();
        grid.SelectRow(tabs.GridRow(place.group, place.row));
        QTest::keyClick(&grid, Qt::Key_Return);
    }
    void Enter(const QString& text) const {
        Type(*page, "txtvalue", text);
        QTest::keyClick(&The(*page, "txtvalue"), Qt::Key_Return);
    }
    std::vector<std::string> Writes() const { return field->Station(locationID)->written->WritesText(); }
    std::vector<std::string> Trail() { return desk.dbconn.Texts("select * from TTS_table"); }
};

TEST_F(SessionStory, ATeleFlowIsDialledWatchedWrittenAndLeft) {
    fieldsim::FieldOptions options;
    options.modems[1] = {{"NO CARRIER", 4000}, {"CONNECT 9600", 5000}};
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5, "4170253"}, options);
    EXPECT_FALSE(Seen("cmdCalib"));
    const auto polled = [this] { return Polled(); };
    Run({{"the commands of a poll", polled,
          [&] {
              EXPECT_EQ(Usable(*page, {"cmdConnect", "cmdgetdata", "cmdClose", "cmddisconnect"}), "cmddisconnect ");
              EXPECT_THAT(Label("lbldatetime"), HasSubstr("RTU Date : 9/3/2026\nRTU Time :9:"));
              EXPECT_THAT(Label("lblbatvolts"), HasSubstr("System Bat. Voltage :"));
              EXPECT_THAT(Label("lblage"), "Values 0 s old");
              EXPECT_THAT(Label("lblrequests"), HasSubstr(" good, 0 failed"));
          }},
         {"a user of a lower level", polled,
          [&] {
              desk.shared.currentuser = "ann";
              Choose("KEYPAD", "Keypad N2");
              Enter("1.25");
              EXPECT_EQ(Label("lblreq"), "Could not set. Lower user level.");
              EXPECT_FALSE(Seen("frmvalue"));
              desk.shared.currentuser = "bob";
              desk.shared.rights.rightSetup = false;
              Choose("KEYPAD", "Keypad N2");
              EXPECT_FALSE(Seen("frmvalue"));
              EXPECT_EQ(Label("lblreq"), "User Not Granted Configuration Rights");
              desk.shared.rights.rightSetup = true;
          }},
         {"no value", polled,
          [&] {
              Choose("KEYPAD", "Keypad N2");
              EXPECT_EQ(Label("Label1"), "Keypad N2");
              EXPECT_FALSE(The(*page, "gridtab").isEnabled());
              Enter("");
              EXPECT_EQ(Answer(*page), "Enter Proper Data");
              EXPECT_TRUE(Seen("frmvalue"));
              EXPECT_EQ(Focus(*page), "txtvalue");
              QTest::keyClick(&The(*page, "txtvalue"), Qt::Key_Escape);
              EXPECT_FALSE(Seen("frmvalue"));
          }},
         {"a value", polled,
          [&] {
              Choose("KEYPAD", "Keypad N2");
              Enter("1.25");
              EXPECT_EQ(Label("lblreq"), "Write Request Pending.....");
              EXPECT_EQ(Cell("KEYPAD", "Keypad N2", 2), "1.250000");
              EXPECT_THAT(Cell("KEYPAD", "Keypad N2", 3), HasSubstr("pending"));
              Choose("KEYPAD", "Keypad CO2");
              EXPECT_FALSE(Seen("frmvalue")) << "one at a time";
          }},
         {"a switch", [&] { return Polled() && Cell("KEYPAD", "Keypad N2", 3).find("pending") == std::string::npos; },
          [&] {
              EXPECT_EQ(Label("lblreq"), "Keypad N2: confirmed");
              EXPECT_EQ(Cell("KEYPAD", "Keypad N2", 2), "1.250000");
              Choose("HEALTH", "Time Sync");
              auto& value = The<QLineEdit>(*page, "txtvalue");
              EXPECT_TRUE(value.isReadOnly());
              const QString before = value.text();
              Click(*page, "cmdtoggle");
              EXPECT_NE(value.text(), before);
              Click(*page, "cmdwrite");
          }},
         {"several values", polled,
          [&] {
              Click(*page, "chkMultiple");
              auto& grid = The<desk::Grid>(*page, "gcMultiGrid");
              ASSERT_TRUE(grid.isVisible());
              EXPECT_FALSE(Enabled("cmdMulWrite"));
              grid.SelectRow(0);
              QTest::keyClick(&grid, Qt::Key_Return);
              Enter("93.5");
              EXPECT_THAT(Writes(), Not(Contains(HasSubstr("= 93.5"))));
              Click(*page, "cmdMulWrite");
              EXPECT_FALSE(grid.isVisible());
          }},
         {"the clock", polled,
          [&] {
              Click(*page, "cmdtime");
              EXPECT_FALSE(Enabled("cmdtime"));
          }},
         {"the alarm colours",
          [&] {
              const auto& alarms = session->Alarms();
              return Polled() && !session->TimePending() &&
                     std::any_of(alarms.begin(), alarms.end(),
                                 [](const auto& live) { return live.state == session::AlarmState::HiHi; });
          },
          [&] {
              auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
              for (const auto& live : session->Alarms()) {
                  const bool alarm = live.state != session::AlarmState::Normal;
                  const desk::Grid& grid = tabs.GridOf(live.place.group);
                  const auto cell = grid.model()->index(tabs.GridRow(live.place.group, live.place.row), 2);
                  const auto colour = cell.data(Qt::BackgroundRole).value<QColor>();
                  EXPECT_EQ(colour == QColor::fromRgb(session::AlarmColour(live.state)), alarm);
                  EXPECT_THAT(tabs.Cell(live.place.group, live.place.row, 3).toStdString(),
                              HasSubstr(session::AlarmWord(live.state)));
              }
          }},
         {"end", polled, [this] { Click(*page, "cmddisconnect"); }}});
    EXPECT_EQ(Answer(*page, QMessageBox::No), "Do you want to see list of configurable parameters?");
    EXPECT_THAT(Writes(), ElementsAre("register 373 Keypad N2 = 1.25", HasSubstr("coil 27 Time Sync"),
                                      HasSubstr("Methane = 93.5"), HasSubstr("Set Year = 2026"), HasSubstr("Set Month"),
                                      HasSubstr("Set Date"), HasSubstr("Set Hour"), HasSubstr("Set Minute"),
                                      HasSubstr("Set Second"), HasSubstr("coil 23 Set Time & Date = 1")));
    EXPECT_THAT(Trail(), Contains(HasSubstr("User bob changed value of parameter Keypad N2 from ")));
    EXPECT_THAT(Trail(), Contains(HasSubstr("User bob set the time of RTU Hill Farm.")));
    EXPECT_THAT(Trail(), Contains(HasSubstr("User bob disconnected from RTU Hill Farm.")));
    EXPECT_TRUE(Enabled("cmdConnect"));
    EXPECT_TRUE(Enabled("cmdClose"));
    EXPECT_FALSE(desk.ports.PortOpen());
}

// What a station drives is written behind a question; the list of the frame stands at what is so now.
TEST_F(SessionStory, AnOutputIsWrittenBehindAQuestion) {
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5});
    const char* name = "Digital Output 1 State";
    field->Values(locationID, 1, name)->Fix(name, 1);
    Run({{"a question", [this] { return Polled(); },
          [&] {
              for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
                  Choose("IO", name);
                  EXPECT_EQ(Text(*page, "Cmb_output"), "1 ON");
                  QTest::keyClick(&The(*page, "Cmb_output"), Qt::Key_Up);
                  Click(*page, "cmdwrite");
                  EXPECT_EQ(Answer(*page, answer), "Digital Output 1 State of Hill Farm: change ON to OFF?");
                  EXPECT_EQ(session->WritePending(), answer == QMessageBox::Yes);
              }
          }},
         {"end", [this] { return Polled(); }, [&] { Click(*page, "cmddisconnect"); }}});
    EXPECT_THAT(Writes(), ElementsAre(HasSubstr("Digital Output 1 State = 0")));
    EXPECT_EQ(Label("lblreq"), "Digital Output 1 State: confirmed");
}

TEST_F(SessionStory, AMultistreamStationIsWatchedStreamByStream) {
    Open({"Twin", "CWEFM-MultiStream", "BSAP", "", 1, 5, "", 2, {"AGA3", "AGA7"}});
    EXPECT_TRUE(Seen("Op_Stream_2"));
    EXPECT_FALSE(Seen("Op_Stream_3"));
    std::vector<Script::Step> steps;
    steps.push_back({"the other stream, while a value is being entered", [this] { return Polled(); },
                     [this] {
                         Choose("KEYPAD", "Keypad N2");
                         Click(*page, "Op_Stream_2");
                         Click(*page, "cmd_summary");  // the frame is out of sight when the stream comes
                     }});
    steps.push_back({"its values", [this] { return session->StreamNo() == 2 && Polled(); },
                     [this] {
                         QTest::keyClick(desk.window.Front(), Qt::Key_Escape);
                         QCoreApplication::processEvents();
                         ASSERT_EQ(desk.window.Front(), page);
                         EXPECT_FALSE(Seen("frmvalue")) << "it was meant for the other stream";
                         EXPECT_TRUE(Enabled("gridtab"));
                         auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
                         EXPECT_EQ(tabs.tabText(0).toStdString(), "AGA7");
                         const double value = session->Parameters().At(Place("AGA7", "UnCorr.Flowrate")).lastvalue;
                         EXPECT_TRUE(field->WasServed(locationID, 2, "UnCorr.Flowrate", value));
                         Click(*page, "cmddisconnect");
                     }});
    Run(steps);
}

TEST_F(SessionStory, ARunThatTakesTheLineIsToldAndTheLineOfferedAgain) {
    demo::DemoStation due{"Due", "TeleFlow", "Modbus", "RTU", 1, 9};
    due.contracthour = "09:02";
    demo::AddStation(desk.dbconn, due);
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5});
    desk.StartTicking();
    Run({{"taken", [this] { return session->GetState() == session::State::Idle; },
          [&] {
              EXPECT_EQ(Label("lblmsg"), "The line was taken to collect Due");
              EXPECT_EQ(Usable(*page, {"cmdConnect", "cmddisconnect", "cmdClose"}), "cmdClose ");
          }}});
    EXPECT_EQ(Box(*page), nullptr) << "nobody may be there to answer";
    EXPECT_TRUE(QTest::qWaitFor([this] { return Label("lblreq") == "The line is free. Connect again to go on."; }));
    EXPECT_TRUE(Enabled("cmdConnect"));
    EXPECT_EQ(Focus(*page), "cmdConnect");
}

// Neither the run that has it nor a session on another line minds.
TEST_F(SessionStory, APageWhoseLineWasTakenIsClosedAtOnce) {
    demo::DemoStation due{"Due", "TeleFlow", "Modbus", "RTU", 1, 9};
    due.contracthour = "09:02";
    const auto dueID = demo::AddStation(desk.dbconn, due);
    const auto otherID = demo::AddStation(desk.dbconn, {"Far", "TeleFlow", "Modbus", "RTU", 2, 5});
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5});
    auto& other = desk.Open<desk::frmparalist>(otherID);
    desk.Press(other, "cmdConnect");
    desk.window.Open(page = new desk::frmparalist(desk.desk, locationID));
    session = page->GetSession();
    desk.StartTicking();
    desk.Press(*page, "cmdConnect");
    Click(*page, "cmdgetdata");
    desk.RunUntil([this] { return session->IsOffLine(); });
    Click(*page, "cmdClose");
    EXPECT_EQ(desk.window.Front(), &other);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(desk.scheduler.Busy());
    desk.Settle();
    EXPECT_TRUE(desk.Master(dueID).Bool("sampledtoday")) << desk.RtuErr();
    EXPECT_EQ(other.GetSession()->GetState(), session::State::Connected);
}

// A dash where nothing was read; a date, an age and a muted row where it was read before.
TEST_F(SessionStory, NoValueLooksNewerThanItIs) {
    locationID = demo::AddStation(desk.dbconn, {"O'Neill", "TeleCorrector", "BSAP", "", 1, 5});
    field = &desk.OpenField();
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=1.5, readat='2026-03-08 08:00:07', quality='good' where "
        "description='Keypad CO2'");
    ASSERT_TRUE(field->Values(locationID, 1, "Keypad N2")->Fix("Keypad N2", 3e9));
    page = &desk.Open<desk::frmparalist>(locationID);
    session = page->GetSession();
    const auto shown = [this](const char* description) {
        const auto place = Place("KEYPAD", description);
        const auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
        const desk::Grid& grid = tabs.GridOf(place.group);
        const auto cell = grid.model()->index(tabs.GridRow(place.group, place.row), 2);
        return Cell("KEYPAD", description, 2) + "|" + Cell("KEYPAD", description, 3) +
               (cell.data(Qt::ForegroundRole).isValid() ? "|muted" : "");
    };
    EXPECT_EQ(shown("Keypad N2").substr(0, 2), "-|");
    EXPECT_THAT(shown("Keypad CO2"), testing::MatchesRegex("1.500000\\|.*   of 08/03/2026 08:00:07\\|muted"));
    Run({{"what was read", [this] { return Polled(); },
          [&] {
              EXPECT_THAT(shown("Keypad CO2"), testing::MatchesRegex("[0-9.]+\\|[^ ]*"));
              EXPECT_THAT(shown("Keypad N2"), testing::MatchesRegex("-\\|.*   out of range"));
              Click(*page, "cmddisconnect");
          }}});
    EXPECT_THAT(shown("Keypad CO2"), testing::MatchesRegex("[0-9.]+\\|.*   of 09/03/2026 09:0.:..\\|muted"));
}

}  // namespace
