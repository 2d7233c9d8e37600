#pragma once

#include "core/Clock.h"
#include "protocols/line/Conversation.h"
#include "protocols/line/Line.h"

// The Hayes dialogue with a dial-up or GSM modem. They differ only in the dial command of the station.
namespace protocols {

enum class DialOutcome {
    Connected,   // or there was no result in time, which in a scheduled run counts as connected
    NoModem,     // silent to "at"; the port is closed
    NotReached,  // the third failed dial, or one of an operator without a result; hung up, the port is closed
    NoPort,      // the port could not be opened again for a redial
    Ended,       // the conversation was told to end; the port is as it was, so that the caller can hang up
    EndedEarly,  // the same, while the modem was still being checked: there is no call
};

// How the dialogue of one kind of screen differs from that of another.
struct DialOptions {
    bool unattended;          // failures go to RTU_Err.log with the location, otherwise to a box
    double resultTimeoutMs;   // for the modem's result of a dial
    bool silenceConnects;     // no result by then counts as connected; else the call has failed, without a redial
    double redialMs;          // between hanging up and dialling again
    const char* connected;    // status text
    const char* wrongAnswer;  // failure of a modem that answers to "at", but not with "OK"
};

inline constexpr const char* noModemText = "Check if Modem is plugged-in and power is on";

inline constexpr DialOptions scheduledDial = {true, 30000, true, 1000, "connected to Location ", noModemText};
inline constexpr DialOptions onlineDial = {
    false, 120000, false, 1000, "Connected to Location ", "Modem not Configured"};

// Dials the station on an open port, up to the third failure. `attemptcount` is raised at each dial; it is the caller's
// count, and at 3 or more no further dial follows. A failure is reported here.
DialOutcome Dial(Conversation& talk, int& attemptcount, const DialOptions& options = scheduledDial);

// "at" and a second for the answer: what the modem said, "OK" if it is fit.
std::string CheckModem(Conversation& talk);

constexpr double redialGuardMs = 1500;
constexpr double disconnectGuardMs = 2500;

// Waits until everything that was sent is on the wire, for 3 seconds at most. Bytes that are still on their way are
// lost or garbled when the port is closed or set anew.
void Drain(Line& line, core::Clock& clock);

// Ends the call: "+++", the guard time, "ath". It works also after the conversation was told to end. Nothing is sent
// on a closed port or one that was taken away. The port stays open; the bytes are on the wire (see Drain).
void HangUp(Line& line, core::Clock& clock, core::Feedback& feedback, double guardMs);

}  // namespace protocols
