#include "session/LineUp.h"

#include "protocols/bsap/BsapLink.h"
#include "protocols/line/Modem.h"
#include "session/WriteAnswer.h"

namespace session {

namespace {

constexpr double behindHangUpMs = 1000;

// Tells the operator, and gives the failure on.
std::string Told(protocols::Conversation& talk, const std::string& failure) {
    talk.feedback.Box(failure);
    return failure;
}

// Empty when the port is open, or the conversation ended.
std::string OpenPort(protocols::Conversation& talk) {
    const core::Station& station = talk.station;
    const bool isSerial = station.ip.empty();
    talk.line->PortOpen(false);
    if (isSerial) {
        talk.line->CommPort(station.comport);
        talk.line->Settings(station.settings);
    } else {
        talk.feedback.Status("Connecting to " + station.ip);
    }
    if (!talk.Wait(talk.CommTimeout()) || talk.line->PortOpen(true) || talk.Ended()) {
        return {};
    }
    const std::string what = isSerial ? "Port " + std::to_string(station.comport) + " cannot be opened: "
                                      : station.ip + " cannot be reached: ";
    return Told(talk, what + talk.line->LastError());
}

// The modem's failures were told by the dial.
void Call(protocols::Conversation& talk, LineUpOutcome& outcome) {
    int attemptcount = 0;
    outcome.called = true;
    switch (protocols::Dial(talk, attemptcount, protocols::onlineDial)) {
        case protocols::DialOutcome::Connected:
        case protocols::DialOutcome::Ended:
            break;
        case protocols::DialOutcome::EndedEarly:
            // There is no call yet; this ends whatever the modem is at.
            talk.line->Output("ATH\r");
            talk.feedback.Lamp("TX", "ATH\r");
            protocols::Drain(*talk.line, talk.clock);
            outcome.called = false;
            break;
        case protocols::DialOutcome::NoModem:
        case protocols::DialOutcome::NotReached:
        case protocols::DialOutcome::NoPort:
            outcome.failure = "Not connected";
            break;
    }
}

// A BSAP station's sign-on leaves the same line.
void LeaveConnected(protocols::Conversation& talk) {
    LeaveAudit(talk.logs, talk.currentuser, "connected to RTU " + talk.station.consumer + ".");
}

}  // namespace

LineUpOutcome BringLineUp(protocols::Conversation& talk, const LineUpOptions& options) {
    const protocols::ConnectingLine connecting(talk.line);
    LineUpOutcome outcome;
    outcome.failure = OpenPort(talk);
    if (outcome.failure.empty() && !talk.Ended() && !talk.station.phoneno.empty()) {
        Call(talk, outcome);
    }
    const bool answers = outcome.failure.empty() && !talk.Ended();
    const bool signsOn = answers && talk.station.protocol == core::Protocol::Bsap;
    if (signsOn && !protocols::SignOnInTries(talk, options.signOn, options.signOnTries) && !talk.Ended()) {
        outcome.failure = Told(talk, options.dead);
    }
    if (talk.line->Lost()) {
        outcome.failure = Told(talk, talk.line->Reason());
    }
    outcome.up = outcome.failure.empty() && !talk.Ended();
    if (outcome.up && !signsOn) {
        LeaveConnected(talk);
    }
    return outcome;
}

void TakeLineDown(protocols::Conversation& talk, bool called, double guardMs) {
    if (called && talk.line->PortOpen()) {
        protocols::HangUp(*talk.line, talk.clock, talk.feedback, guardMs);
        talk.clock.WaitMs(behindHangUpMs, [&talk] { return !talk.line->PortOpen(); });
    }
    talk.line->PortOpen(false);
}

}  // namespace session
