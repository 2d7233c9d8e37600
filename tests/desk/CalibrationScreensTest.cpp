// The calibration screens by clicks and keys, on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include "desk/session/frmparalist.h"
#include "desk/shell/frmHisErrLog.h"
#include "desk/signals/frmCalib.h"
#include "desk/signals/frmCalibSignals.h"
#include "desk/signals/frmCalibration.h"
#include "desk/signals/frm_NewCali.h"
#include "desk/signals/frm_cali.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

// What the system is asked to open.
class Opened : public QObject {
    Q_OBJECT

  public:
    Opened() { QDesktopServices::setUrlHandler("file", this, "Take"); }
    ~Opened() override { QDesktopServices::unsetUrlHandler("file"); }
    std::vector<std::string> files;

  public Q_SLOTS:
    void Take(const QUrl& url) { files.push_back(url.toLocalFile().toStdString()); }
};

namespace {

using support::Answer;
using support::Click;
using support::The;
using support::Type;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const demo::DemoStation orifice{"Hill-Farm's <b>Gate</b>", "CWEFM-AGA3", "BSAP", "", 1, 6};
const demo::DemoStation modbus{"Modbus", "TeleRTU", "Modbus", "RTU", 2, 1};
const demo::DemoStation due{"Due", "TeleFlow", "Modbus", "RTU", 3, 1, "", 1, {}, "09:02"};

struct CalibrationScreens : testing::Test {
    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 5}};
    fieldsim::Field* field = nullptr;
    desk::frmparalist* paralist = nullptr;

    CalibrationScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = desk.shared.rights.rightUtility = true;
        for (const auto& station : {orifice, modbus, due}) {
            demo::AddStation(desk.dbconn, station);
        }
        field = &desk.OpenField();
    }

    desk::frmCalib& OpenCalib(bool connected, std::int64_t locationID = 1) {
        paralist = &desk.Open<desk::frmparalist>(locationID);
        if (connected) {
            Click(*paralist, "cmdConnect");
        }
        desk.Open<desk::frmCalibration>(paralist->GetSession());
        Click(*desk.window.Front(), "cmdCalib");
        return desk.Front<desk::frmCalib>();
    }
    // Presses Start and makes the steps in its waits.
    void Start(const QWidget& page, std::vector<support::Script::Step> steps = {}) {
        desk.Press(page, "cmdStart", std::move(steps));
        QCoreApplication::processEvents();
    }
    static std::string Label(const QWidget& page, const char* name) {
        return The<QLabel>(page, name).text().toStdString();
    }
    static std::string Text(const QWidget& page, const char* name) {
        return The<QLineEdit>(page, name).text().toStdString();
    }
    static bool Enabled(const QWidget& page, const char* name) { return The(page, name).isEnabled(); }
    static bool Reads(const QWidget& page, const char* live) {
        return Label(page, "lblstate") == "Reading" && Text(page, live) != "" && !support::Box(page);
    }
    std::vector<std::string> Trail() { return desk.dbconn.Texts("select * from TTS_table"); }
};

