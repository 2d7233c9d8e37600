#include "fieldsim/BsapStation.h"

#include "fieldsim/BsapArchive.h"
#include "fieldsim/BsapBytes.h"

namespace fieldsim {

namespace {

using namespace std::string_view_literals;

// Where the function part begins: behind the application sequence and 0B 00. A master that makes its sign-on from the
// decimal text of the sequence number leaves a byte of it out when it does not fit.
std::size_t FunctionStart(std::string_view body) {
    for (const std::size_t sequenceBytes : {2U, 1U, 0U}) {
        if (Rest(body, 3 + sequenceBytes).starts_with("\x0B\x00"sv)) {
            return 5 + sequenceBytes;
        }
    }
    return body.size();
}

}  // namespace

BsapStation::BsapStation(int address, SignalLists lists, BsapOptions options)
    : address_(address), lists_(std::move(lists)), options_(std::move(options)), random_(options_.seed) {
    for (const auto& [number, list] : lists_) {
        RunClockOf(*list);
        for (const Signal& signal : list->Signals()) {
            MsdOf(number, signal);
        }
    }
}

std::vector<Answer> BsapStation::Receive(std::string_view bytes, const Moment& now) {
    MakeDue(now);
    reader_.Add(bytes, now.milliseconds);
    std::vector<Answer> answers;
    while (const auto body = reader_.Next()) {
        if (body->size() < 4 || ByteAt(*body, 0) != address_ || LineIsDown()) {
            continue;
        }
        if (const auto reply = Reply(*body, now)) {
            answers.push_back({OnLine(reply->bytes), reply->delayMs});
        }
    }
    return answers;
}

std::optional<Answer> BsapStation::Reply(std::string_view body, const Moment& now) {
    ownSequence_ = ownSequence_ % 15 + 1;
    switch (ByteAt(body, 2)) {
        case 0x85:  // poll
            return InTime(WhatWaits(ByteAt(body, 1)));
        case 0x8B:  // the master has what waited
            waiting_.clear();
            return InTime(Acknowledgement(ByteAt(body, 1)));
        case 0xA0:
            waiting_.clear();
            return Application(body, now);
        default:
            return std::nullopt;
    }
}

std::optional<Answer> BsapStation::Application(std::string_view body, const Moment& now) {
    const std::size_t start = FunctionStart(body);
    Request request;
    request.sequence = ByteAt(body, 1);
    request.applicationSequence = body.substr(3, 2);
    request.function = Rest(body, start);
    if (request.function.starts_with("\x70\x05\x01"sv)) {
        return InTime(SignOn(request));
    }
    if (request.function == "\x04\x02\x01\xFF\x11#ON..\0"sv) {
        return InTime(Version(request));
    }
    if (request.function.starts_with("\x0C"sv) || request.function.starts_with("\x0D"sv)) {
        const auto page = List(request, now);
        return page ? std::optional(InTime(*page)) : std::nullopt;
    }
    if (request.function.starts_with("\x80"sv) || request.function.starts_with("\x84"sv)) {
        return AnswerWrite(request, now);
    }
    if (Open()) {
        auto answer = FromHistory(request, now);
        answer = answer ? answer : Singles(request, now);
        if (answer) {
            return InTime(AtOnceOrOnPoll(*answer, request));
        }
    }
    return InTime(Open() ? Refusal(request) : Acknowledgement(request.sequence));
}

std::string BsapStation::SignOn(const Request& request) {
    const std::string_view given = request.function.substr(3);
    signedOn_ = options_.password.empty() || given == options_.password + '\0';
    signOns_ += signedOn_ ? 1 : 0;
    return Acknowledgement(request.sequence);
}

std::string BsapStation::Version(const Request& request) {
    return AnswerHead(request) + (Open() ? LoadVersion() : std::string(2, '\0')) + "#ON.." + '\0';
}

std::optional<std::string> BsapStation::FromHistory(const Request& request, const Moment& now) {
    std::string head = AnswerHead(request);
    const auto reply = AnswerHistory(history_, request.function, kLongestBody - head.size(), now.local);
    if (!reply) {
        return std::nullopt;
    }
    head[head.size() - 3] = static_cast<char>(reply->status[0]);
    head[head.size() - 2] = static_cast<char>(reply->status[1]);
    return head + reply->data;
}

std::string BsapStation::AtOnceOrOnPoll(std::string answer, const Request& request) {
    ++dataRequests_;
    const bool takesLong = options_.notReadyOneIn > 0 && random_() % options_.notReadyOneIn == 0;
    if (!takesLong && (options_.answers == DataAnswer::AtOnce ||
                       (options_.answers == DataAnswer::Alternate && dataRequests_ % 2 == 0))) {
        return answer;
    }
    waiting_ = std::move(answer);
    pollsInFront_ = takesLong ? 1 : 0;
    return Acknowledgement(request.sequence);
}

std::string BsapStation::WhatWaits(std::uint8_t sequence) {
    const bool ready = !waiting_.empty() && pollsInFront_ == 0;
    pollsInFront_ -= pollsInFront_ > 0 ? 1 : 0;
    return ready ? waiting_ : Acknowledgement(sequence);
}

std::string BsapStation::OnLine(std::string_view body) {
    const bool isLed = options_.leadingByte && !options_.shortLayout;
    return (isLed ? std::string(1, random_() % 2 == 0 ? '\xFF' : '\0') : std::string()) + BsapFrame(body);
}

std::string BsapStation::HeadStart(std::uint8_t sequence) const {
    std::string head = {'\0', Sequence(sequence)};
    head.append(options_.shortLayout || options_.leadingByte ? 0 : 1, '\0');
    return head;
}

// Address and status stand at bytes 6 and 7 of the frame, in the long layout at 7 and 8. With 12 or 13 bytes it is in
// the range of 11 to 17 by which masters know it.
std::string BsapStation::Acknowledgement(std::uint8_t sequence) {
    std::string body = HeadStart(sequence) + '\x86';
    body += static_cast<char>(address_);
    body += static_cast<char>(options_.status);
    return body + Sequence(sequence);
}

// Twelve bytes of the frame in the short layout, thirteen in the long one.
std::string BsapStation::AnswerHead(const Request& request) {
    std::string head = HeadStart(request.sequence) + '\x0B';
    head += options_.echoSequences ? request.applicationSequence : std::string(2, '\0');
    head += '\xA0';
    head += static_cast<char>(options_.status);
    return head + std::string(3, '\0');
}

std::string BsapStation::Refusal(const Request& request) {
    if (!options_.echoSequences) {
        return Acknowledgement(request.sequence);
    }
    const std::string head = AnswerHead(request);
    return head.substr(0, head.size() - 3) + '\x04';
}

char BsapStation::Sequence(std::uint8_t requested) const {
    return static_cast<char>(options_.echoSequences ? requested : ownSequence_);
}

}  // namespace fieldsim
