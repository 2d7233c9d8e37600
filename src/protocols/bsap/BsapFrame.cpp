#include "protocols/bsap/BsapFrame.h"

#include "core/Text.h"
#include "protocols/bsap/BsapCheck.h"

namespace protocols {

namespace {

const std::string dlePair(2, bsap::dle);

int NextLinkSequence(BsapCounters& counters) {
    if (counters.bsapseq == 255) {
        counters.bsapseq = 0;
    }
    return ++counters.bsapseq;
}

// A late answer is told by the numbers of its request. What is later than so many requests is not waited for.
void Remember(BsapCounters& counters, const std::string& sequence, char serial) {
    constexpr std::size_t mostRemembered = 16;
    counters.lately.push_back({sequence, std::string(1, serial)});
    if (counters.lately.size() > mostRemembered) {
        counters.lately.pop_front();
    }
}

void AdvanceApplicationSequence(BsapCounters& counters) {
    int sequence = counters.appseqhigh * 256 + counters.appseqlow;
    if (sequence >= 65534) {
        sequence = 0;
    }
    sequence += 2;
    counters.appseqlow = sequence % 256;
    counters.appseqhigh = sequence / 256;
}

std::string DigitsByte(int number) {
    const int reading = DigitsAsHex(number);
    return reading > 255 ? std::string() : std::string(1, LowByte(reading));
}

std::string SequenceBytes(const BsapCounters& counters, bsap::SequenceOrder order) {
    const char low = LowByte(counters.appseqlow);
    const char high = LowByte(counters.appseqhigh);
    switch (order) {
        case bsap::SequenceOrder::LowHigh:
            return {low, high};
        case bsap::SequenceOrder::HighLow:
            return {high, low};
        case bsap::SequenceOrder::LowHighDigits:
            return DigitsByte(counters.appseqlow) + DigitsByte(counters.appseqhigh);
    }
    return {};
}

// Start, a body that is already escaped, end and check.
std::string Frame(const std::string& escapedBody) {
    std::string frame(bsap::frameStart);
    frame.append(escapedBody).append(bsap::frameEnd);
    const int check = BsapCheck(frame);
    frame += LowByte(check);
    frame += HighByte(check);
    return frame;
}

std::string Doubled(char byte) {
    return byte == bsap::dle ? dlePair : std::string(1, byte);
}

int NextLinkMessage(BsapCounters& counters) {
    const int sequence = NextLinkSequence(counters);
    // A poll's answer belongs to the request before it.
    constexpr std::size_t mostSerials = 16;
    if (!counters.lately.empty() && counters.lately.back().serials.size() < mostSerials) {
        counters.lately.back().serials += LowByte(sequence);
    }
    return sequence;
}

std::string LocalFrame(int address, int sequence, int command, char argument) {
    return Frame(Doubled(LowByte(address)) + Doubled(LowByte(sequence)) + LowByte(command) + Doubled(argument));
}

}  // namespace

int DigitsAsHex(int number) {
    return number < 10 ? number : DigitsAsHex(number / 10) * 16 + number % 10;
}

std::string BuildApplicationFrame(BsapCounters& counters, int address, const bsap::Function& function,
                                  const std::string& data) {
    AdvanceApplicationSequence(counters);
    const char sequence = LowByte(NextLinkSequence(counters));
    const std::string applicationSequence = SequenceBytes(counters, function.order);
    Remember(counters, applicationSequence, sequence);
    std::string body = {LowByte(address), sequence, LowByte(bsap::application)};
    body.append(applicationSequence).append(bsap::behindSequence).append(function.code).append(data);
    return Frame(core::ReplaceAll(body, std::string(1, bsap::dle), dlePair));
}

std::string BuildPoll(BsapCounters& counters, int address) {
    return LocalFrame(address, NextLinkMessage(counters), bsap::poll, bsap::pollArgument);
}

std::string BuildAcknowledgement(BsapCounters& counters, int address) {
    const int sequence = NextLinkMessage(counters);
    return LocalFrame(address, sequence, bsap::acknowledge, LowByte(sequence));
}

}  // namespace protocols
