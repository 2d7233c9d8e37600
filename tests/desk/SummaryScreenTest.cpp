#include <gmock/gmock.h>

#include "desk/session/DrsDrawing.h"
#include "desk/session/ParameterTabs.h"
#include "desk/session/frm_summary.h"
#include "desk/session/frmconfparams.h"
#include "session/Session.h"
#include "support/ScreenDesk.h"
#include "support/SessionDesk.h"

namespace {

using namespace support;
using testing::HasSubstr;

struct SummaryScreenTest : testing::Test {
    ScreenDesk desk;
    std::int64_t station = demo::AddStation(desk.dbconn, {"O'Brien's <b>Mill</b>", "TeleFlow", "Modbus", "RTU", 1, 1});
    fieldsim::Field& field = desk.OpenField();
    fieldsim::SignalList& values = *field.Values(station, 1, "PID Loop Mode");
    RecordingView view;
    session::Session session{desk.place, view, station};

    SummaryScreenTest() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightSetup = true;
    }
    // What is done while a station is polled, a poll or more between two steps.
    void Poll(session::Session& polled, const std::vector<std::function<void()>>& steps) {
        polled.Connect();
        desk.Settle();
        std::uint32_t after = 0;
        std::size_t done = 0;
        for (const auto& step : steps) {
            desk.clock.After(after += 20000, [&step, &done] { step(), ++done; });
        }
        desk.clock.After(after + 20000, [&polled] { polled.Disconnect(); });
        polled.GetData();
        desk.Settle();
        EXPECT_EQ(done, steps.size());
    }
    double Station(const char* description) { return values.ValueAt(*values.Find(description), desk.clock.Now()); }
};

TEST_F(SummaryScreenTest, FiguresAreChangedByKeysAndClicksWhileTheStationIsPolled) {
    values.Fix("PID Loop Mode", 0);
    values.Fix("Flowrate", 512.25);
    auto& form = desk.Open<desk::frm_summary>(session);
    EXPECT_EQ(Text(form, "lb_cur_FR"), "N/A");
    EXPECT_EQ(Text(form, "lblconsumer"), "O'Brien's <b>Mill</b>");
    // Without a line only the operator's own figures are changed.
    Click(form, "lb_con_Hr");
    EXPECT_FALSE(Seen(form, "fra_write"));
    EXPECT_EQ(Text(form, "lblreq"), "Not connected");
    Click(form, "lbAdd");
    EXPECT_EQ(Text(form, "lb_para") + Text(form, "txt_value"), "Additional0");
    QTest::keyClicks(form.focusWidget(), "12.5");
    Key(form, Qt::Key_Enter);
    EXPECT_EQ(Text(form, "lbAdd"), "12.5");
    Poll(session, {[&] {
                       Fire(form, "Timer1");
                       EXPECT_EQ(Text(form, "lb_cur_FR"), "512.2500");
                       // A switch, by keys: chosen, flipped, given.
                       The(form, "lbPID_loop").setFocus();
                       Key(form, Qt::Key_Return);
                       EXPECT_EQ(Text(form, "lb_para") + Text(form, "txt_value"), "PID LOOPAuto");
                       EXPECT_EQ(Focus(form), "cmd_toggle");
                       Key(form, Qt::Key_Space);
                       EXPECT_EQ(Text(form, "txt_value"), "Manual");
                       Key(form, Qt::Key_Tab);
                       Key(form, Qt::Key_Return);
                       EXPECT_FALSE(Seen(form, "fra_write"));
                       EXPECT_EQ(Focus(form), "lbPID_loop");
                       EXPECT_EQ(Text(form, "lblreq"), "Write Request Pending.....");
                       Click(form, "lbBatch");
                       EXPECT_FALSE(Seen(form, "fra_write")) << "one at a time";
                   },
                   [&] {
                       Fire(form, "Timer1");
                       EXPECT_EQ(Text(form, "lblreq"), "PID Loop Mode: confirmed");
                       EXPECT_EQ(Text(form, "lbPID_loop"), "Manual");
                       // A number, by clicks; a wrong one is mended.
                       Click(form, "lbFR_SP");
                       EXPECT_FALSE(Seen(form, "cmd_toggle"));
                       Type(form, "txt_value", "abc");
                       Click(form, "cmd_ok");
                       EXPECT_EQ(Text(form, "lblreq"), "Enter Proper Data");
                       EXPECT_EQ(Focus(form), "txt_value");
                       QTest::keyClicks(form.focusWidget(), "1250.5");
                       Key(form, Qt::Key_Return);
                       EXPECT_FALSE(Seen(form, "fra_write"));
                   },
                   [&] {
                       EXPECT_EQ(Station("PID Flow Set Point"), 1250.5);
                       // Given up, by the mouse and by Escape; the page stays.
                       for (const bool byMouse : {true, false}) {
                           Click(form, "lbBatch");
                           byMouse ? Click(form, "cmd_cancel") : Key(form, Qt::Key_Escape);
                           EXPECT_FALSE(Seen(form, "fra_write"));
                           EXPECT_EQ(desk.window.Front(), &form);
                       }
                       EXPECT_FALSE(session.WritePending());
                   }});
    EXPECT_EQ(Station("PID Loop Mode"), 1);
}

