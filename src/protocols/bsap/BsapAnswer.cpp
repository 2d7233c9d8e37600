#include "protocols/bsap/BsapAnswer.h"

#include <algorithm>

#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapReply.h"

namespace protocols {

namespace {

using namespace std::string_view_literals;

constexpr char dle = 0x10;
constexpr char etx = 0x03;
constexpr auto start = "\x10\x02"sv;
constexpr std::size_t checkLength = 2;
constexpr std::size_t numbersAt = 3;  // behind address, link serial and message code
constexpr std::size_t longestAcknowledgement = 17;
constexpr char answerCode = 0x0B;
constexpr char requestCode = '\xA0';

struct Frame {
    std::string body;
    std::string_view check;
    std::size_t length = 0;  // on the line
};

// The frame that these bytes begin with; nothing when it is not whole or its check is wrong.
std::optional<Frame> FrameAtStart(std::string_view bytes) {
    Frame frame;
    std::size_t at = start.size();
    while (at + 1 < bytes.size() && !(bytes[at] == dle && bytes[at + 1] == etx)) {
        if (bytes[at] == dle && bytes[++at] != dle) {
            return std::nullopt;
        }
        frame.body += bytes[at++];
    }
    frame.length = at + replyTrailer;
    if (frame.length > bytes.size() || !HasRightCheck(bytes.substr(0, frame.length))) {
        return std::nullopt;
    }
    frame.check = bytes.substr(frame.length - checkLength, checkLength);
    return frame;
}

bool HasAt(std::string_view body, std::size_t at, std::string_view bytes) {
    return at + bytes.size() <= body.size() && body.substr(at, bytes.size()) == bytes;
}

// How many bytes of the head stand inside it beyond the short one.
std::size_t Extra(LeadingByte leading) {
    return leading == LeadingByte::InHead ? 1 : 0;
}

bool IsApplication(std::string_view body, std::size_t extra) {
    constexpr std::size_t behindSequence = numbersAt + 2;
    return HasAt(body, 2 + extra, {&answerCode, 1}) && HasAt(body, behindSequence + extra, {&requestCode, 1});
}

bool HasLinkCode(std::string_view body, std::size_t extra) {
    return body.size() > 2 + extra && "\x86\x87\x95"sv.find(body[2 + extra]) != std::string_view::npos;
}

bool HasAddress(std::string_view body, std::size_t extra, int address) {
    return body.size() > numbersAt + extra && static_cast<unsigned char>(body[numbersAt + extra]) == address;
}

bool GivesBack(std::string_view body, std::size_t extra, const BsapAsked& asked) {
    return !asked.sequence.empty() && body.size() > 1 && asked.serials.find(body[1]) != std::string::npos &&
           HasAt(body, numbersAt + extra, asked.sequence);
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
    if (!found && body.size() + start.size() + replyTrailer < longestAcknowledgement) {
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
    asked.serials = asked.body.substr(std::min<std::size_t>(1, asked.body.size()), 1);
    // A sign-on may lack bytes of its sequence: its answer is not told by them.
    if (HasAt(asked.body, 2, {&requestCode, 1}) && HasAt(asked.body, numbersAt + 2, "\x0B\x00"sv)) {
        asked.sequence = asked.body.substr(numbersAt, 2);
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
    return !IsApplication(body, extra) && (HasLinkCode(body, extra) || length <= longestAcknowledgement);
}

std::vector<BsapAnswer> AnswersIn(std::string_view received, const BsapAsked& asked) {
    std::vector<BsapAnswer> answers;
    std::size_t behindLast = 0;
    std::size_t at = received.find(start);
    while (at != std::string_view::npos) {
        const auto frame = FrameAtStart(received.substr(at));
        if (!frame) {
            at = received.find(start, at + 1);
            continue;
        }
        const bool isLed = at > behindLast;
        const auto leading = LeadingByteOf(frame->body, isLed, asked);
        if (leading && frame->body != asked.body) {
            BsapAnswer answer;
            answer.leading = *leading;
            answer.text = *leading == LeadingByte::Ahead ? std::string(1, isLed ? received[at - 1] : '\0') : "";
            answer.text.append(start).append(frame->body).append({dle, etx}).append(frame->check);
            answer.isLink = IsLinkMessage(frame->body, *leading, answer.text.size());
            answer.serial = frame->body.size() > 1 ? static_cast<unsigned char>(frame->body[1]) : 0;
            const std::size_t sequenceAt = std::min(numbersAt + Extra(*leading), frame->body.size());
            answer.sequence = answer.isLink ? "" : frame->body.substr(sequenceAt, 2);
            answers.push_back(std::move(answer));
        }
        at += frame->length;
        behindLast = at;
        at = received.find(start, at);
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
