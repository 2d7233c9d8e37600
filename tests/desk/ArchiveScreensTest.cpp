// The archive screens by clicks and keys, on the virtual clock.

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

#include "desk/archive/frmCW_archive.h"
#include "desk/archive/frmHistory.h"
#include "desk/archive/frmarchive.h"
#include "desk/archive/frmarcmbus.h"
#include "desk/archive/frmparaarchive.h"
#include "desk/kit/frmtxrxleds.h"
#include "desk/mail/frmemail.h"
#include "desk/session/frm_CWM.h"
#include "desk/session/frmparalist.h"
#include "desk/shell/frmHisErrLog.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"

namespace {

using namespace support;
using testing::HasSubstr;
using testing::StartsWith;

const demo::DemoStation dialled{"Hill-Farm's <b>Gate</b>", "TeleFlow+", "BSAP", "", 1, 1, "5550142"};
const demo::DemoStation twin{"Twin", "CWEFM-MultiStream", "BSAP", "", 2, 6, "", 2, {"AGA3", "AGA7"}};
const demo::DemoStation micro{"Micro", "CW_Micro", "BSAP", "", 3, 4};

struct ArchiveScreens : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};

    ArchiveScreens() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = desk.shared.rights.rightArchive = true;
        for (const auto& station : {dialled, twin, micro}) {
            demo::AddStation(desk.dbconn, station);
        }
        // A CW speaks BSAP whatever its row says.
        desk.dbconn.Execute("update configdata_master set protocol='Modbus', mode='RTU' where locationID=2");
        desk.OpenField();
    }

    static int Rows(const QWidget& page) { return support::Rows(page, "grid"); }
    static bool Ticked(const QWidget& page, const char* name) { return The<QAbstractButton>(page, name).isChecked(); }
    // Saves the grid and gives the file's text.
    std::string Saved(const QWidget& page, const char* kind) {
        Click(page, "cmdsave");
        const auto file = desk.shared.directory / "saved";
        EXPECT_EQ(PickFile(page, file), kind);
        EXPECT_EQ(Answer(page), "Data Saved...");
        return FileText(file);
    }
};

