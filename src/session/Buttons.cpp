#include "session/Buttons.h"

#include <algorithm>
#include <array>

#include "core/Text.h"

namespace session {

Buttons ButtonsOf(const ButtonFacts& facts) {
    const bool lineUp = facts.state == State::Connected || facts.state == State::Polling;
    Buttons buttons;
    buttons.cmdConnect = facts.state == State::Idle && facts.lineFree;
    buttons.cmdClose = facts.state == State::Idle || facts.state == State::Disconnecting;
    buttons.cmddisconnect = lineUp || facts.state == State::Connecting;
    buttons.cmdgetdata = facts.state == State::Connected && facts.dataRight;
    buttons.cmd_arc = lineUp;
    buttons.cmdfetch = lineUp && facts.isBsap;
    buttons.cmdCalib = lineUp && facts.isBsap;
    buttons.cmdSignalSearch = lineUp && facts.isBsap;
    buttons.cmdDataVerify = facts.dataRight && facts.isBsap;
    buttons.cmdCalibSeen = !facts.hidesCalibration;
    buttons.lblmsgSeen = facts.state != State::Idle || facts.wasConnected;
    buttons.lbldisconnectSeen = facts.state == State::Disconnecting;
    buttons.pbupdateSeen = facts.state != State::Idle;
    return buttons;
}

bool HidesCalibration(std::string_view modelno) {
    static constexpr std::array<std::string_view, 4> models = {"TeleFlow", "TeleFlow+", "TeleCorrector",
                                                               "TeleCorrector+"};
    return std::any_of(models.begin(), models.end(),
                       [&](std::string_view model) { return core::SameText(model, modelno); });
}

}  // namespace session