TEST_F(SummaryScreenTest, TheListIsShownAndSaved) {
    auto& form = desk.Open<desk::frmconfparams>("Keypad N2 = 1\n");
    EXPECT_EQ(Text(form, "rtbconfparams"), "Keypad N2 = 1\n");
    Click(form, "cmdsave");
    const auto file = desk.shared.directory / "list.txt";
    EXPECT_EQ(PickFile(form, file), "Text (*.txt)");
    EXPECT_EQ(FileText(file), "Keypad N2 = 1\r\n");
}

TEST_F(SummaryScreenTest, TheDrawingTellsWhatWasReadAndNothingElse) {
    desk.dbconn.Execute("delete from configdata_detail where description = 'DRS Odorant Level'");
    session::Session other(desk.place, view, station);
    field.Values(station, 1, "SSV Stream1")->Fix("SSV Stream1", 1);
    values.Fix("DRS Inlet Pressure", 18.256);
    desk::FrmPNI drawing;
    drawing.Show(other.Parameters(), false);
    EXPECT_EQ(drawing.accessibleDescription().count("N/A"), 12);
    Poll(other, {});
    drawing.Show(other.Parameters(), false);
    const std::string words = drawing.accessibleDescription().toStdString();
    EXPECT_THAT(words, HasSubstr("SSV Stream1: CLOSE\n"));
    EXPECT_THAT(words, HasSubstr("DRS Inlet Pressure: 18.26 kg/cm2\n"));
    EXPECT_THAT(words, HasSubstr("DRS Odorant Level: N/A\n"));
}

std::size_t Group(const char* aga) {
    return session::GroupOf(aga).value();
}

// The tabs that are seen, each with the grid in front of it.
std::string TabsOf(desk::ParameterTabs& tabs) {
    std::string seen;
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        if (tabs.isTabVisible(tab)) {
            seen += tabs.tabText(tab).toStdString() + ":" + tabs.GridInFront()->objectName().toStdString() + " ";
        }
    }
    return seen;
}

TEST(ParameterTabs, ShowsTheTabsAndGridsOfItsStation) {
    desk::ParameterTabs tabs;
    tabs.FormatString("|a|b");
    for (const char* aga : {"RADIO", "KEYPAD", "MODEM", "Quantum"}) {
        tabs.Show(Group(aga), {{"", "x", "y"}});
    }
    const std::string middle =
        "GC:gcgrid Totals:totrendgrid Health:healthgrid Alarm:alarmgrid I/O:IOGrid Nomination:nomgrid PID:controlgrid ";
    tabs.Arrange({.isAga3 = true});
    EXPECT_EQ(tabs.currentIndex(), 0);
    EXPECT_EQ(TabsOf(tabs), "AGA3:aga3grid AGA8:aga8Detail " + middle + "Radio:radiogrid Keypad:keypadgrid ");
    tabs.Arrange({.Gross_Detail = true, .superUser = true, .drs = 2});
    EXPECT_EQ(TabsOf(tabs), "AGA7:aga7grid AGA8:aga8gridGross " + middle +
                                "DRS:DRSgrid Curve:radiogrid Modem:modemgrid Keypad:keypadgrid ");
    EXPECT_FALSE(tabs.cmdgc().isHidden());
    tabs.Arrange({.quantum = true});
    EXPECT_EQ(tabs.currentIndex(), 16);
    EXPECT_EQ(TabsOf(tabs), "Quantum:floatgrid ");
}

}  // namespace
