// Sessions on a real serial port, against a slave of another make: what is written reaches the register from which it
// is read, and no other.

#include <gmock/gmock.h>

#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <map>
#include <string>
#include <vector>

#include "desk/kit/Grid.h"
#include "desk/session/ParameterTabs.h"
#include "desk/session/frmparalist.h"
#include "session/Session.h"
#include "support/LibmodbusSlave.h"
#include "support/PortDesk.h"
#include "support/ScreenDesk.h"
#include "support/Script.h"
#include "support/SessionDesk.h"

namespace {

using support::LibmodbusSlave;
using support::PortDesk;

// Everything that a slave holds.
struct Held {
    std::map<int, std::uint16_t> registers;
    std::map<int, bool> coils;

    Held(const LibmodbusSlave& slave, const support::SlaveMap& map) {
        for (int n = 0; n < map.registers; ++n) {
            registers[n] = map.floatInOneRegister ? 0 : slave.Register(n);
        }
        for (int n = 0; n < map.coils; ++n) {
            coils[n] = slave.Coil(n);
        }
    }
    bool operator==(const Held&) const = default;
};

TEST(LibmodbusSession, EveryTypeInEveryRegisterModeIsWrittenWhereItIsRead) {
    for (const bool oneRegister : {false, true}) {
        SCOPED_TRACE(oneRegister ? "a float in one register" : "a float in two registers");
        support::SlaveMap map;
        map.slave = 17;
        map.floatInOneRegister = oneRegister;
        LibmodbusSlave slave(map);
        PortDesk desk(slave.Path());
        const auto locationID = desk.AddStation();
        // A map laid out by hand: a stored address of 21 goes over the line as 20.
        desk.dbconn.Execute("update configdata_master set MB_CONFIG = true, rtubits = ?", {oneRegister});
        desk.dbconn.Execute("update configdata_detail set startaddress = '0'");
        const auto place = [&](const char* description, int address, const char* type) {
            desk.dbconn.Execute("update configdata_detail set startaddress = ?, type = ? where description = ?",
                                {std::to_string(address), type, description});
        };
        place("Keypad N2", 21, "Float");
        place("Keypad CO2", oneRegister ? 22 : 23, "Float");
        place("Time Sync", 5, "Coil(Boolean)");
        place("Door Position", 6, "Coil(Boolean)");
        if (!oneRegister) {
            place("Dial-out Retry Count", 41, "Integer");
            place("Dial-out Retry Delay", 42, "Integer");
        }
        const char* elements[] = {"Set Year", "Set Month", "Set Date", "Set Hour", "Set Minute", "Set Second"};
        for (int i = 0; i < 6; ++i) {
            place(elements[i], 51 + (oneRegister ? i : 2 * i), "Float");
        }
        place("Set Time & Date", 11, "Coil(Boolean)");
        slave.SetFloat(20, 1.5F);
        slave.SetCoil(4, true);
        const int second = oneRegister ? 21 : 22;
        slave.SetFloat(second, 7.25F);

        support::RecordingView view;
        session::Session session(desk.place, desk.scheduler, view, locationID);
        const auto row = [&](const char* aga, const char* description) {
            return session.Parameters().Find(aga, description).value();
        };
        session.Connect();
        ASSERT_EQ(session.GetState(), session::State::Connected) << desk.scratch.RtuErr();
        const auto polled = [&] { return session.ValuesAt().has_value() && !session.WritePending(); };
        std::vector<support::Script::Step> steps{
            {"read", polled,
             [&] {
                 EXPECT_EQ(session.Parameters().At(row("KEYPAD", "Keypad N2")).lastvalue, 1.5);
                 EXPECT_EQ(session.Parameters().At(row("KEYPAD", "Keypad CO2")).lastvalue, 7.25);
                 EXPECT_EQ(session.Parameters().At(row("HEALTH", "Time Sync")).lastvalue, 1);
                 EXPECT_EQ(session.AskWrite(row("KEYPAD", "Keypad N2"), "-12.5"), "");
             }},
            {"coil", polled, [&] { EXPECT_EQ(session.AskWrite(row("DRS", "Door Position"), "OPEN"), ""); }},
            {"coil off", polled, [&] { EXPECT_EQ(session.AskWrite(row("HEALTH", "Time Sync"), "SET_TIME"), ""); }}};
        if (!oneRegister) {
            steps.push_back({"integer", polled,
                             [&] { EXPECT_EQ(session.AskWrite(row("ALARM", "Dial-out Retry Delay"), "-300"), ""); }});
        }
        steps.push_back({"clock", polled, [&] { session.AskTime(); }});
        steps.push_back({"end", [&] { return polled() && !session.TimePending(); }, [&] { session.Disconnect(); }});
        support::Script script(steps);
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] { script.Turn(); });
        timer.start(5);
        QTimer::singleShot(60000, &timer, [&] { session.Disconnect(); });
        Held expected(slave, map);
        session.GetData();
        EXPECT_EQ(script.Missing(), "");
        EXPECT_THAT(view.boxes, testing::ElementsAre("The clock of the station: not confirmed: its map has no clock"));

