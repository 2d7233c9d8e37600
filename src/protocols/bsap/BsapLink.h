#pragma once

#include <optional>
#include <string>

#include "protocols/bsap/BsapAnswer.h"
#include "protocols/line/Conversation.h"

// The BSAP conversation above its frames: how a station is found alive and signed on, how an acknowledgement is turned
// into the awaited answer, and how that answer is acknowledged. Every exchange takes one commtimeout. When the
// conversation is told to end, replies are empty and sign-ons fail.
namespace protocols {

// What of the sign-on goes to log.txt, as long as the log is on.
enum class SignOnLog { None, PollReply, All };

// Which of its steps the operator is told.
enum class SignOnTexts { None, Polling, All };

// The differences between those who sign on.
struct SignOnOptions {
    std::string password;  // the scheduled run and the online screen sign on with an empty one
    SignOnLog logs = SignOnLog::All;
    SignOnTexts texts = SignOnTexts::All;
};

// The password of the screens that sign on with one.
constexpr const char* screenPassword = "482913";

// Polls the station, signs on and reads its load version, which all later requests carry. True: signed on, the load
// version is valid, and the audit trail has its line. False: silence, another address, a status above 1, no version.
// The status and the text of the poll reply are left in rtustatus and lastpollreply.
bool SignOn(Conversation& talk, const SignOnOptions& options = {});

// The same, up to so many times.
bool SignOnInTries(Conversation& talk, const SignOnOptions& options = {}, int most = 3);

// A reply of 11 to 17 bytes, counted as BsapAnswer::text, is no answer but the acknowledgement that it is not ready
// yet. Then the station is polled and `pollReply` is what it gives; else nothing is sent. Tells whether it was polled.
bool Check_NeedPoll(Conversation& talk, const std::string& reply, std::string& pollReply, const WholeReply& whole = {});

// One exchange of which no answer is read; `frame` is a request or a poll.
std::string ExchangeBsap(Conversation& talk, const std::string& frame);

// Tells the station that its answer has arrived. The reply to that is logged or dropped.
void UP_ACK_Routing(Conversation& talk, bool logs);

// The differences between the request cycles.
struct RequestLog {
    std::string title;         // of the reply's line in log.txt; empty: not logged
    bool acknowledge = false;  // the answer to the acknowledgement is logged too
};

// How often a request is sent, a poll behind the first that finds no answer yet counted as well.
inline constexpr int mostSends = 4;

// What a request brought.
struct StationReply {
    std::optional<BsapAnswer> answer{};
    // The answer gave back the serial and both sequence bytes of its request.
    bool givesBack = false;
    // The last that came was an acknowledgement.
    bool acknowledged = false;
    int sends = 1;
    std::string received{};  // the bytes of the last reading, for the log
};

// Sends a request and gives the station's answer, polled and acknowledged where it was not ready, and polled again as
// long as it is still not, up to `most` sends. An answer to another request is passed over, and ours is waited for
// behind it. An answer of 11 to 17 bytes holds no data; the station is polled once more for one that does.
StationReply AskStation(Conversation& talk, const std::string& frame, const RequestLog& log = {}, int most = mostSends);

}  // namespace protocols
