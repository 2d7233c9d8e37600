#include "protocols/line/Conversation.h"

namespace protocols {

std::string Exchange(Conversation& talk, const std::string& frame) {
    return Exchange(talk, frame, talk.CommTimeout());
}

std::string Exchange(Conversation& talk, const std::string& frame, double answerMs) {
    if (talk.Ended()) {
        return {};
    }
    if (const std::string late = talk.line->Input(); !late.empty()) {
        talk.feedback.Lamp(lateLamp, late);
    }
    if (talk.Ended()) {  // the device was found to be gone
        return {};
    }
    talk.line->Output(frame);
    talk.feedback.Lamp("TX", frame);
    return Await(talk, answerMs);
}

std::string Await(Conversation& talk, double milliseconds) {
    if (!talk.Wait(milliseconds)) {
        return {};
    }
    std::string reply;
    while (talk.line->InBufferCount() > 0) {
        reply += talk.line->Input();
    }
    if (!reply.empty()) {
        talk.feedback.Lamp("RX", reply);
    }
    return reply;
}

}  // namespace protocols
