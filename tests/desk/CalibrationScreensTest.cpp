// The calibration screens by clicks and keys, on the virtual clock.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QTabWidget>
#include <set>

#include "desk/session/frmparalist.h"
#include "desk/signals/frmCalib.h"
#include "desk/signals/frmCalibSignals.h"
#include "desk/signals/frmCalibration.h"
#include "desk/signals/frm_NewCali.h"
#include "desk/signals/frm_cali.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct CalibrationScreens : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 9, 0, 5}};
    fieldsim::Field* field = nullptr;
    desk::frmparalist* paralist = nullptr;

    CalibrationScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = desk.shared.rights.rightUtility = true;
        demo::AddStation(desk.dbconn, {"Hill-Farm's <b>Gate</b>", "CWEFM-AGA3", "BSAP", "", 1, 6});
        demo::AddStation(desk.dbconn, {"Modbus", "TeleRTU", "Modbus", "RTU", 2, 1});
        field = &desk.OpenField();
    }
    desk::frmCalib& OpenCalib(bool connected, std::int64_t locationID = 1) {
        paralist = &desk.Open<desk::frmparalist>(locationID);
        if (connected) {
            desk.Press(*paralist, "cmdConnect");
        }
        desk.Open<desk::frmCalibration>(paralist->GetSession());
        Click(*desk.window.Front(), "cmdCalib");
        return desk.Front<desk::frmCalib>();
    }
    // Presses Start and makes the steps in its waits.
    void Start(const QWidget& page, std::vector<Script::Step> steps = {}) {
        desk.Press(page, "cmdStart", std::move(steps));
        QCoreApplication::processEvents();
    }
    static bool Reads(const QWidget& page, const char* live, const char* value = nullptr) {
        const std::string shown = Text(page, live);
        return Text(page, "lblstate") == "Reading" && !Box(page) && (value == nullptr ? shown != "" : shown == value);
    }
    std::vector<std::string> Trail() { return desk.dbconn.Texts("select * from TTS_table"); }
};

