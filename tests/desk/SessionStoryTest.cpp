// Whole sessions by clicks and keys, in front of the simulated field on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "desk/kit/Grid.h"
#include "desk/session/ParameterTabs.h"
#include "desk/session/frmparalist.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using support::Answer;
using support::Box;
using support::Click;
using support::The;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct SessionStory : testing::Test {
    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
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
    void Run(std::vector<support::Script::Step> steps) {
        Click(*page, "cmdConnect");
        ASSERT_EQ(Label("lblmsg"), "Connected");
        desk.clock.After(600000, [&] { session->Disconnect(); });
        desk.Press(*page, "cmdgetdata", std::move(steps));
        EXPECT_EQ(session->GetState(), session::State::Idle);
    }

    bool Polled() const { return session->ValuesAt().has_value() && !session->WritePending(); }
    bool Enabled(const char* command) const { return The(*page, command).isEnabled(); }
    std::string Label(const char* name) const { return The<QLabel>(*page, name).text().toStdString(); }
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
        QWidget& value = The(*page, "txtvalue");
        QTest::keyClick(&value, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&value, Qt::Key_Delete);
        QTest::keyClicks(&value, text);
        QTest::keyClick(&value, Qt::Key_Return);
    }
    std::vector<std::string> Writes() const { return field->Station(locationID)->written->WritesText(); }
    std::vector<std::string> Trail() { return desk.dbconn.Texts("select * from TTS_table"); }
};

// What every station that takes values is put through.
std::vector<support::Script::Step> CommonSteps(SessionStory& story) {
    const auto polled = [&story] { return story.Polled(); };
    return {
        {"the commands of a poll", polled,
         [&] {
             EXPECT_FALSE(story.Enabled("cmdConnect"));
             EXPECT_FALSE(story.Enabled("cmdgetdata"));
             EXPECT_FALSE(story.Enabled("cmdClose"));
             EXPECT_TRUE(story.Enabled("cmddisconnect"));
             EXPECT_THAT(story.Label("lbldatetime"), HasSubstr("RTU Date : 9/3/2026\nRTU Time :9:"));
             EXPECT_THAT(story.Label("lblbatvolts"), HasSubstr("System Bat. Voltage :"));
             EXPECT_THAT(story.Label("lblage"), "Values 0 s old");
             EXPECT_THAT(story.Label("lblrequests"), HasSubstr(" good, 0 failed"));
         }},
        {"a user of a lower level", polled,
         [&] {
             story.desk.shared.currentuser = "ann";
             story.Choose("KEYPAD", "Keypad N2");
             story.Enter("1.25");
             EXPECT_EQ(story.Label("lblreq"), "Could not set. Lower user level.");
             EXPECT_FALSE(The(*story.page, "frmvalue").isVisible());
             story.desk.shared.currentuser = "bob";
         }},
        {"no value", polled,
         [&] {
             story.Choose("KEYPAD", "Keypad N2");
             EXPECT_EQ(story.Label("Label1"), "Keypad N2");
             EXPECT_FALSE(The(*story.page, "gridtab").isEnabled());
             story.Enter("");
             EXPECT_EQ(Answer(*story.page), "Enter Proper Data");
             EXPECT_TRUE(The(*story.page, "frmvalue").isVisible());
             EXPECT_EQ(support::Focus(*story.page), "txtvalue");
             QTest::keyClick(&The(*story.page, "txtvalue"), Qt::Key_Escape);
             EXPECT_FALSE(The(*story.page, "frmvalue").isVisible());
         }},
        {"a value", polled,
         [&] {
             story.Choose("KEYPAD", "Keypad N2");
             story.Enter("1.25");
             EXPECT_EQ(story.Label("lblreq"), "Write Request Pending.....");
             EXPECT_EQ(story.Cell("KEYPAD", "Keypad N2", 2), "1.250000");
             EXPECT_THAT(story.Cell("KEYPAD", "Keypad N2", 3), HasSubstr("pending"));
             story.Choose("KEYPAD", "Keypad CO2");
             EXPECT_FALSE(The(*story.page, "frmvalue").isVisible()) << "one at a time";
         }},
        {"a switch",
         [&] { return story.Polled() && story.Cell("KEYPAD", "Keypad N2", 3).find("pending") == std::string::npos; },
         [&] {
             EXPECT_EQ(story.Label("lblreq"), "Keypad N2: confirmed");
             EXPECT_EQ(story.Cell("KEYPAD", "Keypad N2", 2), "1.250000");
             story.Choose("HEALTH", "Time Sync");
             auto& value = The<QLineEdit>(*story.page, "txtvalue");
             EXPECT_TRUE(value.isReadOnly());
             const QString before = value.text();
             Click(*story.page, "cmdtoggle");
             EXPECT_NE(value.text(), before);
             Click(*story.page, "cmdwrite");
         }},
        {"several values", polled,
         [&] {
             Click(*story.page, "chkMultiple");
             auto& grid = The<desk::Grid>(*story.page, "gcMultiGrid");
             ASSERT_TRUE(grid.isVisible());
             EXPECT_FALSE(story.Enabled("cmdMulWrite"));
             grid.SelectRow(0);
             QTest::keyClick(&grid, Qt::Key_Return);
             story.Enter("93.5");
             EXPECT_THAT(story.Writes(), Not(Contains(HasSubstr("= 93.5"))));
             Click(*story.page, "cmdMulWrite");
             EXPECT_FALSE(grid.isVisible());
         }},
        {"the summary", polled,
         [&] {
             Click(*story.page, "cmd_summary");
             auto& summary = *story.desk.window.Front();
             EXPECT_NE(The<QLabel>(summary, "lb_Press").text().toStdString(), "N/A");
             QTest::keyClick(&summary, Qt::Key_Escape);
             QCoreApplication::processEvents();
             EXPECT_EQ(story.desk.window.Front(), story.page);
         }},
        {"the clock", polled,
         [&] {
             Click(*story.page, "cmdtime");
             EXPECT_FALSE(story.Enabled("cmdtime"));
         }},
        {"the alarm colours",
         [&] {
             const auto& alarms = story.session->Alarms();
             return story.Polled() && !story.session->TimePending() &&
                    (story.session->GetStation().isCW ||
                     std::any_of(alarms.begin(), alarms.end(),
                                 [](const auto& live) { return live.state == session::AlarmState::HiHi; }));
         },
         [&] {
             auto& tabs = The<desk::ParameterTabs>(*story.page, "gridtab");
             for (const auto& live : story.session->Alarms()) {
                 const bool alarm = live.state != session::AlarmState::Normal;
                 const desk::Grid& grid = tabs.GridOf(live.place.group);
                 const auto cell = grid.model()->index(tabs.GridRow(live.place.group, live.place.row), 2);
                 const auto colour = cell.data(Qt::BackgroundRole).value<QColor>();
                 EXPECT_EQ(colour == QColor::fromRgb(session::AlarmColour(live.state)), alarm);
                 EXPECT_THAT(tabs.Cell(live.place.group, live.place.row, 3).toStdString(),
                             HasSubstr(session::AlarmWord(live.state)));
             }
         }},
    };
}