TEST_F(CalibrationScreens, ATechnicianCalibratesTwoTransmittersAndLeaves) {
    auto& page = OpenCalib(true);
    EXPECT_EQ(page.windowTitle(), "Calibration - v10.3");
    EXPECT_EQ(Label(page, "lblstate"), "Not started");
    for (const char* command : {"cmdCalibZero", "cmdCalibSpan1", "cmdRestore2", "cmdStop"}) {
        EXPECT_FALSE(Enabled(page, command)) << command;
    }
    auto& tabs = The<QTabWidget>(page, "SSTab1");
    Start(page,
          {{"starting", [&] { return Label(page, "lblstate") == "Looking for the signals"; },
            [&] {
                EXPECT_EQ(Label(page, "lblmsg"), "Please wait...");
                EXPECT_FALSE(Enabled(page, "cmdStart") || Enabled(page, "cmdCalibZero"));
            }},
           {"reads", [&] { return Reads(page, "txtDPLive") && Label(page, "lblDPInStation") != ""; },
            [&] {
                EXPECT_EQ(Text(page, "txtDPLive"), "99.5");
                EXPECT_EQ(Label(page, "lblDPUnit"), "INH2O");
                EXPECT_THAT(Label(page, "lblDPAge"), StartsWith("Read at 09:0"));
                EXPECT_EQ(support::Focus(page), "txtDPApplied");
                Type(page, "txtDPApplied", "x");
                Click(page, "cmdCalibSpan");
                EXPECT_EQ(Label(page, "lblmsg"), "Enter Proper Data");
                EXPECT_EQ(support::Focus(page), "txtDPApplied");
                EXPECT_EQ(Label(page, "lblDPLimit"), "");
                Type(page, "txtDPApplied", "100");
                EXPECT_EQ(Label(page, "lblDPLimit"), "For a span the live value must be from 95 to 105");
                Click(page, "cmdCalibSpan");
                EXPECT_THAT(Answer(page, QMessageBox::No),
                            StartsWith("Calibrate the span of DP at Hill-Farm's <b>Gate</b>?\n\n"
                                       "Value now: 99.5 INH2O, read at 09:0"));
                EXPECT_EQ(Label(page, "lblstate"), "Reading");
                Click(page, "cmdCalibSpan");
                EXPECT_THAT(Answer(page, QMessageBox::Yes), EndsWith("\nValue after: 100 INH2O"));
                EXPECT_EQ(Label(page, "lblstate"), "Busy with DP");
                for (const char* locked : {"cmdCalibZero", "cmdCalibSpan", "cmdRestore", "txtDPApplied", "cmdClose"}) {
                    EXPECT_FALSE(Enabled(page, locked)) << locked;
                }
                EXPECT_FALSE(tabs.tabBar()->isEnabled());
                QTest::keyClick(&page, Qt::Key_Escape);
                QTest::keyClick(tabs.tabBar(), Qt::Key_Right);
                EXPECT_EQ(tabs.currentIndex(), 0);
            }},
           {"waits", [&] { return Label(page, "lblmsg") == "DP:-Calibrate Span... Please Wait..."; }, [] {}},
           {"done", [&] { return Label(page, "lblmsg") == "DP Calibration Completed"; },
            [&] { EXPECT_EQ(Text(page, "txtStatus"), "\u2713 Success"); }},
           {"shows", [&] { return Reads(page, "txtDPLive") && Text(page, "txtDPLive") == "100"; },
            [&] {
                tabs.tabBar()->setFocus();
                QTest::keyClick(tabs.tabBar(), Qt::Key_Right);
                EXPECT_EQ(Text(page, "txtSPLive"), "20.25");
                Type(page, "txtSPApplied", "10");
                Click(page, "cmdCalibSpan1");
                Answer(page, QMessageBox::Yes);
            }},
           {"refused", [&] { return Label(page, "lblmsg") == "SP Limit exceeds from +(-) 5%"; },
            [&] {
                EXPECT_EQ(Text(page, "txtStatus1"), "");
                field->VentTransmitters(true);
            }},
           {"vented", [&] { return Reads(page, "txtSPLive") && Text(page, "txtSPLive") == "0"; },
            [&] {
                The(page, "cmdCalibZero1").setFocus();
                QTest::keyClick(&The(page, "cmdCalibZero1"), Qt::Key_Return);
                EXPECT_THAT(Answer(page, QMessageBox::Yes), EndsWith("\nValue after: 0 KG/CM2"));
            }},
           {"zeroed", [&] { return Label(page, "lblmsg") == "SP Calibration Completed"; },
            [&] { QTest::keyClick(&page, Qt::Key_Escape); }}});
    EXPECT_EQ(&desk.Front<desk::frmCalibration>(), desk.window.Front());
    EXPECT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
    EXPECT_THAT(Trail(), testing::Contains(EndsWith("applied 100, live 99.5 INH2O: Success, status 0.")));
    EXPECT_THAT(Trail(), testing::Contains(EndsWith("applied 10, live 20.25 KG/CM2: SP Limit exceeds from +(-) 5%.")));
    EXPECT_THAT(Trail().back(), HasSubstr("gave Calibrate Zero for SP of RTU Hill-Farm's <b>Gate</b>, live 0 KG/CM2"));
}