TEST_F(CalibrationScreens, ATechnicianCalibratesTwoTransmittersAndLeaves) {
    auto& page = OpenCalib(true);
    const std::vector<const char*> commands{"cmdStart",   "cmdStop",      "cmdCalibZero", "cmdCalibSpan",
                                            "cmdRestore", "txtDPApplied", "cmdClose"};
    EXPECT_EQ(Text(page, "lblstate"), "Not started");
    EXPECT_EQ(Usable(page, commands), "cmdStart txtDPApplied cmdClose ");
    auto& tabs = The<QTabWidget>(page, "SSTab1");
    Start(page, {{"starting", [&] { return Text(page, "lblstate") == "Looking for the signals"; },
                  [&] {
                      EXPECT_EQ(Usable(page, {"cmdStart", "cmdCalibZero"}), "");
                  }},
                 {"reads", [&] { return Reads(page, "txtDPLive", "99.5") && Text(page, "lblDPInStation") != ""; },
                  [&] {
                      EXPECT_EQ(Text(page, "lblDPUnit"), "INH2O");
                      EXPECT_THAT(Text(page, "lblDPAge"), StartsWith("Read at 09:0"));
                      EXPECT_EQ(Focus(page), "txtDPApplied");
                      Type(page, "txtDPApplied", "x");
                      Click(page, "cmdCalibSpan");
                      EXPECT_EQ(Text(page, "lblmsg"), "Enter Proper Data");
                      EXPECT_EQ(Focus(page), "txtDPApplied");
                      Type(page, "txtDPApplied", "100");
                      EXPECT_EQ(Text(page, "lblDPLimit"), "For a span the live value must be from 95 to 105");
                      Click(page, "cmdCalibSpan");
                      EXPECT_THAT(Answer(page, QMessageBox::No),
                                  StartsWith("Calibrate the span of DP at Hill-Farm's <b>Gate</b>?\n\n"
                                             "Value now: 99.5 INH2O, read at 09:0"));
                      EXPECT_EQ(Text(page, "lblstate"), "Reading");
                      Click(page, "cmdCalibSpan");
                      EXPECT_THAT(Answer(page, QMessageBox::Yes), EndsWith("\nValue after: 100 INH2O"));
                      EXPECT_EQ(Text(page, "lblstate"), "Busy with DP");
                      EXPECT_EQ(Usable(page, commands), "cmdStop ");
                      QTest::keyClick(&page, Qt::Key_Escape);
                      QTest::keyClick(tabs.tabBar(), Qt::Key_Right);
                      EXPECT_EQ(tabs.currentIndex(), 0);
                  }},
                 {"done", [&] { return Text(page, "lblmsg") == "DP Calibration Completed"; },
                  [&] { EXPECT_EQ(Text(page, "txtStatus"), "\u2713 Success"); }},
                 {"shows", [&] { return Reads(page, "txtDPLive", "100"); },
                  [&] {
                      tabs.tabBar()->setFocus();
                      QTest::keyClick(tabs.tabBar(), Qt::Key_Right);
                      EXPECT_EQ(Text(page, "txtSPLive"), "20.25");
                      Type(page, "txtSPApplied", "10");
                      Click(page, "cmdCalibSpan1");
                      Answer(page, QMessageBox::Yes);
                  }},
                 {"refused", [&] { return Text(page, "lblmsg") == "SP Limit exceeds from +(-) 5%"; },
                  [&] {
                      EXPECT_EQ(Text(page, "txtStatus1"), "");
                      field->VentTransmitters(true);
                  }},
                 {"vented", [&] { return Reads(page, "txtSPLive", "0"); },
                  [&] {
                      The(page, "cmdCalibZero1").setFocus();
                      QTest::keyClick(&The(page, "cmdCalibZero1"), Qt::Key_Return);
                      EXPECT_THAT(Answer(page, QMessageBox::Yes), EndsWith("\nValue after: 0 KG/CM2"));
                  }},
                 {"zeroed", [&] { return Text(page, "lblmsg") == "SP Calibration Completed"; },
                  [&] { QTest::keyClick(&page, Qt::Key_Escape); }}});
    desk.Front<desk::frmCalibration>();
    EXPECT_EQ(paralist->GetSession()->GetState(), session::State::Connected);
    EXPECT_THAT(Trail(), Contains(EndsWith("applied 100, live 99.5 INH2O: Success, status 0.")));
    EXPECT_THAT(Trail(), Contains(EndsWith("applied 10, live 20.25 KG/CM2: SP Limit exceeds from +(-) 5%.")));
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
                 {"restored", [&] { return Text(page, "lblmsg") == "Temp:-Signal Write Success"; },
                  [&] { Click(page, "cmdStop"); }}});
    EXPECT_FALSE(desk.ports.PortOpen());
    EXPECT_THAT(Text(page, "lblmsg"), StartsWith("Stopped"));
    EXPECT_EQ(Text(page, "lblstate"), "Stopped");
    EXPECT_THAT(Text(page, "lblTempAge"), HasSubstr("Old: read at"));
    EXPECT_EQ(Focus(page), "cmdStart");
    field->Station(1)->bsap->Options().status = 2;
    Start(page);
    EXPECT_EQ(Answer(page), "Error Occured in Communication");
    field->Station(1)->bsap->Options().status = 0;
    field->Station(1)->transmitters->List()->Remove("DP.LIVE.");
    Start(page);
    EXPECT_EQ(Text(page, "lblmsg"), "Error: Signal DP.LIVE. Not Found");

    auto& modbus = OpenCalib(true, 2);
    Start(modbus);
    EXPECT_EQ(Answer(modbus), "The transmitters of this station cannot be calibrated from here: it speaks Modbus");
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
    EXPECT_EQ(Focus(page), "txtsystem_5");
    EXPECT_EQ(desk.Count("calibration where name = 'DP.LIVE.'"), 1);
    Type(page, "txtsystem_5", "#CAL.NEW.");
    Click(page, "cmdSave");
    EXPECT_EQ(Answer(page), "Saved");
    auto& again = desk.Open<desk::frmCalibSignals>();
    EXPECT_EQ(Text(again, "txtname_1") + Text(again, "txtsystem_5"), "O'FLOW.DP.#CAL.NEW.");
}

TEST_F(CalibrationScreens, TheHelpPagesFollowTheModelAndTheTemplatesAreFiles) {
    paralist = &desk.Open<desk::frmparalist>(1);
    desk.Open<desk::frmCalibration>(paralist->GetSession());
    Click(*desk.window.Front(), "cmdHelp");
    auto& page = desk.Front<desk::frm_cali>();
    EXPECT_EQ(Text(page, "cmb_Model"), "CWEFM-AGA3");
    std::set<std::string> files;
    for (const char* command : {"cmdDifferential", "cmdDifferentialVerify", "cmdStatic", "cmdStaticVerify", "cmdRTD",
                                "cmdRTDVerify", "cmdDamping", "cmdDampingVerify"}) {
        Click(page, command);
        files.insert(Answer(page));
    }
    EXPECT_EQ(files.size(), 8U);
    EXPECT_THAT(files, testing::Contains(StartsWith("The file Differential.htm is not there.\nIts folder is ")));
    The<QComboBox>(page, "cmb_Model").setCurrentText("CWGFC-AGA7");
    EXPECT_EQ(Usable(page, {"cmdDifferential", "cmdDifferentialVerify", "cmdStatic"}), "cmdStatic ");

    auto& templates = desk.Open<desk::frm_NewCali>();
    for (const std::string name : {"EFM", "GFC", "TC", "TF"}) {
        Click(templates, ("cmd" + name).c_str());
        EXPECT_THAT(Answer(templates), StartsWith("The file " + name + "_Calib.tvs is not there.\n"));
    }
}

}  // namespace