TEST_F(SessionStory, ATeleFlowIsDialledWatchedWrittenAndLeft) {
    fieldsim::FieldOptions options;
    options.modems[1] = {{"NO CARRIER", 4000}, {"CONNECT 9600", 5000}};
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5, "4170253"}, options);
    EXPECT_FALSE(The(*page, "cmdCalib").isVisible());
    auto steps = CommonSteps(*this);
    steps.push_back({"end", [this] { return Polled(); }, [this] { Click(*page, "cmddisconnect"); }});
    Run(steps);
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

TEST_F(SessionStory, ATeleCorrectorIsWatchedAndWrittenOverBsap) {
    fieldsim::FieldOptions options;
    options.answers = fieldsim::DataAnswer::Alternate;
    Open({"O'Neill", "TeleCorrector", "BSAP", "", 1, 5}, options);
    auto steps = CommonSteps(*this);
    steps.push_back({"end", [this] { return Polled(); }, [this] { Click(*page, "cmddisconnect"); }});
    Run(steps);
    EXPECT_THAT(Writes(), Contains("54-187 Keypad N2 = 1.25"));
    EXPECT_THAT(Writes(), Contains(HasSubstr("54-92 Methane = 93.5")));
    EXPECT_THAT(Writes(), Not(Contains(HasSubstr("54-93 Nitrogen")))) << "nobody changed it";
    EXPECT_THAT(Writes(), Contains(HasSubstr("55-23 Set Time & Date = 1")));
    EXPECT_THAT(Trail(), Contains(HasSubstr("User bob connected to RTU O'Neill.")));
}

