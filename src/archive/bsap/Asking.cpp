#include "archive/bsap/Asking.h"

#include "core/Text.h"
#include "protocols/bsap/BsapLink.h"

namespace archive {

namespace {

void Log(protocols::Conversation& talk, const char* title, const std::string& bytes) {
    if (title != nullptr) {
        talk.logs.WriteLogLine(title);
        talk.logs.WriteLogLine(core::HexLine(bytes));
    }
}

}  // namespace

std::optional<std::string> Ask(protocols::Conversation& talk, const std::string& frame, const FrameTitles& titles) {
    Log(talk, titles.request, frame);
    const protocols::StationReply reply = protocols::AskStation(talk, frame);
    if (talk.Ended()) {
        return std::nullopt;
    }
    Log(talk, titles.reply, reply.received);
    talk.requests.Note(reply.answer.has_value());
    return reply.answer ? std::optional(reply.answer->text) : std::nullopt;
}

}  // namespace archive
