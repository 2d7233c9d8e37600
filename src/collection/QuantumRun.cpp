#include "collection/ProtocolRuns.h"
#include "reading/QuantumRead.h"
#include "reading/RunTally.h"

namespace collection {

namespace {

// As LogParam has them: both flows are counters of the unit's lifetime, which the reports say.
void KeepForTheDay(int message, const protocols::QuantumReply& reply, reading::DayFigures& figures) {
    if (message == 1) {
        figures.monthflow = reply.fields[1];
        figures.dayflow = reply.fields[2];
    } else if (message == 3) {
        figures.pressure = reply.fields[2];
    }
}

}  // namespace

void CollectQuantum(reading::Workplace& place, protocols::Conversation& talk, reading::RunState& state) {
    constexpr double scheduledAnswerMs = 2 * 2500;
    reading::RunTally tally;
    reading::ValueStore store(place.dbconn, talk.station, talk.streamno);
    place.dbconn.InTransaction([&] { store.AskNames(); });
    const auto keep = [&](int message, const protocols::QuantumReply& reply) {
        KeepForTheDay(message, reply, state.figures);
    };
    if (!reading::ReadQuantum(place, talk, {true, scheduledAnswerMs}, store, keep)) {
        tally.Failure("The unit does not answer");
        state.runfailed = true;
    }
    tally.Add(store);
    tally.Conclude(talk, state);
    if (state.runfailed || store.Received() == 0) {
        state.runfailed = true;
        return;
    }
    // All three messages are in: the unit is not asked again in this minute, whatever else goes wrong.
    state.attemptcount = 3;
}

}  // namespace collection
