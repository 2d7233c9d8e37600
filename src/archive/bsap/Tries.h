#pragma once

#include <optional>
#include <string>

#include "archive/RunView.h"
#include "archive/bsap/ArchiveReply.h"
#include "archive/bsap/Asking.h"

namespace archive {

// "The station refused the request (status 135, 129)."
std::string RefusalText(const std::string& status);

// Asks a station until an answer counts, four times at most for one request. The next request starts afresh: what a
// noisy line loses on the way does not add up.
class Tries {
  public:
    struct Patience {
        int tries = 4;
        bool endsAtRefusal = false;  // a refusal is not asked for again
    };

    Tries(protocols::Conversation& talk, const RunView& view, const ArchiveLayout& layout)
        : talk_(talk), view_(view), layout_(layout) {}

    // `build` makes the frame of each try; `parse` takes an answer and gives nothing when it does not count. Nothing:
    // the request failed, the operator stopped, or the conversation ended; see End and Reason.
    template <typename Build, typename Parse>
    auto Insist(const Build& build, const FrameTitles& titles, const Parse& parse, Patience patience)
        -> decltype(parse(std::string())) {
        for (int made = 1;; ++made) {
            const auto answer = Ask(talk_, build(), titles);
            auto reply = answer ? parse(*answer) : decltype(parse(std::string())){};
            if (!reply) {
                NoteFailure(answer);
            }
            if (reply || GivesUp(made, patience)) {
                return reply;
            }
        }
    }

    template <typename Build, typename Parse>
    auto Insist(const Build& build, const FrameTitles& titles, const Parse& parse) -> decltype(parse(std::string())) {
        return Insist(build, titles, parse, Patience());
    }

    RunEnd End() const { return end_; }
    // Why the request failed: a sentence.
    std::string Reason() const { return reason_; }

  private:
    void NoteFailure(const std::optional<std::string>& answer);
    bool GivesUp(int made, Patience patience);

    protocols::Conversation& talk_;
    const RunView& view_;
    const ArchiveLayout& layout_;
    RunEnd end_ = RunEnd::Failed;
    std::string reason_;
    bool refused_ = false;
};

}  // namespace archive
