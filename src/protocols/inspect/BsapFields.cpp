#include <algorithm>
#include <array>

#include "core/Text.h"
#include "protocols/WireNumbers.h"
#include "protocols/bsap/BsapAnswer.h"
#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapFrame.h"
#include "protocols/bsap/BsapReply.h"
#include "protocols/inspect/FieldWriter.h"

// BSAP by name. What the fixed bytes of its messages stand for, beyond what is said here, is not known.
namespace protocols {

namespace {

using namespace std::string_view_literals;

constexpr char dle = 0x10;
constexpr auto frameStart = "\x10\x02"sv;
constexpr std::size_t startLength = frameStart.size();
constexpr std::size_t checkLength = 2;

enum Message { Poll = 0x85, Acknowledge = 0x8B, Application = 0xA0 };

// The body of the frame that begins at the next byte, its doubled bytes counted once; `end` is where its DLE ETX
// stands, or the end of the line.
struct Unescaped {
    Body body;
    std::size_t end = 0;
    bool ended = false;
};

Unescaped Unescape(std::string_view line, std::size_t from) {
    Unescaped frame;
    std::size_t at = from;
    while (at < line.size()) {
        const bool escape = line[at] == dle && at + 1 < line.size();
        if (escape && line[at + 1] == '\x03') {
            frame.ended = true;
            break;
        }
        frame.body.bytes += line[at];
        frame.body.at.push_back(at);
        at += escape && line[at + 1] == dle ? 2 : 1;
    }
    frame.body.at.push_back(at);
    frame.end = at;
    return frame;
}

void TakeFixed(BodyFields& body, std::size_t count, const char* name = "fixed") {
    body.Take(count, name, ShortHex(body.PeekAll().substr(0, count)));
}

void TakeVersion(BodyFields& body) {
    body.Take(2, "load version",
              std::to_string(std::max(body.Peek(0), 0)) + " " + std::to_string(std::max(body.Peek(1), 0)));
}

void TakeSignal(BodyFields& body) {
    body.Take(2, "signal", std::to_string(body.LowHigh()));
}

void TakeValue(BodyFields& body) {
    const int kind = body.Peek();
    switch (kind) {
        case 0x09:
            body.Take(1, "value", "on");
            break;
        case 0x0A:
            body.Take(1, "value", "off");
            break;
        case 0x0B: {
            body.Take(1, "value kind", "analog");
            std::uint32_t word = 0;
            for (std::size_t i = 4; i > 0; --i) {
                word = word << 8U | static_cast<std::uint32_t>(std::max(body.Peek(i - 1), 0));
            }
            body.Take(4, "value", core::NumberText(WireFloat(word)));
            break;
        }
        case 0x0D:
            body.Take(1, "value kind", "text");
            body.TakeText("value");
            break;
        default:
            body.Take(1, "value", "not recognised");
    }
}

void TakeFields(BodyFields& body) {
    if (body.PeekAll().starts_with("\x05\xF9\x01"sv)) {
        body.Take(3, "field set", "F9, with names");
        return;
    }
    const int set = body.Peek(1);
    body.Take(2, "field set",
              set == 0xF0   ? "F0, with units"
              : set == 0xD0 ? "D0, without units"
                            : ShortHex(body.PeekAll().substr(0, 2)));
}

void TakeContinuation(BodyFields& body) {
    const int next = body.LowHigh();
    body.Take(2, "goes on", next == 0 ? "0, from the start" : "behind " + std::to_string(next));
}

void TakePassword(BodyFields& body) {
    const std::size_t length = std::min(body.PeekAll().find('\0'), body.Left());
    body.TakeText("password", std::to_string(length) + " characters");
}

void TakeName(BodyFields& body) {
    body.TakeText("signal");
}

void TakeList(BodyFields& body) {
    TakeFields(body);
    TakeVersion(body);
    TakeFixed(body, 1);
    body.TakeByte("list");
    if (body.Left() > 0) {
        TakeContinuation(body);
    }
}

void TakeValues(BodyFields& body) {
    TakeVersion(body);
    TakeFixed(body, 1);
    const int count = std::max(body.Peek(), 0);
    body.TakeByte("count");
    for (int i = 0; i < count && !body.CutShort(); ++i) {
        TakeSignal(body);
        TakeValue(body);
    }
}

void TakeNamedValue(BodyFields& body) {
    TakeName(body);
    TakeValue(body);
}

void TakeAddressed(BodyFields& body) {
    TakeVersion(body);
    TakeFixed(body, 2);
    TakeSignal(body);
}

// The count is formed of decimal digits.
void TakeNames(BodyFields& body) {
    TakeFixed(body, 1, "count");
    while (body.Left() > 0 && !body.CutShort()) {
        TakeName(body);
    }
}

void TakeSearch(BodyFields& body) {
    TakeFixed(body, 2, "goes on");
    TakeFixed(body, 3, "kind");
    body.TakeText("pattern");
}

void TakeNothing(BodyFields&) {}

enum class Answer { Data, Version, List };

// A request by the bytes that its function begins with.
struct Function {
    std::string_view begin;
    const char* word;
    SequenceOrder order;
    void (*takeArguments)(BodyFields&);  // names what follows
    Answer answer = Answer::Data;
};

constexpr auto functions = std::to_array<Function>({
    {"\x70\x05\x01"sv, "sign-on", SequenceOrder::LowHighDigits, TakePassword},
    {"\x70\x07\x04"sv, "archive information", SequenceOrder::LowHigh, TakeNothing},
    {"\x70\x07\x06"sv, "archive by date", SequenceOrder::LowHigh, TakeNothing},
    {"\x70\x07\x07"sv, "archive records", SequenceOrder::LowHigh, TakeNothing},
    {"\x70\x03\x05"sv, "audit records", SequenceOrder::LowHigh, TakeNothing},
    {"\x04\x02\x01\xFF\x11"sv, "load version", SequenceOrder::LowHigh, TakeName, Answer::Version},
    {"\x0C"sv, "first of a list", SequenceOrder::HighLow, TakeList, Answer::List},
    {"\x0D"sv, "next of a list", SequenceOrder::HighLow, TakeList, Answer::List},
    {"\x80"sv, "write values", SequenceOrder::LowHigh, TakeValues},
    {"\x84\xFF\x01"sv, "write by name", SequenceOrder::HighLow, TakeNamedValue},
    {"\x00\x05\xF8\x01"sv, "read by address", SequenceOrder::HighLow, TakeAddressed},
    {"\x04\x05\xF8\x01\xFF"sv, "read by name", SequenceOrder::HighLow, TakeNames},
    {"\x08\x05\xF9\x01\xFF"sv, "search for signals", SequenceOrder::HighLow, TakeSearch},
});

const Function* FunctionOf(std::string_view bytes) {
    for (const Function& function : functions) {
        if (bytes.starts_with(function.begin)) {
            return &function;
        }
    }
    return nullptr;
}

constexpr std::string_view behindSequence = "\x0B\x00"sv;

// How many bytes the application sequence has: two. The sign-on forms it of decimal digits, and leaves out a byte that
// they do not fit.
std::size_t SequenceLength(std::string_view application) {
    for (std::size_t length = 3; length > 0; --length) {
        if (application.substr(std::min(length - 1, application.size())).starts_with(behindSequence)) {
            return length - 1;
        }
    }
    return 2;
}

const Function* FunctionOfApplication(std::string_view application) {
    const std::size_t at = SequenceLength(application) + behindSequence.size();
    return FunctionOf(application.substr(std::min(at, application.size())));
}

std::string SequenceText(const BodyFields& body, std::size_t length, const Function* function) {
    switch (function == nullptr ? SequenceOrder::LowHigh : function->order) {
        case SequenceOrder::LowHighDigits:
            return ShortHex(body.PeekAll().substr(0, length)) + " (decimal)";
        case SequenceOrder::HighLow:
            return std::to_string(body.HighLow());
        default:
            return std::to_string(body.LowHigh());
    }
}

// Behind the address, the link sequence and the message.
void TakeApplication(BodyFields& body) {
    const std::size_t length = SequenceLength(body.PeekAll());
    const Function* function = FunctionOfApplication(body.PeekAll());
    body.Take(length, "application sequence", SequenceText(body, length, function));
    TakeFixed(body, behindSequence.size());
    if (function != nullptr) {
        body.Take(function->begin.size(), "function", function->word);
        function->takeArguments(body);
        body.TakeRest("data");
    }
}

void TakeRequest(BodyFields& body) {
    body.TakeByte("address");
    body.TakeByte("link sequence");
    const int message = body.Peek();
    switch (message) {
        case Poll:
            body.Take(1, "message", "poll");
            body.Take(1, "argument", HexByte(std::max(body.Peek(), 0)));
            break;
        case Acknowledge:
            body.Take(1, "message", "acknowledge");
            body.TakeByte("acknowledged sequence");
            break;
        case Application:
            body.Take(1, "message", "application");
            TakeApplication(body);
            break;
        default:
            break;
    }
    body.TakeRest("not recognised");
}

// What a request asks for.
Answer AnswerTo(std::string_view request) {
    constexpr std::size_t application = 3;  // behind address, link sequence and message
    if (request.size() < startLength) {
        return Answer::Data;
    }
    const std::string body = Unescape(request, startLength).body.bytes;
    const Function* function = FunctionOfApplication(std::string_view(body).substr(std::min(application, body.size())));
    return function == nullptr ? Answer::Data : function->answer;
}

// Positions of the layout count from 1 over the frame with its start, those of a poll reply behind its first byte. A
// frame behind a leading byte stands in the short layout.
void TakeTo(BodyFields& body, std::size_t at, const char* name) {
    TakeFixed(body, at - std::min(at, body.Taken()), name);
}

void TakeReply(BodyFields& body, const BsapReplyLayout& layout, bool isAcknowledgement, Answer answer) {
    constexpr std::size_t inFront = startLength + 1;
    body.TakeByte("address");
    body.TakeByte("link sequence");
    if (isAcknowledgement) {
        TakeTo(body, layout.pollAddress + 1 - inFront, "acknowledgement");
        body.TakeByte("station");
        body.TakeByte("status");
        body.TakeRest("rest");
        return;
    }
    TakeTo(body, layout.loadVersion - inFront, "head of the answer");
    if (answer == Answer::Version) {
        TakeVersion(body);
        body.TakeRest("signal");
    } else if (answer == Answer::List) {
        const int next = body.LowHigh();
        body.Take(2, "list goes on", next == 0 ? "0, this was the last" : "behind " + std::to_string(next));
        body.Take(body.Left(), "first record",
                  "type " + std::to_string(body.Peek()) + ", " + std::to_string(body.Left()) + " bytes of records");
    } else {
        body.TakeRest("data");
    }
}

// How the answer was sent whose start is `ahead` of the next byte.
LeadingByte LeadingByteAt(const Naming& naming, std::size_t ahead, bool isCW, const Unescaped& frame) {
    const BsapAsked asked = BsapAsked::By(naming.request, isCW);
    return LeadingByteOf(frame.body.bytes, ahead > 0, asked).value_or(LeadingByte::InHead);
}

void NameFrame(Naming& naming, bool isCW) {
    const std::size_t ahead = naming.Rest().find(frameStart);
    const std::size_t start = naming.next + ahead;
    const Unescaped frame = Unescape(naming.line, start + startLength);
    const bool isSent = naming.direction == Direction::TX;
    const LeadingByte leading = isSent ? LeadingByte::None : LeadingByteAt(naming, ahead, isCW, frame);
    const std::size_t led = leading == LeadingByte::Ahead && ahead > 0 ? 1 : 0;
    naming.TakeUnknown(ahead - led);
    if (led > 0) {
        naming.Take(led, "leading byte", ShortHex(naming.Rest().substr(0, led)));
    }
    naming.Take(startLength, "start", "DLE STX");
    BodyFields body(frame.body, naming.fields);
    if (isSent) {
        TakeRequest(body);
    } else {
        const std::size_t length =
            frame.body.bytes.size() + startLength + replyTrailer + (leading == LeadingByte::Ahead ? 1 : 0);
        TakeReply(body, ReplyLayout(leading != LeadingByte::InHead),
                  frame.ended && IsLinkMessage(frame.body.bytes, leading, length), AnswerTo(naming.request));
    }
    naming.next = frame.end;
    if (!frame.ended) {
        if (!body.CutShort()) {
            naming.TakeCut("end");
        }
        return;
    }
    naming.Take(startLength, "end", "DLE ETX");
    if (naming.Rest().size() < checkLength) {
        naming.TakeCut("check");
        return;
    }
    const int check = BsapCheck(naming.line.substr(start, naming.next - start));
    const std::string expected = {static_cast<char>(check & 0xFF), static_cast<char>(check >> 8 & 0xFF)};
    naming.Take(checkLength, "check", CheckWord(naming.Rest().starts_with(expected), ShortHex(expected)));
}

}  // namespace

void NameBsap(Naming& naming, bool isCW) {
    while (naming.Rest().find(frameStart) != std::string_view::npos) {
        NameFrame(naming, isCW);
    }
}

int BsapMessage(std::string_view sent) {
    const std::string body = sent.size() > startLength ? Unescape(sent, startLength).body.bytes : std::string();
    return body.size() > 2 ? static_cast<unsigned char>(body[2]) : -1;
}

}  // namespace protocols
