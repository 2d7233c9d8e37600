#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/Clock.h"
#include "core/Feedback.h"
#include "core/Logs.h"
#include "core/Station.h"
#include "protocols/line/LineLease.h"

namespace protocols {

// The numbers of a BSAP request as they went out, a byte each.
struct BsapNumbers {
    std::string sequence;  // of the application, in the order of the message
    std::string serials;   // the link's, and those of the link messages that followed
};

// The sequence numbers of the requests. They live for the run of the program: no sign-on and no new station resets
// them, so a late answer to an earlier station never has the number of the present request.
struct BsapCounters {
    int bsapseq = 0;                   // link sequence, 1 to 255
    int appseqlow = 0;                 // application sequence, low byte
    int appseqhigh = 0;                // and high byte
    std::deque<BsapNumbers> lately{};  // the last requests, the newest last
    int transaction = 0;               // of Modbus TCP, 0 to 65535
};

// What the Modbus side keeps between building a request and reading its values.
struct ModbusState {
    // The numbers of the last reply, the first at index 1, which doubles as the error slot.
    std::array<double, 126> mbvalues{};
    bool rtu32bit = false;                                   // one register holds a whole float
    bool floatread = false;                                  // a function 3 reply is decoded as floats
    core::WordOrder wordOrder = core::WordOrder::HighFirst;  // of a float in two registers
};

// Where a BSAP answer has the byte that the positions of the long layout count in front of everything.
enum class LeadingByte {
    None,   // the short layout has none
    Ahead,  // of DLE STX
    InHead,
};

// What the BSAP side learned of the station it talks to.
struct BsapState {
    int loadversion1 = 0;
    int loadversion2 = 0;
    int listnext1 = 0;
    int listnext2 = 0;
    bool listnames = false;
    bool listunits = true;
    bool usepoll = false;
    int rtustatus = -1000;
    std::string lastpollreply;
    // Learned at the sign-on. A station whose version answer gives back the serial and both sequence bytes of its
    // request is held to it: an answer with other numbers is not for us.
    bool echoes = false;
    std::optional<LeadingByte> leading{};
};

// How many requests of a conversation were answered well, and how many were not. Each try counts.
struct RequestCounts {
    int good = 0;
    int failed = 0;

    void Note(bool answered) { ++(answered ? good : failed); }
};

// What a routine that talks to a station is given. Whoever starts a conversation makes it, and it ends with it, so
// nothing that one conversation sets reaches another.
struct Conversation {
    std::shared_ptr<LineLease> line;
    core::Clock& clock;
    core::Feedback& feedback;
    core::Logs& logs;
    BsapCounters& counters;
    core::Station station;
    std::string currentuser;  // for the audit lines
    int streamno = 1;
    ModbusState modbus{};
    BsapState bsap{};
    RequestCounts requests{};
    // How many exchanges still take their stated waits, see WholeReply.
    int cautious = 0;
    // Something more urgent than a bulk read wants the line: asked where no reply is on its way. Empty: never.
    std::function<bool()> wanted{};

    bool Wanted() const { return wanted && wanted(); }
    int CommTimeout() const { return station.commtimeout; }

    // Waits, turning the event loop. False: the conversation was told to end, at once or meanwhile.
    bool Wait(double milliseconds) {
        return clock.WaitMs(milliseconds, [this] { return line->Ended(); });
    }
    // The same for a wait between two requests, which only gives the station its time. In prompt pacing it has had it.
    bool Pause(double milliseconds) {
        const bool isNeeded = station.pacing == core::Pacing::Stated || cautious > 0;
        return isNeeded ? Wait(milliseconds) : !Ended();
    }
    bool Ended() const { return line->Ended(); }
};

// The lamp of bytes that came behind the wait for their answer.
inline constexpr const char* lateLamp = "RX late";

// When the reply to a request is whole. Each protocol says it for its own.
struct WholeReply {
    // Whether what has come since the request was sent is its whole reply, checked.
    std::function<bool(std::string_view received)> judge{};
    double silenceMs = 0;  // that has to follow, where a frame has no end of its own
    // The judge tells a late reply to an earlier request from this one's. Where it does not, an exchange without a
    // whole reply, and late bytes, make this exchange and the next ones take their stated waits, until two in a row
    // were whole.
    bool tellsLate = false;
};

// One exchange with a station: clears what is waiting, which is shown as late, sends the frame, waits and takes what
// came. The only place that sends a request and reads its answer. `answerMs` is the pacing that the device expects, one
// commtimeout if not given; in prompt pacing the wait ends as soon as the reply is whole. Empty: no answer, the port is
// closed, or the conversation was told to end.
std::string Exchange(Conversation& talk, const std::string& frame, const WholeReply& whole = {});
std::string Exchange(Conversation& talk, const std::string& frame, double answerMs, const WholeReply& whole = {});

// Waits and takes what came, without sending.
std::string Await(Conversation& talk, double milliseconds, const WholeReply& whole = {});

}  // namespace protocols
