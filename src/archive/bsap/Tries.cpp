#include "archive/bsap/Tries.h"

#include "protocols/bsap/BsapReply.h"

namespace archive {

namespace {

// The status bytes of an answer as a text; empty where they are 0 or missing.
std::string StatusOf(const std::string& answer, std::size_t position) {
    std::string text;
    bool refused = false;
    for (const std::size_t at : {position, position + 1}) {
        if (at + protocols::replyTrailer <= answer.size()) {
            const int status = protocols::ByteAtPosition(answer, at).value_or(0);
            refused = refused || status != 0;
            text += (text.empty() ? "" : ", ") + std::to_string(status);
        }
    }
    return refused ? text : std::string();
}

}  // namespace

void Tries::NoteFailure(const std::optional<std::string>& answer) {
    const std::string status = answer ? StatusOf(*answer, layout_.status) : std::string();
    refused_ = !status.empty();
    reason_ = refused_ ? RefusalText(status)
              : answer ? "The station's answer was incomplete."
                       : "The station gave no valid answer.";
}

bool Tries::GivesUp(int made, Patience patience) {
    const bool failed = made >= patience.tries || (refused_ && patience.endsAtRefusal);
    end_ = talk_.Ended() ? RunEnd::LineLost : failed ? RunEnd::Failed : RunEnd::Stopped;
    return talk_.Ended() || failed || view_.Stopped();
}

std::string RefusalText(const std::string& status) {
    return "The station refused the request (status " + status + ").";
}

}  // namespace archive
