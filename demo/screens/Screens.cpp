#include "demo/screens/Screens.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "core/MAIN_Module.h"
#include "desk/collection/frmGCWrite.h"
#include "desk/collection/frmScheduler.h"
#include "desk/collection/frm_Sch_Data.h"
#include "desk/collection/frmrpt.h"
#include "desk/kit/Grid.h"
#include "desk/mail/frmemail.h"
#include "desk/mail/frmemail_settings.h"
#include "desk/mail/frmemaildetails.h"
#include "desk/reports/frmHistLog.h"
#include "desk/reports/frmchart.h"
#include "desk/reports/frmdialout.h"
#include "desk/shell/frmGraphicRept.h"
#include "desk/shell/frmHisErrLog.h"
#include "desk/shell/frmLogin.h"
#include "desk/shell/frmlog.h"
#include "desk/shell/frmmain.h"
#include "desk/shell/frmshowdata.h"
#include "desk/shell/frmtts.h"
#include "desk/shell/frmuser.h"
#include "desk/stations/frmconfigstation.h"
#include "desk/stations/frmportsetting.h"

namespace demo {

namespace {

QWidget* Overview(Stage& stage) {
    stage.LogIn();
    return &stage.Shell();
}

QWidget* Click(Stage& stage, const char* command) {
    stage.Front().findChild<QAbstractButton*>(command)->click();
    return &stage.Shell();
}

// A page of the menus, opened by itself.
template <class Form, class... Arguments>
std::function<QWidget*(Stage&)> Page(Arguments... arguments) {
    return [=](Stage& stage) {
        stage.Open<Form>(arguments...);
        return static_cast<QWidget*>(&stage.Shell());
    };
}

QWidget* Login(Stage& stage) {
    desk::Desk& desk = stage.Surroundings();
    auto* login = new desk::frmLogin(desk.dbconn, stage.Shared(), desk.logs, [](const QString&, const QString&) {});
    login->setParent(&stage.Shell(), Qt::Dialog);
    login->show();
    return login;
}

QWidget* DailyReport(Stage& stage) {
    stage.Open<desk::frmrpt>();
    return Click(stage, "cmddaily");
}

void Fill(Stage& stage, const char* field, const char* text) {
    stage.Front().findChild<QLineEdit*>(field)->setText(text);
}

void Pick(Stage& stage, const char* list, const char* text) {
    auto* combo = stage.Front().findChild<QComboBox*>(list);
    combo->setCurrentIndex(combo->findText(text));
    Q_EMIT combo->activated(combo->currentIndex());
}

QWidget* NewStation(Stage& stage) {
    stage.Open<desk::frmconfigstation>();
    Click(stage, "cmdadd");
    Pick(stage, "cmbgroupno", "1");
    Fill(stage, "txtconsumer", "Zeal Ceramics");
    Pick(stage, "cmbrtumake", "BB");
    Pick(stage, "cmbmodelno", "TeleFlow");
    Pick(stage, "cmbcommtype", "DialUp Modem");
    Pick(stage, "cmbprotocol", "Modbus");
    Pick(stage, "cmb_sel", "Daily");
    return &stage.Shell();
}

QWidget* ShowStation(Stage& stage, int row) {
    stage.Open<desk::frmconfigstation>();
    stage.Front().findChild<desk::Grid*>("Grid")->SelectRow(row);
    return &stage.Shell();
}

QWidget* PortSetting(Stage& stage) {
    Click(stage, "cmdedit");
    Click(stage, "cmdportsetting");
    return stage.Front().findChild<desk::frmportsetting*>();
}

QWidget* History(Stage& stage) {
    stage.Open<desk::frmHistLog>();
    auto* from = stage.Front().findChild<QDateEdit*>("DTPicker1");
    from->setDate(from->date().addDays(-6));
    Click(stage, "cmdGo");
    return Click(stage, "cmdList");
}

QWidget* Chart(Stage& stage, const char* command) {
    stage.Open<desk::frmchart>();
    stage.Front().findChild<QComboBox*>("cmbLocId")->setCurrentIndex(0);
    stage.Front().findChild<QComboBox*>("cmbMonth")->setCurrentIndex(2);
    return Click(stage, command);
}

QWidget* Users(Stage& stage) {
    core::Database& dbconn = stage.Surroundings().dbconn;
    for (const char* userid : {"anna", "joseph", "nightshift"}) {
        dbconn.Execute("insert into users(userid) values(?)", {userid});
    }
    stage.Open<desk::frmuser>();
    return &stage.Shell();
}

QWidget* EditUser(Stage& stage) {
    stage.Front().findChild<desk::Grid*>("Grid")->SelectRow(3);
    return Click(stage, "cmdedit");
}

QWidget* Audit(Stage& stage) {
    core::Logs& logs = stage.Surroundings().logs;
    logs.WriteAudit(logs.Stamp() + ":  user operator logged in.");
    logs.WriteAudit(logs.Stamp() + " :operator created user nightshift.");
    stage.Open<desk::frmtts>();
    return Click(stage, "cmd_view");
}

QWidget* ErrorLog(Stage& stage) {
    core::Logs& logs = stage.Surroundings().logs;
    logs.WriteRtuErr("There was No Response from the controller[9]!");
    logs.WriteRtuErr("No Dialtone/Line Engaged/Remote Modem not Responding [12]");
    logs.WriteRtuErr("RTU Dead[19]");
    stage.Open<desk::frmlog>();
    return &stage.Shell();
}

QWidget* Dialout(Stage& stage) {
    core::Database& dbconn = stage.Surroundings().dbconn;
    for (const auto& [date, acknowledged] : {std::pair{"2026-03-20", true}, std::pair{"2026-03-22", false}}) {
        dbconn.Execute("insert into dialout(Phone_Num, Date_Time, Ack) values(4170253,?,?)", {date, acknowledged});
    }
    stage.Open<desk::frmdialout>();
    return &stage.Shell();
}

QWidget* Mail(Stage& stage) {
    stage.Open<desk::frmemail>();
    Click(stage, "cmdlogin");
    Fill(stage, "txtmailto", "dispatch@norwen.example");
    Fill(stage, "txtsubject", "Hill Farm");
    stage.Front().findChild<QPlainTextEdit*>("txtmsg")->setPlainText(
        "The modem of Hill Farm answers again.\nThe day of the 22nd was collected by hand.");
    return &stage.Shell();
}

QWidget* MailSettings(Stage& stage) {
    stage.Open<desk::frmemail_settings>();
    Fill(stage, "txtmailto", "dispatch@norwen.example");
    Fill(stage, "txtsubject", "Daily report");
    Fill(stage, "txturl", "smtps://mail.norwen.example");
    Fill(stage, "txtserveruser", "station");
    Fill(stage, "txtserverpassword", "secret");
    Fill(stage, "txtsender", "station@norwen.example");
    return Click(stage, "cmdtest");
}

}  // namespace

const std::vector<Screen>& Screens() {
    static const std::vector<Screen> screens = [] {
        std::vector<Screen> all{
            {"login", Login},
            {"overview", Overview},
            {"menu", [](Stage& stage) { return Click(stage, "cmdMenu"); }},
            {"group", Page<desk::frmshowdata>(1)},
            {"utility", Page<desk::frmHisErrLog>()},
            {"stations", [](Stage& stage) { return ShowStation(stage, 1); }},
            {"station_new", NewStation},
            {"station_multistream", [](Stage& stage) { return ShowStation(stage, 3); }},
            {"port_setting", PortSetting},
            {"scheduler", Page<desk::frmScheduler>()},
            {"gas", Page<desk::frmGCWrite>()},
            {"daily_report", DailyReport},
            {"scheduler_data", Page<desk::frm_Sch_Data>()},
            {"history", History},
            {"chart_line", [](Stage& stage) { return Chart(stage, "cmdLineChart"); }},
            {"chart_bar", [](Stage& stage) { return Chart(stage, "cmdBarChart"); }},
            {"dialout", Dialout},
            {"users", Users},
            {"user", EditUser},
            {"audit", Audit},
            {"error_log", ErrorLog},
            {"mail", Mail},
            {"mail_addressees", Page<desk::frmemaildetails>()},
            {"mail_settings", MailSettings},
        };
        for (const auto& more : {SessionScreens(), ArchiveScreens(), HistoryScreens(), SignalScreens(),
                                 CalibrationScreens(), VerificationScreens()}) {
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }();
    return screens;
}

}  // namespace demo
