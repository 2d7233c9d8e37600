#include "signals/lists/SignalFetch.h"

#include <functional>

#include "core/Text.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapLayout.h"
#include "reading/ListReplies.h"

namespace signals {

namespace {

using reading::ListReading;
using reading::RecordFields;
using reading::RecordForm;

// Where the records of an answer with names begin. A record has its name behind the long form's bytes, on the CW models
// too; what a search finds stands where a list's signals do, and so does the place where it goes on.
RecordForm NamedRecords(const core::Station& station) {
    return {.firstRecord = protocols::ReplyLayout(station.isCW).firstRecord,
            .units = true,
            .isTeleCorrector = station.isTeleCorrector,
            .fields = RecordFields::Names};
}

// No list has more replies than the grid has rows. A station that sends replies without signals, with always another
// place to go on, has failed.
constexpr int mostReplies = 1500;

// While a fetch runs, a stop of the operator ends its tries as well.
class StopEndsTries {
  public:
    StopEndsTries(protocols::Conversation& talk, const FetchView& view) : talk_(talk), before_(talk.wanted) {
        talk_.wanted = [&view] { return view.Stopped(); };
    }
    ~StopEndsTries() { talk_.wanted = before_; }
    StopEndsTries(const StopEndsTries&) = delete;
    StopEndsTries& operator=(const StopEndsTries&) = delete;

  private:
    protocols::Conversation& talk_;
    std::function<bool()> before_;
};

FetchEnd ReadAll(protocols::Conversation& talk, ListReading reading, FetchView& view) {
    const StopEndsTries stopEndsTries(talk, view);
    reading::ListReplies replies(talk, std::move(reading));
    for (int count = 0; count < mostReplies; ++count) {
        view.BetweenReplies(talk);
        if (view.Stopped() && !talk.Ended()) {
            return FetchEnd::Stopped;
        }
        const auto reply = replies.Next();
        if (talk.Ended()) {
            return FetchEnd::Ended;
        }
        if (!reply) {
            return replies.None() ? FetchEnd::None : view.Stopped() ? FetchEnd::Stopped : FetchEnd::Failed;
        }
        view.Signals(reply->signals);
        if (reply->next == 0) {
            return FetchEnd::Whole;
        }
    }
    return FetchEnd::Failed;
}

protocols::Bsap Messages(protocols::Conversation& talk) {
    return {talk.counters, talk.bsap, talk.station.isCW};
}

}  // namespace

FetchEnd FetchList(protocols::Conversation& talk, int listNumber, FetchView& view) {
    talk.feedback.Status("Please wait ....");
    talk.bsap.listnames = true;
    ListReading reading;
    reading.request = [&talk, listNumber](bool first) {
        return Messages(talk).get_LIST(talk.station.slaveaddress, listNumber, first);
    };
    reading.form = NamedRecords(talk.station);
    reading.tooShort = protocols::LongestWithoutData(talk.bsap.usepoll);
    reading.saysNone = reading::SaysNone::ByAnyAnswerWithoutData;
    reading.paced = true;
    const FetchEnd end = ReadAll(talk, std::move(reading), view);
    talk.bsap.listnames = false;
    return end;
}

FetchEnd SearchSignals(protocols::Conversation& talk, const std::string& pattern, SearchKind kind, FetchView& view) {
    talk.feedback.Status("Please Wait...");
    ListReading reading;
    reading.request = [&talk, text = core::UpperText(pattern), kind](bool) {
        return Messages(talk).get_signal_search(talk.station.slaveaddress, text, static_cast<int>(kind),
                                                talk.bsap.listnext1, talk.bsap.listnext2);
    };
    reading.form = NamedRecords(talk.station);
    // An answer without a signal is one byte shorter than the shortest answer of a list that has one.
    reading.tooShort = reading.form.firstRecord - 1 + protocols::replyTrailer - 1;
    reading.saysNone = reading::SaysNone::ByItsStatus;
    reading.paced = true;
    const FetchEnd end = ReadAll(talk, std::move(reading), view);
    return end == FetchEnd::None ? FetchEnd::Whole : end;
}

std::string FetchMessage(FetchEnd end, std::size_t rows, const std::string& reason) {
    switch (end) {
        case FetchEnd::Whole:
            return "List Fetched";
        case FetchEnd::None:
            return "List Not Found";
        case FetchEnd::Failed:
            return "Error Occured in Communication";
        case FetchEnd::Stopped:
            return "List Fetched up to the stop: " + std::to_string(rows) + " signals";
        case FetchEnd::Ended:
            break;
    }
    return "The line is gone: " + reason;
}

}  // namespace signals
