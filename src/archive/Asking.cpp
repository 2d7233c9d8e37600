#include "archive/Asking.h"

#include "core/Text.h"
#include "protocols/BsapLink.h"
#include "protocols/BsapReply.h"

namespace archive {

namespace {

void Log(protocols::Conversation& talk, const char* title, const std::string& bytes) {
    if (title != nullptr) {
        talk.logs.WriteLogLine(title);
        talk.logs.WriteLogLine(core::HexLine(bytes));
    }
}

}  // namespace

std::optional<std::string> Ask(protocols::Conversation& talk, const std::string& frame, const Asking& asking) {
    Log(talk, asking.titles.request, frame);
    const std::string reply = asking.polls ? protocols::ReadReply(talk, frame) : protocols::Exchange(talk, frame);
    if (talk.Ended()) {
        return std::nullopt;
    }
    Log(talk, asking.titles.reply, reply);
    std::string answer = protocols::UndoDoubling(reply);
    const bool good = protocols::IsWholeFrame(reply) && protocols::HasRightCheck(reply) && answer.size() > asking.over;
    talk.requests.Note(good);
    return good ? std::optional(std::move(answer)) : std::nullopt;
}

}  // namespace archive
