#include <gmock/gmock.h>

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QSignalSpy>
#include <QTimer>

#include "desk/session/DrsDrawing.h"
#include "desk/session/frm_summary.h"
#include "desk/session/frmconfparams.h"
#include "session/Session.h"
#include "session/editor/ConfigParams.h"
#include "support/ScreenDesk.h"
#include "support/SessionDesk.h"

using support::Answer;
using support::Click;
using support::Focus;
using support::The;
using support::Type;
using testing::HasSubstr;

namespace {

struct SummaryScreenTest : testing::Test {
    support::ScreenDesk desk;
    std::int64_t station = demo::AddStation(desk.dbconn, {"O'Brien's <b>Mill</b>", "TeleFlow", "Modbus", "RTU", 1, 1});
    fieldsim::Field& field = desk.OpenField();
    fieldsim::SignalList& values = *field.Values(station, 1, "PID Loop Mode");
    support::RecordingView view;
    session::Session session{desk.place, desk.scheduler, view, station};

    SummaryScreenTest() {
        desk.shared.currentuser = "WARDEN";
        desk.shared.rights.rightSetup = true;
    }

    // What is done while the station is polled, a poll or more between two steps.
    void Poll(const std::vector<std::function<void()>>& steps) {
        session.Connect();
        std::uint32_t after = 0;
        std::size_t done = 0;
        for (const auto& step : steps) {
            desk.clock.After(after += 20000, [&step, &done] { step(), ++done; });
        }
        desk.clock.After(after + 20000, [this] { session.Disconnect(); });
        session.GetData();
        EXPECT_EQ(done, steps.size());
    }
    double Station(const char* description) { return values.ValueAt(*values.Find(description), desk.clock.Now()); }
};

std::string TextOf(const QWidget& page, const char* name) {
    const QObject& control = The(page, name);
    return control.property("text").toString().toStdString();
}

void Key(const QWidget& page, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(page.focusWidget(), static_cast<Qt::Key>(key), modifiers);
    QCoreApplication::processEvents();
}

TEST_F(SummaryScreenTest, FiguresAreChangedByKeysAndClicksWhileTheStationIsPolled) {
    values.Fix("PID Loop Mode", 0);
    values.Fix("Batch Mode", 1);
    values.Fix("Flowrate", 512.25);
    auto& form = desk.Open<desk::frm_summary>(session);
    EXPECT_EQ(form.windowTitle(), "Summary - v10.3");
    EXPECT_EQ(TextOf(form, "lb_cur_FR"), "N/A");
    EXPECT_EQ(TextOf(form, "lblconsumer"), "O'Brien's <b>Mill</b>");
    EXPECT_EQ(The<QTimer>(form, "Timer1").interval(), 1000);
    EXPECT_TRUE(The<QTimer>(form, "Timer1").isActive());
    const auto frame = [&] { return The(form, "fra_write").isVisible(); };
    Poll({[&] {
              The<QTimer>(form, "Timer1").setInterval(0);  // a second is over
              QCoreApplication::processEvents();
              The<QTimer>(form, "Timer1").setInterval(1000);
              EXPECT_EQ(TextOf(form, "lb_cur_FR"), "512.2500");
              EXPECT_EQ(TextOf(form, "lbBatch"), "Enable");
              EXPECT_FALSE(frame());
              // A switch, by keys: chosen, flipped, flipped back, flipped, given.
              The(form, "lbPID_loop").setFocus();
              Key(form, Qt::Key_Return);
              EXPECT_TRUE(frame());
              EXPECT_EQ(TextOf(form, "lb_para"), "PID LOOP");
              EXPECT_EQ(TextOf(form, "txt_value"), "Auto");
              EXPECT_EQ(Focus(form), "cmd_toggle");
              for (const char* const word : {"Manual", "Auto", "Manual"}) {
                  Key(form, Qt::Key_Space);
                  EXPECT_EQ(TextOf(form, "txt_value"), word);
              }
              Key(form, Qt::Key_Tab);
              EXPECT_EQ(Focus(form), "cmd_ok");
              Key(form, Qt::Key_Return);
              EXPECT_FALSE(frame());
              EXPECT_EQ(Focus(form), "lbPID_loop");
              EXPECT_EQ(TextOf(form, "lblreq"), "Write Request Pending.....");
              for (const char* const label : {"lbBatch", "lbToday", "lbPID_loop"}) {
                  Click(form, label);
                  EXPECT_FALSE(frame()) << label;
              }
          },
          [&] {
              form.Fill();
              EXPECT_EQ(TextOf(form, "lblreq"), "PID Loop Mode: confirmed");
              EXPECT_EQ(TextOf(form, "lbPID_loop"), "Manual");
              EXPECT_EQ(Station("PID Loop Mode"), 1);
              // A number, by clicks; a wrong one is mended.
              Click(form, "lbFR_SP");
              EXPECT_EQ(Focus(form), "txt_value");
              EXPECT_FALSE(The(form, "cmd_toggle").isVisible());
              Type(form, "txt_value", "abc");
              Click(form, "cmd_ok");
              EXPECT_TRUE(frame());
              EXPECT_EQ(TextOf(form, "lblreq"), "Enter Proper Data");
              EXPECT_EQ(Focus(form), "txt_value");
              QTest::keyClicks(form.focusWidget(), "1250.5");
              Key(form, Qt::Key_Return);
              EXPECT_FALSE(frame());
              EXPECT_EQ(TextOf(form, "lblreq"), "Write Request Pending.....");
          },
          [&] {
              EXPECT_EQ(Station("PID Flow Set Point"), 1250.5);
              // Given up, by the mouse and by Escape; the page stays.
              for (const bool byMouse : {true, false}) {
                  Click(form, "lbBatch");
                  Click(form, "cmd_toggle");
                  byMouse ? Click(form, "cmd_cancel") : Key(form, Qt::Key_Escape);
                  EXPECT_FALSE(frame());
                  EXPECT_EQ(desk.window.Front(), &form);
              }
              EXPECT_FALSE(session.WritePending());
              desk.shared.currentuser = "nobody";
              Click(form, "lbBatch");
              Click(form, "cmd_ok");
              EXPECT_EQ(TextOf(form, "lblreq"), "Could not set. Lower user level.");
              desk.shared.rights.rightSetup = false;
              Click(form, "lbBatch");
              EXPECT_FALSE(frame());
              EXPECT_EQ(TextOf(form, "lblreq"), "User Not Granted Configuration Rights");
          }});
    EXPECT_EQ(Station("Batch Mode"), 1);
    QSignalSpy closed(&form, &desk::Page::Closed);
    Key(form, Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(SummaryScreenTest, WithoutALineOnlyTheOperatorsOwnFiguresAreChanged) {
    auto& form = desk.Open<desk::frm_summary>(session);
    Click(form, "lb_con_Hr");
    EXPECT_FALSE(The(form, "fra_write").isVisible());
    EXPECT_EQ(TextOf(form, "lblreq"), "Not connected");
    Click(form, "lbAdd");
    EXPECT_EQ(TextOf(form, "lb_para"), "Additional");
    EXPECT_EQ(TextOf(form, "txt_value"), "0");
    QTest::keyClicks(form.focusWidget(), "12.5");
    Key(form, Qt::Key_Enter);
    EXPECT_FALSE(The(form, "fra_write").isVisible());
    EXPECT_EQ(TextOf(form, "lbAdd"), "12.5");
    EXPECT_EQ(TextOf(form, "lblreq"), "");
    EXPECT_EQ(desk.Count("SummaryPara where lastvalue = 12.5 and description = 'Additional'"), 1);
}

TEST_F(SummaryScreenTest, AValueThatWasMeantForOneStreamIsNotWrittenToAnother) {
    const auto two =
        demo::AddStation(desk.dbconn, {"Two", "CWEFM-MultiStream", "BSAP", "", 2, 1, "", 2, {"AGA3", "AGA7"}});
    desk.OpenField();
    session::Session other(desk.place, desk.scheduler, view, two);
    auto& form = desk.Open<desk::frm_summary>(other);
    EXPECT_EQ(TextOf(form, "lblconsumer"), "Two, stream 1");
    other.Connect();
    desk.clock.After(20000, [&] {
        Click(form, "lb_N2");
        EXPECT_TRUE(The(form, "fra_write").isVisible());
        other.ChooseStream(2);
    });
    desk.clock.After(40000, [&] {
        Type(form, "txt_value", "1.5");
        Click(form, "cmd_ok");
        EXPECT_EQ(TextOf(form, "lblconsumer"), "Two, stream 2");
        EXPECT_FALSE(other.WritePending());
        other.Disconnect();
    });
    other.GetData();
    EXPECT_EQ(TextOf(form, "lblreq"), "Not set: another stream is shown now");
}

TEST_F(SummaryScreenTest, TheListIsShownSavedAndPrinted) {
    const auto list = session::fetch_params(desk.dbconn, desk.logs, desk.clock, station, 1);
    auto& form = desk.Open<desk::frmconfparams>(QString::fromStdString(list.text));
    EXPECT_EQ(form.windowTitle(), "Configurable Parameters - v10.3");
    EXPECT_TRUE(The<QPlainTextEdit>(form, "rtbconfparams").isReadOnly());
    Click(form, "cmdsave");
    const auto file = desk.shared.directory / "list.txt";
    auto& dialog = *form.findChild<QFileDialog*>();
    dialog.selectFile(QString::fromStdString(file.string()));
    Q_EMIT dialog.fileSelected(QString::fromStdString(file.string()));
    dialog.reject();
    EXPECT_EQ(support::FileText(file), list.text);
    QPrinter printer;
    printer.setOutputFileName(QString::fromStdString((desk.shared.directory / "list.pdf").string()));
    form.Print(printer);
    EXPECT_THAT(support::FileText(desk.shared.directory / "list.pdf"), testing::StartsWith("%PDF"));
}

TEST_F(SummaryScreenTest, TheDrawingTellsWhatWasReadAndNothingElse) {
    desk.dbconn.Execute("delete from configdata_detail where description = 'DRS Odorant Level'");
    session::Session other(desk.place, desk.scheduler, view, station);
    field.Values(station, 1, "SSV Stream1")->Fix("SSV Stream1", 1);
    field.Values(station, 1, "SSV Stream2")->Fix("SSV Stream2", 0);
    values.Fix("DRS Inlet Pressure", 18.256);
    desk::FrmPNI drawing;
    drawing.Show(other.Parameters(), false);
    EXPECT_EQ(drawing.accessibleDescription().count("N/A"), 12);
    other.Connect();
    desk.clock.After(20000, [&] { other.Disconnect(); });
    other.GetData();
    drawing.Show(other.Parameters(), false);
    const std::string words = drawing.accessibleDescription().toStdString();
    EXPECT_THAT(words, HasSubstr("SSV Stream1: CLOSE\nSSV Stream2: OPEN\n"));
    EXPECT_THAT(words, HasSubstr("DRS Inlet Pressure: 18.26 kg/cm2\n"));
    EXPECT_THAT(words, HasSubstr("DRS Odorant Level: N/A\n"));
}

}  // namespace
