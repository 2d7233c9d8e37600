#pragma once

#include <string>

#include "protocols/line/Conversation.h"
#include "reading/RunState.h"
#include "reading/ValueStore.h"

namespace reading {

// What an attempt asked for and what came, over all streams of its station.
class RunTally {
  public:
    void Add(const ValueStore& stream);
    // Where the station refused values: "exception 2 at register 125". The first one is reported.
    void Refusal(const std::string& where);
    // Why the reading ended early, as the beginning of a sentence.
    void Failure(const std::string& why);

    // Sets the result, the counts and the reason.
    void Conclude(const protocols::Conversation& talk, RunState& state) const;

  private:
    Result ResultOf() const;
    std::string Reason() const;

    int asked_ = 0;
    int received_ = 0;
    int refused_ = 0;
    std::string refusal_;
    std::string failure_;
};

}  // namespace reading
