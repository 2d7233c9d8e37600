#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "protocols/bsap/BsapLayout.h"
#include "protocols/bsap/BsapLink.h"
#include "protocols/line/Conversation.h"
#include "reading/BsapListRecords.h"

namespace reading {

// A reply of something that a station gives in several: a list, or what a search found.
struct ListReply {
    int next = 0;  // where it goes on; 0 when this was the last
    std::vector<ListSignal> signals;
};

// How a station says that it has none of what was asked for. An answer without data that does not say so is a bad one.
enum class SaysNone { Never, ByAnyAnswerWithoutData, ByItsStatus };

struct ListReading {
    // The request as a frame: the first one, or that for what follows listnext1 and listnext2.
    std::function<std::string(bool first)> request;
    RecordForm form{};
    std::size_t tooShort = protocols::LongestWithoutData(false);  // a reply of so many bytes holds no data
    SaysNone saysNone = SaysNone::Never;
    bool paced = false;  // one commtimeout before each request as well
    protocols::RequestLog log{};
};

// Reads from a station reply by reply. A bad reply is asked for again, one that is not ready polled for again, 4 sends
// in all.
class ListReplies {
  public:
    ListReplies(protocols::Conversation& talk, ListReading reading);

    // The next reply. Nothing after four that were not good, when the station has no such thing, when the line is
    // wanted, or when the conversation ended.
    std::optional<ListReply> Next();

    // The station said that it has no such thing.
    bool None() const { return none_; }

  private:
    std::optional<ListReply> Good(const std::string& reply);
    bool SaysThatThereIsNone(const protocols::BsapAnswer& answer) const;
    bool AlreadyAsked(int next) const;
    void LetLateRepliesPass(int repeats);

    protocols::Conversation& talk_;
    ListReading reading_;
    std::vector<int> asked_;  // from where it went on so far
    bool none_ = false;
};

}  // namespace reading