// What a station drives is written behind a question; the list of the frame stands at what is so now.
TEST_F(SessionStory, AnOutputIsWrittenBehindAQuestion) {
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5});
    const char* name = "Digital Output 1 State";
    field->Values(locationID, 1, name)->Fix(name, 1);
    const auto enterOff = [&] {
        Choose("IO", name);
        auto& list = The<QComboBox>(*page, "Cmb_output");
        EXPECT_TRUE(list.isVisible());
        EXPECT_EQ(list.currentText(), "1 ON");
        QTest::keyClick(&list, Qt::Key_Up);
        Click(*page, "cmdwrite");
    };
    const auto polled = [this] { return Polled(); };
    Run({{"no", polled,
          [&] {
              enterOff();
              EXPECT_EQ(Answer(*page, QMessageBox::No), "Digital Output 1 State of Hill Farm: change ON to OFF?");
              EXPECT_FALSE(session->WritePending());
          }},
         {"yes", polled,
          [&] {
              enterOff();
              Answer(*page, QMessageBox::Yes);
              EXPECT_TRUE(session->WritePending());
          }},
         {"end", polled, [&] { Click(*page, "cmddisconnect"); }}});
    EXPECT_THAT(Writes(), ElementsAre(HasSubstr("Digital Output 1 State = 0")));
    EXPECT_EQ(Label("lblreq"), "Digital Output 1 State: confirmed");
}

TEST_F(SessionStory, AMultistreamStationIsWatchedStreamByStream) {
    Open({"Twin", "CWEFM-MultiStream", "BSAP", "", 1, 5, "", 2, {"AGA3", "AGA7"}});
    EXPECT_TRUE(The(*page, "Op_Stream_2").isVisible());
    EXPECT_FALSE(The(*page, "Op_Stream_3").isVisible());
    auto steps = CommonSteps(*this);
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
                         EXPECT_FALSE(The(*page, "frmvalue").isVisible()) << "it was meant for the other stream";
                         EXPECT_TRUE(Enabled("gridtab"));
                         auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
                         EXPECT_EQ(tabs.tabText(0).toStdString(), "AGA7");
                         const double value = session->Parameters().At(Place("AGA7", "UnCorr.Flowrate")).lastvalue;
                         EXPECT_TRUE(field->WasServed(locationID, 2, "UnCorr.Flowrate", value));
                         EXPECT_THAT(session->Alarms(), IsEmpty()) << "CW stations have no colours";
                         Click(*page, "cmddisconnect");
                     }});
    Run(steps);
    EXPECT_THAT(Writes(), Contains(HasSubstr("Keypad N2 = 1.25")));
    EXPECT_THAT(Writes(), Contains(HasSubstr("Set Time & Date = 1")));
}

TEST_F(SessionStory, AQuantumUnitIsWatchedAndTakesNothing) {
    Open({"Quay", "TeleFlow", "Quantum", "", 1, 5});
    auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
    Run({{"values", [this] { return Polled(); },
          [&] {
              EXPECT_TRUE(The(*page, "floatgrid").isVisible());
              EXPECT_NE(Cell("Quantum", "Pressure", 2), "0.000000");
              Choose("Quantum", "Pressure");
              EXPECT_FALSE(The(*page, "frmvalue").isVisible());
              Click(*page, "cmddisconnect");
          }}});
    EXPECT_EQ(tabs.currentIndex(), 16);
    EXPECT_EQ(desk.Count("LogParam where LocationId=?", {locationID}), 1);
}

TEST_F(SessionStory, ARunThatTakesTheLineIsToldAndTheLineOfferedAgain) {
    demo::DemoStation due{"Due", "TeleFlow", "Modbus", "RTU", 2, 9};
    due.contracthour = "09:02";
    demo::AddStation(desk.dbconn, due);
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5});
    desk.StartTicking();
    bool refused = false;
    Run({{"taken", [this] { return session->GetState() == session::State::Disconnecting; },
          [&] {
              EXPECT_EQ(Label("lblmsg"), "A scheduled collection has taken the line");
              EXPECT_TRUE(QTest::qWaitFor([this] { return Label("lblmsg") == "The line was taken to collect Due"; }));
              EXPECT_FALSE(Enabled("cmdConnect"));
              Click(*page, "cmdClose");
              EXPECT_EQ(Answer(*page), "Stop Communitcation...");
              refused = true;
          }}});
    EXPECT_TRUE(refused);
    EXPECT_EQ(Box(*page), nullptr) << "nobody may be there to answer";
    EXPECT_TRUE(QTest::qWaitFor([this] { return Label("lblreq") == "The line is free. Connect again to go on."; }));
    EXPECT_TRUE(Enabled("cmdConnect"));
    EXPECT_EQ(support::Focus(*page), "cmdConnect");
}

