// The archive screens of BSAP stations by clicks and keys, on the virtual clock.

#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include "core/Text.h"
#include "desk/archive/frmCW_archive.h"
#include "desk/archive/frmHistory.h"
#include "desk/archive/frmarchive.h"
#include "desk/archive/frmparaarchive.h"
#include "desk/kit/Grid.h"
#include "desk/mail/frmemail.h"
#include "desk/session/frm_CWM.h"
#include "desk/session/frmparalist.h"
#include "desk/shell/frmHisErrLog.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using support::Answer;
using support::Click;
using support::The;
using testing::HasSubstr;
using testing::StartsWith;

const demo::DemoStation dialled{"Hill-Farm's <b>Gate</b>", "TeleFlow+", "BSAP", "", 1, 1, "5550142"};
const demo::DemoStation twin{"Twin", "CWEFM-MultiStream", "BSAP", "", 2, 6, "", 2, {"AGA3", "AGA7"}};
const demo::DemoStation micro{"Micro", "CW_Micro", "BSAP", "", 3, 4};

struct ArchiveScreens : testing::Test {
    support::ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};

    ArchiveScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = desk.shared.rights.rightArchive = true;
        for (const auto& station : {dialled, twin, micro}) {
            demo::AddStation(desk.dbconn, station);
        }
        // A CW speaks BSAP whatever its row says.
        desk.dbconn.Execute("update configdata_master set protocol='Modbus', mode='RTU' where locationID=2");
        field = &desk.OpenField();
    }

    fieldsim::Field* field = nullptr;

    // The line that a file is to hold of each record of an archive file of the field.
    std::vector<std::string> LinesOf(std::int64_t locationID, int file, const std::string& ending) const {
        std::vector<std::string> lines;
        for (const auto& record : field->Station(locationID)->bsap->Archives().at(file).records) {
            const core::DateTime& at = record.at;
            std::string line = core::DateText(at) + "   " + std::to_string(at.hour) + ":" + std::to_string(at.minute) +
                               ":" + std::to_string(at.second) + ending + std::to_string(record.globalID) + ending +
                               std::to_string(record.localID) + ending;
            for (const double value : record.values) {
                line += core::NumberText(core::RoundTo(static_cast<float>(value), 2)) + ending;
            }
            lines.push_back(line + "\r\n");
        }
        return lines;
    }

    static int Rows(const QWidget& page) { return The<desk::Grid>(page, "grid").Rows(); }
    static std::string Label(const QWidget& page, const char* name) {
        return The<QLabel>(page, name).text().toStdString();
    }
    static bool Enabled(const QWidget& page, const char* name) { return The(page, name).isEnabled(); }
    static bool Ticked(const QWidget& page, const char* name) { return The<QAbstractButton>(page, name).isChecked(); }
    // Saves the grid and gives the file's text.
    std::string Saved(const QWidget& page, const char* filter) {
        Click(page, "cmdsave");
        const auto file = desk.shared.directory / "saved";
        auto& dialog = *page.findChild<QFileDialog*>();
        EXPECT_EQ(dialog.nameFilters(), QStringList(filter));
        Q_EMIT dialog.fileSelected(QString::fromStdString(file.string()));
        dialog.reject();
        EXPECT_EQ(Answer(page), "Data Saved...");
        return support::FileText(file);
    }
};

