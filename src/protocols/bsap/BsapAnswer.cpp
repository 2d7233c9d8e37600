#include "protocols/bsap/BsapAnswer.h"

#include <algorithm>

#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapConstants.h"
#include "protocols/bsap/BsapReply.h"

namespace protocols {

namespace {

struct Frame {
    std::string body;
    std::string_view check;
    std::size_t length = 0;  // on the line
};

// The frame that these bytes begin with; nothing when it is not whole or its check is wrong.
std::optional<Frame> FrameAtStart(std::string_view bytes) {
    Frame frame;
    std::size_t at = bsap::frameStart.size();
    while (at + 1 < bytes.size() && !bytes.substr(at).starts_with(bsap::frameEnd)) {
        if (bytes[at] == bsap::dle && bytes[++at] != bsap::dle) {
            return std::nullopt;
        }
        frame.body += bytes[at++];
    }
    frame.length = at + replyTrailer;
    if (frame.length > bytes.size() || !HasRightCheck(bytes.substr(0, frame.length))) {
        return std::nullopt;
    }
    frame.check = bytes.substr(frame.length - bsap::checkLength, bsap::checkLength);
    return frame;
}

bool HasAt(std::string_view body, std::size_t at, std::string_view bytes) {
    return at + bytes.size() <= body.size() && body.substr(at, bytes.size()) == bytes;
}

bool HasByteAt(std::string_view body, std::size_t at, int byte) {
    return at < body.size() && static_cast<unsigned char>(body[at]) == byte;
}

// How many bytes of the head stand inside it beyond the short one.
std::size_t Extra(LeadingByte leading) {
    return leading == LeadingByte::InHead ? 1 : 0;
}

bool IsApplication(std::string_view body, std::size_t extra) {
    return HasByteAt(body, bsap::messageAt + extra, bsap::answer) &&
           HasByteAt(body, bsap::numbersAt + 2 + extra, bsap::application);
}

bool HasLinkCode(std::string_view body, std::size_t extra) {
    return body.size() > bsap::messageAt + extra &&
           bsap::linkCodes.find(body[bsap::messageAt + extra]) != std::string_view::npos;
}

bool HasAddress(std::string_view body, std::size_t extra, int address) {
    return HasByteAt(body, bsap::stationAt + extra, address);
}

bool GivesBack(std::string_view body, std::size_t extra, const BsapAsked& asked) {
    return !asked.sequence.empty() && body.size() > bsap::serialAt &&
           asked.serials.find(body[bsap::serialAt]) != std::string::npos &&
           HasAt(body, bsap::numbersAt + extra, asked.sequence);
}

// The head that fits where the other one does not.
template <typename Fits>
std::optional<LeadingByte> OnlyOne(const Fits& fits) {
    const bool ahead = fits(Extra(LeadingByte::Ahead));
    const bool inHead = fits(Extra(LeadingByte::InHead));
    return ahead == inHead ? std::nullopt : std::optional(ahead ? LeadingByte::Ahead : LeadingByte::InHead);
}

std::optional<LeadingByte> ByContent(std::string_view body, const BsapAsked& asked) {
    auto found = OnlyOne([&](std::size_t extra) {
        return IsApplication(body, extra) || (HasLinkCode(body, extra) && HasAddress(body, extra, asked.address));
    });
    if (!found) {
        found = OnlyOne([&](std::size_t extra) { return HasLinkCode(body, extra) || IsApplication(body, extra); });
    }
    if (!found) {
        found = OnlyOne([&](std::size_t extra) { return GivesBack(body, extra, asked); });
    }
    if (!found && body.size() + bsap::frameStart.size() + replyTrailer < bsap::longestAcknowledgement) {
        found = OnlyOne([&](std::size_t extra) { return HasAddress(body, extra, asked.address); });
    }
    return found;
}

}  // namespace

BsapAsked BsapAsked::By(std::string_view frame, bool isCW, int address) {
    BsapAsked asked;
    asked.isCW = isCW;
    asked.address = address;
    const auto found = FrameAtStart(frame);
    asked.body = found ? found->body : std::string();
    asked.serials = asked.body.substr(std::min(bsap::serialAt, asked.body.size()), 1);
    // A sign-on may lack bytes of its sequence: its answer is not told by them.
    if (HasByteAt(asked.body, bsap::messageAt, bsap::application) &&
        HasAt(asked.body, bsap::numbersAt + 2, bsap::behindSequence)) {
        asked.sequence = asked.body.substr(bsap::numbersAt, 2);
    }
    return asked;
}

std::optional<LeadingByte> LeadingByteOf(std::string_view body, bool isLed, const BsapAsked& asked) {
    if (asked.isCW) {
        return LeadingByte::None;
    }
    if (const auto found = ByContent(body, asked)) {
        return found;
    }
    const LeadingByte byPlace = isLed ? LeadingByte::Ahead : LeadingByte::InHead;
    return asked.leading.value_or(byPlace) == byPlace ? std::optional(byPlace) : std::nullopt;
}

std::optional<int> BsapAnswer::At(std::size_t position) const {
    return position + replyTrailer > text.size() ? std::nullopt : ByteAtPosition(text, position);
}

bool IsLinkMessage(std::string_view body, LeadingByte leading, std::size_t length) {
    const std::size_t extra = Extra(leading);
    return !IsApplication(body, extra) && (HasLinkCode(body, extra) || length <= bsap::longestAcknowledgement);
}

std::vector<BsapAnswer> AnswersIn(std::string_view received, const BsapAsked& asked) {
    std::vector<BsapAnswer> answers;
    std::size_t behindLast = 0;
    std::size_t at = received.find(bsap::frameStart);
    while (at != std::string_view::npos) {
        const auto frame = FrameAtStart(received.substr(at));
        if (!frame) {
            at = received.find(bsap::frameStart, at + 1);
            continue;
        }
        const bool isLed = at > behindLast;
        const auto leading = LeadingByteOf(frame->body, isLed, asked);
        if (leading && frame->body != asked.body) {
            BsapAnswer answer;
            answer.leading = *leading;
            answer.text = *leading == LeadingByte::Ahead ? std::string(1, isLed ? received[at - 1] : '\0') : "";
            answer.text.append(bsap::frameStart).append(frame->body).append(bsap::frameEnd).append(frame->check);
            answer.isLink = IsLinkMessage(frame->body, *leading, answer.text.size());
            answer.serial =
                frame->body.size() > bsap::serialAt ? static_cast<unsigned char>(frame->body[bsap::serialAt]) : 0;
            const std::size_t sequenceAt = std::min(bsap::numbersAt + Extra(*leading), frame->body.size());
            answer.sequence = answer.isLink ? "" : frame->body.substr(sequenceAt, 2);
            answers.push_back(std::move(answer));
        }
        at += frame->length;
        behindLast = at;
        at = received.find(bsap::frameStart, at);
    }
    return answers;
}

Whose WhoseIs(const BsapAnswer& answer, const BsapAsked& asked, const BsapCounters& counters, bool echoes) {
    if (asked.sequence.empty()) {
        return Whose::NotTold;
    }
    const auto carries = [&](const std::string& serials, const std::string& sequence) {
        return answer.sequence == sequence && serials.find(static_cast<char>(answer.serial)) != std::string::npos;
    };
    if (carries(asked.serials, asked.sequence)) {
        return Whose::Ours;
    }
    const bool anEarlierOne = std::any_of(counters.lately.begin(), counters.lately.end(), [&](const BsapNumbers& sent) {
        return carries(sent.serials, sent.sequence);
    });
    return echoes || anEarlierOne ? Whose::Anothers : Whose::NotTold;
}

}  // namespace protocols