TEST_F(CalibrationScreens, ItMakesACallOfItsOwnAndCanBeStopped) {
    auto& page = OpenCalib(false);
    Start(page, {{"reads", [&] { return Reads(page, "txtTempLive"); },
                  [&] {
                      The<QTabWidget>(page, "SSTab1").setCurrentIndex(2);
                      Click(page, "cmdRestore2");
                      EXPECT_THAT(Answer(page, QMessageBox::Yes), StartsWith("Restore the calibration of Temp at "));
                  }},
                 {"restored", [&] { return Label(page, "lblmsg") == "Temp:-Signal Write Success"; },
                  [&] { Click(page, "cmdStop"); }}});
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_THAT(Label(page, "lblmsg"), StartsWith("Stopped"));
    EXPECT_EQ(Label(page, "lblstate"), "Stopped");
    EXPECT_THAT(Label(page, "lblTempAge"), HasSubstr("Old: read at"));
    EXPECT_EQ(support::Focus(page), "cmdStart");
    Start(page, {{"asked",
                  [&] {
                      return Label(page, "lblmsg").starts_with("Sign in Rtu") ||
                             Label(page, "lblmsg").starts_with("Sign in RTU");
                  },
                  [&] { Click(page, "cmdStop"); }}});
    EXPECT_EQ(Label(page, "lblmsg"), "Stopped");
    field->Station(1)->bsap->Options().status = 2;
    Start(page);
    EXPECT_EQ(Answer(page), "Error Occured in Communication");
    EXPECT_EQ(Label(page, "lblmsg"), "Error Occured in Communication");
    field->Station(1)->bsap->Options().status = 0;
    field->Station(1)->transmitters->List()->Remove("DP.LIVE.");
    Start(page);
    EXPECT_EQ(Label(page, "lblmsg"), "Error: Signal DP.LIVE. Not Found");
    desk.dbconn.Execute("delete from calibSystemSignals");
    Start(page);
    EXPECT_EQ(Label(page, "lblmsg"),
              "No signal is named for the zero command of DP: enter it in the calibration signals");
    Click(page, "cmdClose");
    desk.Front<desk::frmCalibration>();
}

TEST_F(CalibrationScreens, AScheduledRunEndsItInTheMidstOfACommand) {
    auto& page = OpenCalib(true);
    desk.StartTicking();
    desk.clock.Run(100000 - desk.clock.Elapsed());
    Type(page, "txtDPApplied", "100");
    bool given = false;
    Start(page, {{"reads", [&] { return Reads(page, "txtDPLive"); },
                  [&] {
                      given = true;
                      Click(page, "cmdCalibSpan");
                      Answer(page, QMessageBox::Yes);
                  }},
                 {"taken", [&] { return !desk.scheduler.InHand().empty(); },
                  [&] {
                      QMetaObject::invokeMethod(&The<QTimer>(page, "tmrline"), "timeout");
                      EXPECT_EQ(Label(page, "lblmsg"), "The line was taken to collect Due");
                  }}});
    desk.clock.Run(60000);
    EXPECT_TRUE(given);
    EXPECT_THAT(Label(page, "lblmsg"), StartsWith("The line is gone: A scheduled collection has taken the line"));
    EXPECT_EQ(Label(page, "lblstate"), "Stopped");
    EXPECT_TRUE(Enabled(page, "cmdStart") && Enabled(page, "cmdClose"));
    EXPECT_TRUE(desk.Master(3).Bool("sampledtoday"));
    EXPECT_THAT(Trail(), testing::Contains(HasSubstr("gave Calibrate Span for DP")));
}

TEST_F(CalibrationScreens, AStationThatSpeaksModbusIsRefused) {
    auto& page = OpenCalib(true, 2);
    Start(page);
    EXPECT_EQ(Answer(page), "The transmitters of this station cannot be calibrated from here: it speaks Modbus");
    EXPECT_EQ(field->Station(2)->written->Writes().size(), 0U);
}

