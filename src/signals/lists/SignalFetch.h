#pragma once

#include <string>
#include <vector>

#include "protocols/line/Conversation.h"
#include "signals/lists/SignalText.h"

// How signals are read from a station with their names: a list by its number, or what fits a pattern.
namespace signals {

// How a fetch reaches its screen.
class FetchView {
  public:
    virtual ~FetchView() = default;

    // The next signals, in their order.
    virtual void Signals(const std::vector<Signal>& signals) = 0;
    // The operator ends the fetch.
    virtual bool Stopped() const = 0;
    // No reply is on its way: what waits for the line, such as a write, may be done now.
    virtual void BetweenReplies(protocols::Conversation& talk) { static_cast<void>(talk); }
};

enum class FetchEnd {
    Whole,
    None,     // the station has no such list
    Failed,   // four bad replies in a row
    Stopped,  // by the operator
    Ended,    // the line was taken away, or the program ends
};

// Reads a list with its names from a station that is signed on. Up to 4 sends for each reply, two commtimeouts each and
// more where the station first acknowledges. What came until a failure has gone to the view.
FetchEnd FetchList(protocols::Conversation& talk, int listNumber, FetchView& view);

// What a search goes by.
enum class SearchKind {
    Attribute = 0,  // what stands behind the last point of a name, at most 4 characters
    Name = 1,       // how a name begins; * stands for any characters
};

// Reads the signals that fit, in the same way: Whole without a signal where none does. The pattern goes out in
// capitals.
FetchEnd SearchSignals(protocols::Conversation& talk, const std::string& pattern, SearchKind kind, FetchView& view);

// What the operator is told of a fetch of a list: "List Fetched", "List Not Found", "Error Occured in Communication",
// or why it was cut off. `rows`: how many signals came.
std::string FetchMessage(FetchEnd end, std::size_t rows, const std::string& reason);

}  // namespace signals
