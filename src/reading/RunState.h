#pragma once

#include <optional>
#include <string>

namespace reading {

// What came of a run, as it is known at its end.
enum class Result {
    Collected,   // all that was asked for
    Partly,      // some of it is missing or refused
    NotReached,  // the port, the modem or the station's
    NoAnswer,
    Refused,    // the station answered, and gave nothing
    BrokenOff,  // its time was up, or the program ended
};

// The figures of a gas day, as far as they were received: flows over all streams, the pressure of the first.
struct DayFigures {
    std::optional<double> dayflow;    // "Volume Yesterday"
    std::optional<double> monthflow;  // "Volume This Month"
    std::optional<double> pressure;   // "Flowing Pressure"

    // Adds the next stream's. A flow that one of them lacks is unknown for the station.
    void AddStream(const DayFigures& stream);
};

// What a station's attempts share: the scheduler's retries and the redials of one attempt use one counter.
struct RunState {
    bool runfailed = false;
    int attemptcount = 0;
    int dials = 0;  // of all attempts
    // Of the attempt in hand; each attempt sets them anew.
    Result result = Result::NoAnswer;
    int asked = 0;  // values
    int received = 0;
    std::string reason;  // a sentence, empty for a whole collection
    DayFigures figures;
};

}  // namespace reading
