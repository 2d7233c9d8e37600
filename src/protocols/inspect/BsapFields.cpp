#include <algorithm>
#include <array>

#include "core/Text.h"
#include "protocols/WireNumbers.h"
#include "protocols/bsap/BsapAnswer.h"
#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapConstants.h"
#include "protocols/bsap/BsapReply.h"
#include "protocols/inspect/FieldWriter.h"

// BSAP by name. What the fixed bytes of its messages stand for, beyond what is said here, is not known.
namespace protocols {

namespace {

constexpr std::size_t startLength = bsap::frameStart.size();

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
        const bool escape = line[at] == bsap::dle && at + 1 < line.size();
        if (escape && line[at + 1] == bsap::etx) {
            frame.ended = true;
            break;
        }
        frame.body.bytes += line[at];
        frame.body.at.push_back(at);
        at += escape && line[at + 1] == bsap::dle ? 2 : 1;
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
        case bsap::writtenOn:
            body.Take(1, "value", "on");
            break;
        case bsap::writtenOff:
            body.Take(1, "value", "off");
            break;
        case bsap::writtenAnalog: {
            body.Take(1, "value kind", "analog");
            std::uint32_t word = 0;
            for (std::size_t i = 4; i > 0; --i) {
                word = word << 8U | static_cast<std::uint32_t>(std::max(body.Peek(i - 1), 0));
            }
            body.Take(4, "value", core::NumberText(WireFloat(word)));
            break;
        }
        case bsap::writtenText:
            body.Take(1, "value kind", "text");
            body.TakeText("value");
            break;
        default:
            body.Take(1, "value", "not recognised");
    }
}

void TakeFields(BodyFields& body) {
    const std::string_view rest = body.PeekAll();
    if (rest.starts_with(bsap::fieldsWithNames)) {
        body.Take(bsap::fieldsWithNames.size(), "field set", "F9, with names");
        return;
    }
    body.Take(bsap::fieldsWithUnits.size(), "field set",
              rest.starts_with(bsap::fieldsWithUnits)      ? "F0, with units"
              : rest.starts_with(bsap::fieldsWithoutUnits) ? "D0, without units"
                                                           : ShortHex(rest.substr(0, 2)));
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

// A request by its function.
struct Function {
    const bsap::Function& begin;
    const char* word;
    void (*takeArguments)(BodyFields&);  // names what follows
    Answer answer = Answer::Data;
};

constexpr auto functions = std::to_array<Function>({
    {bsap::signOn, "sign-on", TakePassword},
    {bsap::archiveInformation, "archive information", TakeNothing},
    {bsap::archiveDefinitions, "archive fields", TakeNothing},
    {bsap::archiveByDate, "archive by date", TakeNothing},
    {bsap::archiveRecords, "archive records", TakeNothing},
    {bsap::auditRecords, "audit records", TakeNothing},
    {bsap::readVersion, "load version", TakeName, Answer::Version},
    {bsap::firstOfList, "first of a list", TakeList, Answer::List},
    {bsap::nextOfList, "next of a list", TakeList, Answer::List},
    {bsap::writeValues, "write values", TakeValues},
    {bsap::writeByName, "write by name", TakeNamedValue},
    {bsap::readByAddress, "read by address", TakeAddressed},
    {bsap::readByName, "read by name", TakeNames},
    {bsap::searchSignals, "search for signals", TakeSearch},
});

const Function* FunctionOf(std::string_view bytes) {
    for (const Function& function : functions) {
        if (bytes.starts_with(function.begin.code)) {
            return &function;
        }
    }
    return nullptr;
}

// How many bytes the application sequence has: two. The sign-on forms it of decimal digits, and leaves out a byte that
// they do not fit.
std::size_t SequenceLength(std::string_view application) {
    for (std::size_t length = 3; length > 0; --length) {
        if (application.substr(std::min(length - 1, application.size())).starts_with(bsap::behindSequence)) {
            return length - 1;
        }
    }
    return 2;
}

const Function* FunctionOfApplication(std::string_view application) {
    const std::size_t at = SequenceLength(application) + bsap::behindSequence.size();
    return FunctionOf(application.substr(std::min(at, application.size())));
}

std::string SequenceText(const BodyFields& body, std::size_t length, const Function* function) {
    switch (function == nullptr ? bsap::SequenceOrder::LowHigh : function->begin.order) {
        case bsap::SequenceOrder::LowHighDigits:
            return ShortHex(body.PeekAll().substr(0, length)) + " (decimal)";
        case bsap::SequenceOrder::HighLow:
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
    TakeFixed(body, bsap::behindSequence.size());
    if (function != nullptr) {
        body.Take(function->begin.code.size(), "function", function->word);
        function->takeArguments(body);
        body.TakeRest("data");
    }
}

void TakeRequest(BodyFields& body) {
    body.TakeByte("address");
    body.TakeByte("link sequence");
    const int message = body.Peek();
    switch (message) {
        case bsap::poll:
            body.Take(1, "message", "poll");
            body.Take(1, "argument", HexByte(std::max(body.Peek(), 0)));
            break;
        case bsap::acknowledge:
            body.Take(1, "message", "acknowledge");
            body.TakeByte("acknowledged sequence");
            break;
        case bsap::application:
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
    if (request.size() < startLength) {
        return Answer::Data;
    }
    const std::string body = Unescape(request, startLength).body.bytes;
    const Function* function =
        FunctionOfApplication(std::string_view(body).substr(std::min(bsap::numbersAt, body.size())));
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
    const std::size_t ahead = naming.Rest().find(bsap::frameStart);
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
    naming.Take(bsap::frameEnd.size(), "end", "DLE ETX");
    if (naming.Rest().size() < bsap::checkLength) {
        naming.TakeCut("check");
        return;
    }
    const int check = BsapCheck(naming.line.substr(start, naming.next - start));
    const std::string expected = {static_cast<char>(check & 0xFF), static_cast<char>(check >> 8 & 0xFF)};
    naming.Take(bsap::checkLength, "check", CheckWord(naming.Rest().starts_with(expected), ShortHex(expected)));
}

}  // namespace

void NameBsap(Naming& naming, bool isCW) {
    while (naming.Rest().find(bsap::frameStart) != std::string_view::npos) {
        NameFrame(naming, isCW);
    }
}

int BsapMessage(std::string_view sent) {
    const std::string body = sent.size() > startLength ? Unescape(sent, startLength).body.bytes : std::string();
    return body.size() > bsap::messageAt ? static_cast<unsigned char>(body[bsap::messageAt]) : -1;
}

}  // namespace protocols
