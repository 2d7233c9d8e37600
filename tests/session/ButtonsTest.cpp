// Which commands the operator has in each state of the session.

#include <gtest/gtest.h>

#include <string>

#include "session/Buttons.h"

namespace session {
namespace {

// A mark for each: Connect, Close, Disconnect, Get data, Archive, Fetch, Calibration, Search; behind the blank the
// message, the text of the disconnect and the progress.
std::string Marks(const Buttons& b) {
    const auto mark = [](bool on) { return on ? 'x' : '.'; };
    return {mark(b.cmdConnect), mark(b.cmdClose),          mark(b.cmddisconnect),
            mark(b.cmdgetdata), mark(b.cmd_arc),           mark(b.cmdfetch),
            mark(b.cmdCalib),   mark(b.cmdSignalSearch),   ' ',
            mark(b.lblmsgSeen), mark(b.lbldisconnectSeen), mark(b.pbupdateSeen)};
}

TEST(Buttons, EveryStateOfASession) {
    const struct {
        ButtonFacts facts;
        const char* marks;
    } cases[] = {
        {{State::Idle, true}, "xx...... ..."},
        {{State::Idle, true, false, true, false}, ".x...... ..."},  // stations are being collected
        {{State::Idle, true, false, true, true, true}, "xx...... x.."},
        {{State::Connecting, true}, "..x..... x.x"},
        {{State::Connected, true}, "..xxxxxx x.x"},
        {{State::Connected, false}, "..xxx... x.x"},               // Modbus and Quantum have no signals with names
        {{State::Connected, true, false, false}, "..x.xxxx x.x"},  // a user without the right to data
        {{State::Polling, true}, "..x.xxxx x.x"},
        {{State::Polling, false}, "..x.x... x.x"},
        {{State::Disconnecting, true}, ".x...... xxx"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Marks(ButtonsOf(test.facts)), test.marks) << static_cast<int>(test.facts.state);
        EXPECT_EQ(ButtonsOf(test.facts).cmdDataVerify, test.facts.dataRight && test.facts.isBsap);
    }
    // Calibration is hidden for the models that have none.
    EXPECT_FALSE(ButtonsOf({State::Idle, false, true}).cmdCalibSeen);
    EXPECT_TRUE(HidesCalibration("TeleFlow+") && HidesCalibration("telecorrector"));
    EXPECT_FALSE(HidesCalibration("TeleRTU") || HidesCalibration("CWEFM-AGA3"));
}

}  // namespace
}  // namespace session
