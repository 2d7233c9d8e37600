#include "protocols/line/Conversation.h"

#include <algorithm>

namespace protocols {

namespace {

constexpr int untilTrusted = 2;  // whole replies in a row

// Takes what comes until it is whole, or until the time has passed or the conversation is to end.
void TakeWhole(Conversation& talk, double milliseconds, const WholeReply& whole, std::string& reply) {
    const std::uint32_t start = talk.clock.Milliseconds();
    const auto left = [&] { return milliseconds - (talk.clock.Milliseconds() - start); };
    bool isWhole = false;
    const auto takeMore = [&] {
        const std::string more = talk.line->Input();
        reply += more;
        isWhole = more.empty() ? isWhole : whole.judge(reply);
    };
    // What ends a wait is asked more than once, so it must stay so.
    while (!talk.Ended()) {
        talk.clock.WaitMs(left(), [&] {
            takeMore();
            return isWhole || talk.Ended();
        });
        if (left() <= 0 || (isWhole && whole.silenceMs <= 0)) {
            return;
        }
        const std::size_t size = reply.size();
        const auto isBroken = [&] {
            takeMore();
            return reply.size() > size || talk.Ended();
        };
        if (isWhole && talk.clock.WaitMs(std::min(whole.silenceMs, left()), isBroken)) {
            return;
        }
    }
}

}  // namespace

std::string Exchange(Conversation& talk, const std::string& frame, const WholeReply& whole) {
    return Exchange(talk, frame, talk.CommTimeout(), whole);
}

std::string Exchange(Conversation& talk, const std::string& frame, double answerMs, const WholeReply& whole) {
    if (talk.Ended()) {
        return {};
    }
    if (const std::string late = talk.line->Input(); !late.empty()) {
        talk.feedback.Lamp(lateLamp, late);
        talk.cautious = whole.tellsLate ? talk.cautious : untilTrusted;
    }
    if (talk.Ended()) {  // the device was found to be gone
        return {};
    }
    talk.line->Output(frame);
    talk.feedback.Lamp("TX", frame);
    return Await(talk, answerMs, whole);
}

std::string Await(Conversation& talk, double milliseconds, const WholeReply& whole) {
    const bool isPrompt = talk.station.pacing == core::Pacing::Prompt && whole.judge;
    std::string reply;
    if (isPrompt && (whole.tellsLate || talk.cautious == 0)) {
        TakeWhole(talk, milliseconds, whole, reply);
    } else {
        talk.Wait(milliseconds);
    }
    if (talk.Ended()) {
        return {};
    }
    while (talk.line->InBufferCount() > 0) {
        reply += talk.line->Input();
    }
    if (isPrompt && !whole.tellsLate) {
        talk.cautious = whole.judge(reply) ? std::max(0, talk.cautious - 1) : untilTrusted;
    }
    if (!reply.empty()) {
        talk.feedback.Lamp("RX", reply);
    }
    return reply;
}

}  // namespace protocols