TEST_F(CalibrationScreens, TheSignalsAreNamedAllOrNone) {
    auto& page = desk.Open<desk::frmCalibSignals>();
    EXPECT_EQ(Text(page, "txtname_7"), "PRESS.CALSTAT.");
    EXPECT_EQ(Text(page, "txtsystem_9"), "#CAL.TMPREST.");
    Type(page, "txtname_1", "O'FLOW.D P.");
    EXPECT_EQ(Text(page, "txtname_1"), "O'FLOW.DP.");
    Type(page, "txtsystem_5", "");
    Click(page, "cmdSave");
    EXPECT_EQ(Answer(page), "Enter value");
    EXPECT_EQ(support::Focus(page), "txtsystem_5");
    EXPECT_EQ(desk.Count("calibration where name = 'DP.LIVE.'"), 1);
    Type(page, "txtsystem_5", "#CAL.NEW.");
    Click(page, "cmdSave");
    EXPECT_EQ(Answer(page), "Saved");
    EXPECT_EQ(desk.Count("calibration where srno = 1 and name = ?", {"O'FLOW.DP."}), 1);
    EXPECT_EQ(desk.Count("calibration"), 8);
    EXPECT_EQ(desk.Count("calibSystemSignals where rowid = 5 and name = '#CAL.NEW.'"), 1);
    auto& again = desk.Open<desk::frmCalibSignals>();
    EXPECT_EQ(Text(again, "txtsystem_5"), "#CAL.NEW.");
}

TEST_F(CalibrationScreens, TheHelpPagesFollowTheModel) {
    Opened opened;
    paralist = &desk.Open<desk::frmparalist>(1);
    desk.Open<desk::frmCalibration>(paralist->GetSession());
    Click(*desk.window.Front(), "cmdHelp");
    auto& page = desk.Front<desk::frm_cali>();
    auto& models = The<QComboBox>(page, "cmb_Model");
    EXPECT_EQ(models.currentText(), "CWEFM-AGA3");
    EXPECT_EQ(models.count(), 16);
    Click(page, "cmdDifferential");
    EXPECT_THAT(Answer(page), StartsWith("The file Differential.htm is not there.\nIts folder is "));
    const auto folder = desk.shared.directory / "webpages";
    std::filesystem::copy(std::filesystem::path(NORWEN_DATABASE).parent_path() / "webpages", folder);
    for (const char* command : {"cmdDifferential", "cmdDifferentialVerify", "cmdStatic", "cmdStaticVerify", "cmdRTD",
                                "cmdRTDVerify", "cmdDamping", "cmdDampingVerify"}) {
        EXPECT_TRUE(Enabled(page, command)) << command;
        Click(page, command);
        EXPECT_EQ(support::Box(page), nullptr) << command;
    }
    EXPECT_EQ(std::set<std::string>(opened.files.begin(), opened.files.end()).size(), 8U);
    EXPECT_EQ(opened.files.front(), (folder / "Differential.htm").string());
    for (const auto& [model, hasDp] : {std::pair{"TeleFlow", true}, std::pair{"CWGFC-AGA7", false},
                                       std::pair{"TeleCorrector+", false}, std::pair{"CWEFM-MultiStream", true}}) {
        models.setCurrentText(model);
        EXPECT_EQ(Enabled(page, "cmdDifferential"), hasDp) << model;
        EXPECT_EQ(Enabled(page, "cmdDifferentialVerify"), hasDp) << model;
        EXPECT_TRUE(Enabled(page, "cmdStatic") && Enabled(page, "cmdRTDVerify")) << model;
    }
    models.setCurrentIndex(-1);
    EXPECT_FALSE(Enabled(page, "cmdStatic"));
}

TEST_F(CalibrationScreens, TheTemplateFilesAreOpenedFromTheUtilities) {
    Opened opened;
    desk.Open<desk::frmHisErrLog>();
    Click(*desk.window.Front(), "cmd_calib");
    auto& page = desk.Front<desk::frm_NewCali>();
    const auto folder = desk.shared.directory / "configuration";
    Click(page, "cmdTC");
    EXPECT_EQ(Answer(page), "The file TC_Calib.tvs is not there.\nIts folder is " + folder.string());
    std::filesystem::create_directory(folder);
    std::vector<std::string> files;
    for (const char* name : {"EFM", "GFC", "TC", "TF"}) {
        files.push_back((folder / (std::string(name) + "_Calib.tvs")).string());
        std::ofstream(files.back()) << "x";
        Click(page, ("cmd" + std::string(name)).c_str());
    }
    EXPECT_EQ(opened.files, files);
    EXPECT_EQ(support::Box(page), nullptr);
}

}  // namespace

#include "CalibrationScreensTest.moc"