// A dash where nothing was read; a date, an age and a muted row where it was read before.
TEST_F(SessionStory, NoValueLooksNewerThanItIs) {
    locationID = demo::AddStation(desk.dbconn, {"O'Neill", "TeleCorrector", "BSAP", "", 1, 5});
    field = &desk.OpenField();
    desk.dbconn.Execute(
        "update configdata_detail set lastvalue=1.5, readat='2026-03-08 08:00:07', quality='good' where "
        "description='Keypad CO2'");
    desk.dbconn.Execute(
        "insert into configdata_detail(locationID,description,startaddress,type,srno,lastvalue,aga,StreamNo) "
        "values(?,'Gone','54-300','Float',999,0,'KEYPAD',1)",
        {locationID});
    ASSERT_TRUE(field->Values(locationID, 1, "Keypad N2")->Fix("Keypad N2", 3e9));
    page = &desk.Open<desk::frmparalist>(locationID);
    session = page->GetSession();
    const auto shown = [this](const char* description) {
        const auto place = Place("KEYPAD", description);
        const auto& tabs = The<desk::ParameterTabs>(*page, "gridtab");
        const desk::Grid& grid = tabs.GridOf(place.group);
        const bool muted = grid.model()
                               ->data(grid.model()->index(tabs.GridRow(place.group, place.row), 2), Qt::ForegroundRole)
                               .isValid();
        return Cell("KEYPAD", description, 2) + "|" + Cell("KEYPAD", description, 3) + (muted ? "|muted" : "");
    };
    EXPECT_EQ(shown("Gone"), "-||muted");
    EXPECT_THAT(shown("Keypad CO2"), testing::MatchesRegex("1.500000\\|.*   of 08/03/2026 08:00:07\\|muted"));
    EXPECT_EQ(Label("lbldatetime"), "RTU Date : -/-/-\nRTU Time :-:-:-");
    EXPECT_THAT(Label("lblbatvolts"), HasSubstr("Main Bat.Voltage      :- Vdc"));
    Run({{"what was read", [this] { return Polled(); },
          [&] {
              EXPECT_EQ(shown("Gone"), "-|   not received|muted");
              EXPECT_THAT(shown("Keypad CO2"), testing::MatchesRegex("[0-9.]+\\|[^ ]*"));
              EXPECT_THAT(shown("Keypad N2"), testing::MatchesRegex("-\\|.*   out of range"));
              auto& set = const_cast<session::ParameterSet&>(session->Parameters());
              TakeValue(set.At(Place("KEYPAD", "Gone")), 3, desk.clock.Now());  // and never again
          }},
         {"its age", [&] { return shown("Gone").find("old|muted") != std::string::npos; },
          [&] {
              EXPECT_THAT(shown("Gone"), testing::MatchesRegex("3.000000\\|   not received   [0-9]+ s old\\|muted"));
              Click(*page, "cmddisconnect");
          }}});
    for (const char* description : {"Gone", "Keypad CO2"}) {
        EXPECT_THAT(shown(description), testing::MatchesRegex("[0-9.]+\\|.*   of 09/03/2026 09:0.:..\\|muted"));
    }
    Answer(*page, QMessageBox::No);
}

TEST_F(SessionStory, WithoutTheRightsNothingIsReadOrWritten) {
    Open({"Hill Farm", "TeleFlow", "Modbus", "RTU", 1, 5});
    desk.shared.rights.rightSetup = false;
    Run({{"no right to write", [this] { return Polled(); },
          [this] {
              Choose("KEYPAD", "Keypad N2");
              EXPECT_FALSE(The(*page, "frmvalue").isVisible());
              EXPECT_EQ(Label("lblreq"), "User Not Granted Configuration Rights");
              Click(*page, "cmddisconnect");
          }}});
    Answer(*page, QMessageBox::No);
    desk.shared.rights.rightOnline = false;
    Click(*page, "cmdConnect");
    EXPECT_FALSE(Enabled("cmdgetdata"));
    EXPECT_FALSE(Enabled("cmdDataVerify"));
    Click(*page, "cmddisconnect");
}

}  // namespace