TEST_F(ArchiveScreens, TheOldScreenFromTheMenu) {
    auto& menu = desk.Open<desk::frmHisErrLog>();
    Click(menu, "cmdarch");
    auto& page = desk.Front<desk::frmarchive>();
    EXPECT_EQ(page.windowTitle(), "Historical Data - v10.3");
    EXPECT_TRUE(Ticked(page, "optaudit"));
    EXPECT_FALSE(The(page, "frmarc").isVisible());
    EXPECT_FALSE(Enabled(page, "cmd_stop"));
    Click(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Invalid Location");
    auto& nodes = The<QComboBox>(page, "cmbNode");
    EXPECT_EQ(nodes.itemText(0), "1-Hill-Farm's <b>Gate</b>");
    EXPECT_EQ(nodes.count(), 3);
    nodes.setCurrentIndex(0);
    Click(page, "optarchive");
    EXPECT_TRUE(The(page, "frmarc").isVisible());
    Click(page, "optdaily");
    desk.Press(page, "cmdGo",
               {{"dialled", [&] { return Label(page, "lblmsg").starts_with("Dialing 5550142"); }, [] {}},
                {"rows", [&] { return Rows(page) > 4; },
                 [&] {
                     for (const char* command : {"cmdGo", "cmdsave", "cmdReport", "cmd_email", "cmdClose", "cmbNode"}) {
                         EXPECT_FALSE(Enabled(page, command)) << command;
                     }
                     QTest::keyClick(&The(page, "grid"), Qt::Key_Escape);
                     QCoreApplication::processEvents();
                     EXPECT_EQ(desk.window.Front(), &page);
                     EXPECT_THAT(Label(page, "lblrecno"), StartsWith("Record ("));
                 }}});
    EXPECT_EQ(Answer(page), "Archive Collected");
    EXPECT_EQ(Rows(page), 40);
    EXPECT_EQ(desk.Count("Daily_tf"), 40);
    const std::string text = Saved(page, "Text Files (*.txt)");
    EXPECT_THAT(text, StartsWith("Time ::         ;Global ID       ;Local ID        ;"));
    std::string rows;
    for (const std::string& line : LinesOf(1, 1, ";")) {
        rows += line;
    }
    EXPECT_EQ(text.substr(text.find('\n') + 1), rows);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 41);

    EXPECT_TRUE(Enabled(page, "cmdReport"));
    Click(page, "cmdReport");
    EXPECT_EQ(support::Box(page), nullptr);
    Click(page, "optaudit");
    EXPECT_FALSE(Enabled(page, "cmdReport"));
    desk.Press(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Audit Collected");
    EXPECT_EQ(Rows(page), 40);
    EXPECT_EQ(desk.Count("Audit"), 40);
    Click(page, "cmd_email");
    desk.Front<desk::frmemail>();
}

TEST_F(ArchiveScreens, TheOnlineScreenStopsGoesOnByDateAndStores) {
    auto& paralist = desk.Open<desk::frmparalist>(2);
    Click(paralist, "cmdConnect");
    Click(paralist, "Op_Stream_2");
    Click(paralist, "cmd_arc");
    auto& page = desk.Front<desk::frmparaarchive>();
    EXPECT_EQ(The<QComboBox>(page, "cmbNode").currentText(), "2-Twin");
    EXPECT_EQ(Label(page, "lblstream"), "Stream 2");
    EXPECT_TRUE(Ticked(page, "optarchive") && Ticked(page, "opthourly") && Ticked(page, "che_new"));
    EXPECT_FALSE(Enabled(page, "chkStart") || Enabled(page, "DTPicker1") || Enabled(page, "lblEnd"));

    desk.Press(page, "cmdGo", {{"rows", [&] { return Rows(page) > 8; }, [&] { Click(page, "cmd_stop"); }}});
    const int stopped = Rows(page);
    EXPECT_EQ(Answer(page), "Stopped before the end\n" + std::to_string(stopped) + " records received, " +
                                std::to_string(stopped) + " stored: " + std::to_string(stopped) + " new, 0 known.");
    EXPECT_EQ(desk.Count("tArchiveTimeStamp where NodeId=2 and StreamNo=2 and HistoryTypeId=5"), stopped);

    Click(page, "che_new");
    EXPECT_TRUE(Enabled(page, "chkStart"));
    Click(page, "chkStart");
    EXPECT_FALSE(Enabled(page, "che_new") || Ticked(page, "che_new"));
    EXPECT_TRUE(Enabled(page, "DTPicker1") && Enabled(page, "DTPicker2") && Enabled(page, "lblEnd"));
    desk.Press(page, "cmdGo");  // today, from the start of the day to its last record
    EXPECT_THAT(Answer(page), HasSubstr("known."));
    EXPECT_EQ(Rows(page), 10);
    EXPECT_THAT(Saved(page, "Excel Files(*.xls)"), HasSubstr("\r\n09/03/2026   9:0:0\t"));

    Click(page, "optaudit");
    EXPECT_TRUE(Ticked(page, "che_new"));
    EXPECT_FALSE(Enabled(page, "chkStart") || Enabled(page, "opthourly"));
    desk.Press(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Audit Collected");
    EXPECT_EQ(The<desk::Grid>(page, "grid").TextMatrix(0, 0), "1");

    Click(page, "cmdfile");
    desk.Front<desk::frmCW_archive>();
    Click(desk.Front<desk::frmCW_archive>(), "cmdClose");
    Click(page, "cmdClose");
    EXPECT_EQ(desk.window.Front(), &paralist);
    EXPECT_EQ(paralist.GetSession()->GetState(), session::State::Connected);
    Click(paralist, "cmdfetch");
    EXPECT_EQ(The<QComboBox>(*desk.window.Front(), "cmbnodename").currentText(), "Twin");
    Click(*desk.window.Front(), "cmdClose");
    Click(paralist, "btnHistory");
    desk.Front<desk::frmHistory>();
}

TEST_F(ArchiveScreens, ByFileNumberInACallOfItsOwn) {
    auto& old = desk.Open<desk::frmarchive>();
    EXPECT_FALSE(Enabled(old, "cmdfile"));
    The<QComboBox>(old, "cmbNode").setCurrentIndex(1);
    Click(old, "cmdfile");
    auto& page = desk.Front<desk::frmCW_archive>();
    EXPECT_EQ(The<QComboBox>(page, "cmbNode").currentText(), "2-Twin");
    Click(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Enter Archive File Number");
    auto& number = The<QLineEdit>(page, "Txt_arcfile");
    QTest::keyClicks(&number, "2a5-6");
    EXPECT_EQ(number.text(), "256");
    Click(page, "cmdGo");
    EXPECT_EQ(Answer(page), "An archive file has a number up to 255");
    number.clear();
    QTest::keyClicks(&number, "4");
    QTest::keyClick(&number, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(Answer(page), "Archive Collected");
    EXPECT_EQ(support::Box(page), nullptr);  // one run
    EXPECT_EQ(Rows(page), 40);
    EXPECT_EQ(desk.Count("tArchiveTimeStamp"), 0);
    EXPECT_FALSE(desk.Line().InUse());
    number.setText("99");
    desk.Press(page, "cmdGo");
    EXPECT_EQ(Answer(page),
              "Invalid Archive Number\nThe station refused the request (status 135, 129).\n0 records received.");
}

TEST_F(ArchiveScreens, TheMenuOfAMicroHasALineForItsScreens) {
    auto& page = desk.Open<desk::frm_CWM>(3);
    EXPECT_EQ(page.windowTitle(), "Selection Menu - v10.3----(Micro)");
    EXPECT_FALSE(Enabled(page, "cmd_archive") || Enabled(page, "cmddisconnect"));
    desk.Press(page, "cmdConnect");
    EXPECT_EQ(Label(page, "lblconnection"), "Connected");
    Click(page, "cmdClose");
    EXPECT_EQ(Answer(page), "Stop Communitcation...");
    Click(page, "cmd_archive");
    auto& archive = desk.Front<desk::frmparaarchive>();
    desk.Press(archive, "cmdGo");
    EXPECT_THAT(Answer(archive), HasSubstr("new, 0 known."));
    Click(archive, "cmdClose");
    desk.Press(page, "cmddisconnect");
    EXPECT_EQ(Label(page, "lblconnection"), "Not connected");
    EXPECT_FALSE(desk.ports.PortOpen());
    Click(page, "cmdClose");
    EXPECT_NE(desk.window.Front(), &page);
}

TEST_F(ArchiveScreens, AStartThatFailsLeavesThePageOpen) {
    auto& paralist = desk.Open<desk::frmparalist>(2);
    Click(paralist, "cmdConnect");
    Click(paralist, "cmd_arc");
    auto& online = desk.Front<desk::frmparaarchive>();
    auto& old = desk.Open<desk::frmarchive>();
    The<QComboBox>(old, "cmbNode").setCurrentIndex(0);
    desk.dbconn.Execute("alter table configdata_master rename to away");
    for (const QWidget* page : std::initializer_list<const QWidget*>{&online, &old}) {
        Click(*page, "cmdGo");
        EXPECT_TRUE(Enabled(*page, "cmdGo") && Enabled(*page, "cmdClose") && Enabled(*page, "choices"));
    }
}

// The schedule takes the line: what came is kept, and Collect says that there is no line any more.
TEST_F(ArchiveScreens, AScheduledRunEndsADownload) {
    desk.dbconn.Execute("update configdata_master set contracthour='09:01' where locationID=1");
    auto& paralist = desk.Open<desk::frmparalist>(2);
    Click(paralist, "cmdConnect");
    Click(paralist, "cmd_arc");
    auto& page = desk.Front<desk::frmparaarchive>();
    desk.StartTicking();
    desk.clock.Run(58000 - desk.clock.Elapsed() % 60000);
    desk.Press(page, "cmdGo",
               {{"taken", [&] { return !desk.scheduler.InHand().empty(); },
                 [&] {
                     QMetaObject::invokeMethod(&The<QTimer>(page, "tmrline"), "timeout");
                     EXPECT_THAT(Label(page, "lblmsg"), StartsWith("The line was taken to collect "));
                 }}});
    EXPECT_THAT(Answer(page), StartsWith("A scheduled collection has taken the line\n"));
    EXPECT_EQ(desk.Count("tArchiveTimeStamp where NodeId=2"), Rows(page));
    EXPECT_TRUE(desk.Master(1).Bool("sampledtoday")) << desk.RtuErr();
    desk.Press(page, "cmdGo");
    EXPECT_THAT(Answer(page), StartsWith("There is no line to the station."));
}

}  // namespace