        EXPECT_EQ(slave.Float(20), -12.5F);
        EXPECT_EQ(slave.Float(second), 7.25F) << "the neighbour";
        const core::DateTime now = desk.clock.Now();
        EXPECT_EQ(slave.Float(50), static_cast<float>(now.year));
        EXPECT_EQ(slave.Float(50 + (oneRegister ? 1 : 2)), static_cast<float>(now.month));
        expected.coils[4] = false;
        expected.coils[5] = true;
        expected.coils[10] = true;
        if (!oneRegister) {
            expected.registers[41] = static_cast<std::uint16_t>(-300);
            for (const int changed : {20, 21, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61}) {
                expected.registers[changed] = slave.Register(changed);
            }
        }
        EXPECT_EQ(Held(slave, map), expected);
    }
}

// The window on a TeleFlow with the fixed map of its model, by clicks and keys.
TEST(LibmodbusSession, ATeleFlowIsReadAndWrittenThroughItsWindow) {
    support::SlaveMap map;
    map.slave = 17;
    map.registers = 600;
    map.coils = 80;
    LibmodbusSlave slave(map);
    slave.SetFloat(372, 0.25F);  // Keypad N2: the 187th value
    slave.SetCoil(26, true);     // Time Sync
    PortDesk desk(slave.Path());
    desk.shared.rights = {true, true, true, true, true, true, true, true, true, true, true, true};
    const auto locationID = desk.AddStation();
    desk::Navigator window;
    desk::Desk surroundings{desk.place, desk.shared.addressees, desk.scheduler, desk.mail, window};
    auto* page = new desk::frmparalist(surroundings, locationID);
    window.resize(1024, 680);
    window.Open(page);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    session::Session& session = *page->GetSession();
    auto& tabs = support::The<desk::ParameterTabs>(*page, "gridtab");
    const auto choose = [&](const char* aga, const char* description) {
        const auto place = session.Parameters().Find(aga, description).value();
        tabs.BringForward(place.group);
        desk::Grid& grid = tabs.GridOf(place.group);
        grid.setFocus();
        grid.SelectRow(tabs.GridRow(place.group, place.row));
        QTest::keyClick(&grid, Qt::Key_Return);
    };
    const auto polled = [&] { return session.ValuesAt().has_value() && !session.WritePending(); };
    const Held before(slave, map);
    support::Script script({
        {"a value", polled,
         [&] {
             choose("KEYPAD", "Keypad N2");
             EXPECT_EQ(support::The<QLineEdit>(*page, "txtvalue").text().toStdString(), "0.250000");
             QTest::keyClicks(&support::The(*page, "txtvalue"), "3.5");
             QTest::keyClick(&support::The(*page, "txtvalue"), Qt::Key_Return);
             EXPECT_TRUE(session.WritePending());
         }},
        {"a switch", polled,
         [&] {
             choose("HEALTH", "Time Sync");
             support::Click(*page, "cmdtoggle");
             support::Click(*page, "cmdwrite");
         }},
        {"end", polled, [&] { support::Click(*page, "cmddisconnect"); }},
    });
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { script.Turn(); });
    support::Click(*page, "cmdConnect");
    EXPECT_EQ(support::The<QLabel>(*page, "lblmsg").text().toStdString(), "Connected");
    timer.start(10);
    support::Click(*page, "cmdgetdata");
    EXPECT_EQ(script.Missing(), "");
    EXPECT_EQ(support::Answer(*page, QMessageBox::No), "Do you want to see list of configurable parameters?");
    Held expected = before;
    EXPECT_EQ(slave.Float(372), 3.5F);
    expected.registers[372] = slave.Register(372);
    expected.registers[373] = slave.Register(373);
    expected.coils[26] = false;
    EXPECT_EQ(Held(slave, map), expected);
    EXPECT_EQ(
        desk.dbconn.First("select lastvalue from configdata_detail where description='Keypad N2'").value()[0].Number(),
        3.5);
}

}  // namespace
