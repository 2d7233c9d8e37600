#include "reading/RunTally.h"

namespace reading {

namespace {

std::string Values(int count) {
    return std::to_string(count) + (count == 1 ? " value" : " values");
}

void Append(std::string& sentence, const std::string& part) {
    sentence += (sentence.empty() ? "" : "; ") + part;
}

}  // namespace

void RunTally::Add(const ValueStore& stream) {
    asked_ += stream.Asked();
    received_ += stream.Received();
    refused_ += stream.Refused();
}

void RunTally::Refusal(const std::string& where) {
    refusal_ = refusal_.empty() ? where : refusal_;
}

void RunTally::Failure(const std::string& why) {
    failure_ = failure_.empty() ? why : failure_;
}

void RunTally::Conclude(const protocols::Conversation& talk, RunState& state) const {
    state.asked = asked_;
    state.received = received_;
    state.result = ResultOf();
    state.reason = Reason();
    if (talk.Ended()) {
        state.result = Result::BrokenOff;
        state.reason = "Broken off: " + talk.line->Reason();
    }
}

Result RunTally::ResultOf() const {
    if (received_ > 0) {
        return received_ == asked_ && failure_.empty() ? Result::Collected : Result::Partly;
    }
    if (refused_ > 0) {
        return Result::Refused;
    }
    return asked_ == 0 && failure_.empty() ? Result::Partly : Result::NoAnswer;
}

std::string RunTally::Reason() const {
    std::string reason = failure_;
    if (refused_ > 0) {
        Append(reason, Values(refused_) + " refused by the station (" + refusal_ + ")");
    }
    const int missing = asked_ - received_ - refused_;
    if (missing > 0) {
        Append(reason, Values(missing) + " not received");
    }
    if (asked_ == 0 && reason.empty()) {
        reason = "The map of the station has none of the values that were read";
    }
    return reason;
}

}  // namespace reading
