#pragma once

#include <string_view>

#include "session/Session.h"

namespace session {

// What decides which commands of the window the operator has.
struct ButtonFacts {
    State state = State::Idle;
    bool isBsap = false;
    bool hidesCalibration = false;  // the model is not calibrated from here
    bool dataRight = true;          // the user may read data
    bool lineFree = true;           // no stations are being collected
    bool wasConnected = false;      // the last session came as far as a line
};

// Which commands are enabled, and which of the status area is seen.
struct Buttons {
    bool cmdConnect = false;
    bool cmdClose = false;  // pressed while a disconnect is under way it only says so
    bool cmddisconnect = false;
    bool cmdgetdata = false;
    bool cmd_arc = false;
    bool cmdfetch = false;
    bool cmdCalib = false;
    bool cmdSignalSearch = false;
    bool cmdDataVerify = false;

    bool cmdCalibSeen = true;
    bool lblmsgSeen = false;
    bool lbldisconnectSeen = false;
    bool pbupdateSeen = false;

    bool operator==(const Buttons&) const = default;
};

Buttons ButtonsOf(const ButtonFacts& facts);

// The TeleFlow and TeleCorrector models are not calibrated from the session.
bool HidesCalibration(std::string_view modelno);

}  // namespace session