TEST_F(ArchiveScreens, TheOldScreenFromTheMenu) {
    Click(desk.Open<desk::frmHisErrLog>(), "cmdarch");
    auto& page = desk.Front<desk::frmarchive>();
    EXPECT_TRUE(Ticked(page, "optaudit"));
    EXPECT_FALSE(Seen(page, "frmarc"));
    Click(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Invalid Location");
    auto& nodes = The<QComboBox>(page, "cmbNode");
    EXPECT_EQ(nodes.count(), 3);
    nodes.setCurrentIndex(0);
    EXPECT_EQ(Text(page, "cmbNode"), "1-Hill-Farm's <b>Gate</b>");
    Click(page, "optarchive");
    EXPECT_TRUE(Seen(page, "frmarc"));
    Click(page, "optdaily");
    const std::vector<const char*> commands{"cmdGo",     "cmd_stop", "cmdsave", "cmdReport",
                                            "cmd_email", "cmdClose", "cmbNode"};
    desk.Press(page, "cmdGo",
               {{"dialled", [&] { return Text(page, "lblmsg").starts_with("Dialing 5550142"); }, [] {}},
                {"rows", [&] { return Rows(page) > 4; },
                 [&] {
                     EXPECT_EQ(Usable(page, commands), "cmd_stop ");
                     QTest::keyClick(&The(page, "grid"), Qt::Key_Escape);
                     QCoreApplication::processEvents();
                     EXPECT_EQ(desk.window.Front(), &page);
                     EXPECT_THAT(Text(page, "lblrecno"), StartsWith("Record ("));
                 }}});
    EXPECT_EQ(Answer(page), "Archive Collected");
    EXPECT_EQ(Usable(page, commands), "cmdGo cmdsave cmdReport cmd_email cmdClose cmbNode ");
    EXPECT_EQ(Rows(page), 40);
    EXPECT_EQ(desk.Count("Daily_tf"), 40);
    // The captions at their full width, and the rows as they are shown.
    const std::string saved = Saved(page, "Text Files (*.txt)");
    EXPECT_THAT(saved, StartsWith("Time ::         ;Global ID       ;Local ID        ;DIFF. PRESSURE   ;"));
    std::string rows;
    for (const std::string& line : Lines(page, "grid")) {
        rows += rows.empty() ? "\n" : line + "|\r\n";
    }
    std::replace(rows.begin(), rows.end(), '|', ';');
    EXPECT_EQ(saved.substr(saved.find('\n')), rows);

    Click(page, "optaudit");
    EXPECT_FALSE(Enabled(page, "cmdReport"));
    desk.Press(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Audit Collected");
    EXPECT_EQ(desk.Count("Audit"), Rows(page));
    Click(page, "cmd_email");
    desk.Front<desk::frmemail>();
}

TEST_F(ArchiveScreens, TheOnlineScreenStopsGoesOnByDateAndStores) {
    auto& paralist = desk.Open<desk::frmparalist>(2);
    desk.Press(paralist, "cmdConnect");
    Click(paralist, "Op_Stream_2");
    Click(paralist, "cmd_arc");
    auto& page = desk.Front<desk::frmparaarchive>();
    EXPECT_EQ(Text(page, "cmbNode"), "2-Twin");
    EXPECT_EQ(Text(page, "lblstream"), "Stream 2");
    const std::vector<const char*> choices{"che_new", "chkStart", "DTPicker1", "DTPicker2", "opthourly"};
    EXPECT_TRUE(Ticked(page, "optarchive") && Ticked(page, "opthourly") && Ticked(page, "che_new"));
    EXPECT_EQ(Usable(page, choices), "che_new opthourly ");

    desk.Press(page, "cmdGo", {{"rows", [&] { return Rows(page) > 8; }, [&] { Click(page, "cmd_stop"); }}});
    const std::string stopped = std::to_string(Rows(page));
    EXPECT_EQ(Answer(page), "Stopped before the end\n" + stopped + " records received, " + stopped +
                                " stored: " + stopped + " new, 0 known.");
    EXPECT_EQ(desk.Count("tArchiveTimeStamp where NodeId=2 and StreamNo=2 and HistoryTypeId=5"), Rows(page));

    Click(page, "che_new");
    Click(page, "chkStart");
    EXPECT_EQ(Usable(page, choices), "chkStart DTPicker1 DTPicker2 opthourly ");
    desk.Press(page, "cmdGo");  // today, from the start of the day to its last record
    EXPECT_THAT(Answer(page), HasSubstr("known."));
    EXPECT_EQ(Rows(page), 10);
    EXPECT_THAT(Saved(page, "Excel Files(*.xls)"), HasSubstr("\r\n09/03/2026   9:0:0\t"));

    Click(page, "cmdfile");
    Click(desk.Front<desk::frmCW_archive>(), "cmdClose");
    Click(page, "cmdClose");
    EXPECT_EQ(desk.window.Front(), &paralist);
    EXPECT_EQ(paralist.GetSession()->GetState(), session::State::Connected);
    Click(paralist, "btnHistory");
    desk.Front<desk::frmHistory>();
}

TEST_F(ArchiveScreens, ByFileNumberInACallOfItsOwn) {
    auto& old = desk.Open<desk::frmarchive>();
    EXPECT_FALSE(Enabled(old, "cmdfile"));
    The<QComboBox>(old, "cmbNode").setCurrentIndex(1);
    Click(old, "cmdfile");
    auto& page = desk.Front<desk::frmCW_archive>();
    EXPECT_EQ(Text(page, "cmbNode"), "2-Twin");
    Click(page, "cmdGo");
    EXPECT_EQ(Answer(page), "Enter Archive File Number");
    Type(page, "Txt_arcfile", "2a5-6");
    EXPECT_EQ(Text(page, "Txt_arcfile"), "256");
    Click(page, "cmdGo");
    EXPECT_EQ(Answer(page), "An archive file has a number up to 255");
    Type(page, "Txt_arcfile", "4");
    desk.During({}, [&] { Key(page, Qt::Key_Return); });
    EXPECT_EQ(Answer(page), "Archive Collected");
    EXPECT_EQ(Box(page), nullptr);  // one run
    EXPECT_EQ(Rows(page), 40);
    EXPECT_EQ(desk.Count("tArchiveTimeStamp"), 0);
    EXPECT_FALSE(desk.Line().InUse());
    Type(page, "Txt_arcfile", "99");
    desk.Press(page, "cmdGo");
    EXPECT_THAT(Answer(page), StartsWith("Invalid Archive Number\n"));
}

TEST_F(ArchiveScreens, TheMenuOfAMicroHasALineForItsScreens) {
    auto& page = desk.Open<desk::frm_CWM>(3);
    const std::vector<const char*> commands{"cmdConnect", "cmddisconnect", "cmd_archive"};
    EXPECT_EQ(page.windowTitle(), "Selection Menu - v10.3----(Micro)");
    EXPECT_EQ(Usable(page, commands), "cmdConnect ");
    desk.Press(page, "cmdConnect");
    EXPECT_EQ(Text(page, "lblconnection"), "Connected");
    EXPECT_EQ(Usable(page, commands), "cmddisconnect cmd_archive ");
    Click(page, "cmdClose");
    EXPECT_EQ(Answer(page), "Stop Communitcation...");
    Click(page, "cmd_archive");
    auto& archive = desk.Front<desk::frmparaarchive>();
    desk.Press(archive, "cmdGo");
    EXPECT_THAT(Answer(archive), HasSubstr("new, 0 known."));
    Click(archive, "cmdClose");
    desk.Press(page, "cmddisconnect");
    EXPECT_EQ(Text(page, "lblconnection"), "Not connected");
    EXPECT_FALSE(desk.ports.PortOpen());
    Click(page, "cmdClose");
    EXPECT_NE(desk.window.Front(), &page);
}

struct ModbusArchiveScreen : testing::Test {
    ScreenDesk desk{{2026, 3, 9, 9, 0, 30}};
    demo::DemoStation station{"O'Brien's <b>Mill</b>", "TeleFlow", "Modbus", "RTU", 1, 5};
    std::int64_t locationID = 0;
    desk::frmarcmbus* page = nullptr;

    ModbusArchiveScreen() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightOnline = true;
    }
    int Rows() const { return support::Rows(*page, "mfg1"); }
};

TEST_F(ModbusArchiveScreen, ACallOfItsOwnIsDialledReadAndHungUp) {
    station.phoneno = "5550142";
    locationID = demo::AddStation(desk.dbconn, station);
    desk.OpenField();
    page = &desk.Open<desk::frmarcmbus>(nullptr, locationID);
    EXPECT_EQ(Text(*page, "lblconsumer"), "O'Brien's <b>Mill</b>");
    EXPECT_EQ(Text(*page, "lblhrd"), "Number of Hours");
    Click(*page, "optdly");
    EXPECT_EQ(Text(*page, "lblhrd"), "Number of Days");
    EXPECT_EQ(The<QComboBox>(*page, "cmbnum").count(), 31);
    const std::vector<const char*> commands{"cmdarchive", "cmd_stop", "cmdsave", "cmdviewreport", "cmd_email",
                                            "cmdClose",   "opthrly",  "optdly",  "cmbnum"};
    EXPECT_EQ(Usable(*page, commands), "cmdarchive cmdviewreport cmd_email cmdClose opthrly optdly cmbnum ");
    desk.Press(*page, "cmdarchive",
               {{"dialled", [this] { return Text(*page, "lblmsg").starts_with("Dialing"); }, [] {}},
                {"rows", [this] { return Rows() > 4; },
                 [&] {
                     EXPECT_EQ(Usable(*page, commands), "cmd_stop ");
                     EXPECT_EQ(Focus(*page), "cmd_stop");
                     Key(*page, Qt::Key_Escape);
                     EXPECT_EQ(desk.window.Front(), page);
                     EXPECT_EQ(Text(*page, "lblrecno"), "Record (8/40 )");
                 }},
                {"lamp", [this] { return The<desk::LineMark>(*page, "TX").Lit(); }, [] {}}});
    EXPECT_FALSE(desk.ports.PortOpen() || desk.Line().InUse());
    EXPECT_EQ(Answer(*page), "Archive Collected");
    EXPECT_EQ(Rows(), 40);
    EXPECT_EQ(desk.Count("daily_tf"), 40);
    Click(*page, "cmdsave");
    const auto file = desk.shared.directory / "archive.xls";
    EXPECT_EQ(PickFile(*page, file), "Excel Files(*.xls)");
    EXPECT_EQ(Answer(*page), "Data Saved...");
    const std::string saved = FileText(file);
    EXPECT_THAT(saved, StartsWith("Date                         \tDiff. Pressure \tStatic Pressure \t"));
    EXPECT_THAT(saved, HasSubstr("\r\n9/3/2026 6:00:00\t" + Cell(*page, "mfg1", 3, 1) + "\t"));
}

TEST_F(ModbusArchiveScreen, ASessionLendsItsLineAndGoesOn) {
    locationID = demo::AddStation(desk.dbconn, station);
    desk.OpenField();
    auto& paralist = desk.Open<desk::frmparalist>(locationID);
    session::Session& session = *paralist.GetSession();
    desk.Press(paralist, "cmdConnect");
    Click(paralist, "cmd_arc");
    page = &desk.Front<desk::frmarcmbus>();
    desk.Press(*page, "cmdarchive", {{"four", [this] { return Rows() == 4; }, [&] { Click(*page, "cmd_stop"); }}});
    EXPECT_THAT(Answer(*page), StartsWith("Stopped before the end\n8 of 72 records received, 8 stored."));
    EXPECT_EQ(desk.Count("hourly_tf"), 8);
    EXPECT_EQ(session.GetState(), session::State::Connected);
    Click(*page, "cmdClose");
    EXPECT_EQ(desk.window.Front(), &paralist);
}

}  // namespace
