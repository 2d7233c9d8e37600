#include "reading/ListReplies.h"

#include <algorithm>

#include "protocols/bsap/BsapReply.h"

namespace reading {

namespace {

// The two bytes from which a list goes on, as one number.
int Continuation(int first, int second) {
    return first + 256 * second;
}

}  // namespace

ListReplies::ListReplies(protocols::Conversation& talk, ListReading reading)
    : talk_(talk), reading_(std::move(reading)) {
    talk_.bsap.listnext1 = 0;
    talk_.bsap.listnext2 = 0;
}

std::optional<ListReply> ListReplies::Next() {
    int sends = 0;
    for (int requests = 1; sends < protocols::mostSends; ++requests) {
        if (reading_.paced && !talk_.Pause(talk_.CommTimeout())) {
            return std::nullopt;
        }
        const protocols::StationReply received =
            protocols::AskStation(talk_, reading_.request(asked_.empty()), reading_.log, protocols::mostSends - sends);
        sends += received.sends;
        if (talk_.Ended()) {
            return std::nullopt;
        }
        auto reply = received.answer ? Good(received.answer->text) : std::nullopt;
        none_ = asked_.empty() && received.answer && SaysThatThereIsNone(*received.answer);
        talk_.requests.Note(reply.has_value() || none_);
        if (reply) {
            LetLateRepliesPass(requests - 1);
            asked_.push_back(reply->next);
            return reply;
        }
        if (none_ || talk_.Wanted()) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

// A good reply is long enough to be one. It also has to be what it seems: a repeated reply would move every later
// signal to another's position, and so under another's name.
std::optional<ListReply> ListReplies::Good(const std::string& reply) {
    if (reply.size() <= reading_.tooShort) {
        return std::nullopt;
    }
    const auto& layout = protocols::ReplyLayout(talk_.station.isCW);
    const int next1 = protocols::ByteAtPosition(reply, layout.listNext).value_or(0);
    const int next2 = protocols::ByteAtPosition(reply, layout.listNext + 1).value_or(0);
    const int next = Continuation(next1, next2);
    ListRecords records = ReadRecords(reply, reading_.form);
    if (!records.whole || AlreadyAsked(next)) {
        return std::nullopt;
    }
    talk_.bsap.listnext1 = next1;
    talk_.bsap.listnext2 = next2;
    return ListReply{next, std::move(records.signals)};
}

bool ListReplies::SaysThatThereIsNone(const protocols::BsapAnswer& answer) const {
    if (reading_.saysNone == SaysNone::Never || answer.text.size() > reading_.tooShort) {
        return false;
    }
    return reading_.saysNone == SaysNone::ByAnyAnswerWithoutData ||
           answer.At(protocols::ReplyLayout(talk_.station.isCW).status).value_or(0) != 0;
}

// A reply that goes on where this list has already gone on is the late answer to an earlier request.
bool ListReplies::AlreadyAsked(int next) const {
    return std::find(asked_.begin(), asked_.end(), next) != asked_.end();
}

// A good reply after `repeats` sends may be the answer to the first of them. The others' are then on their way, as late
// as this one was, and must not be taken for those to the next requests. A station that gives back their numbers tells
// them apart itself.
void ListReplies::LetLateRepliesPass(int repeats) {
    if (repeats > 0 && !talk_.bsap.echoes) {
        talk_.Wait(static_cast<double>(repeats) * talk_.CommTimeout());
    }
}

}  // namespace reading
