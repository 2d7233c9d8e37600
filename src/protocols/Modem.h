#pragma once

#include "core/Clock.h"
#include "protocols/Conversation.h"
#include "protocols/Line.h"

// The Hayes dialogue with a dial-up or GSM modem. They differ only in the dial command of the station.
namespace protocols {

enum class DialOutcome {
    Connected,   // or the dial timed out, which in a scheduled run counts as connected
    NoModem,     // silent to "at"; the port is closed
    NotReached,  // the third failed dial; hung up, the port is closed
    NoPort,      // the port could not be opened again for a redial
    Ended,       // the conversation was told to end; the port is as it was, so that the caller can hang up
};

// How the dialogue of one kind of screen differs from that of another.
struct DialOptions {
    bool unattended;         // failures go to RTU_Err.log with the location, otherwise to a box
    double resultTimeoutMs;  // for the modem's result of a dial; 0: as long as it takes
    double redialMs;         // between hanging up and dialling again
    const char* connected;   // status text
};

inline constexpr DialOptions scheduledDial = {true, 30000, 1000, "connected to Location "};
inline constexpr DialOptions onlineDial = {false, 0, 1000, "Connected to Location "};

// Dials the station on an open port, up to the third failure. `attemptcount` is raised at each dial; it is the caller's
// count, and at 3 or more no further dial follows. A failure is reported here.
DialOutcome Dial(Conversation& talk, int& attemptcount, const DialOptions& options = scheduledDial);

// "at" and a second for the answer. True: the modem said "OK".
bool CheckModem(Conversation& talk);

constexpr double redialGuardMs = 1500;
constexpr double disconnectGuardMs = 2500;

// Ends the call: "+++", the guard time, "ath". It works also after the conversation was told to end. Nothing is sent
// on a closed port or one that was taken away. The port stays open.
void HangUp(Line& line, core::Clock& clock, double guardMs);

}  // namespace protocols
