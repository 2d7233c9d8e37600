#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "collection/QuantumRead.h"
#include "collection/RunTally.h"
#include "core/Text.h"
#include "protocols/Quantum.h"

namespace collection {

namespace {

// The values of one message, each under its name in the station's map and in the day's text.
std::array<double, 8> StoreMessage(Workplace& place, const std::string& reply, int message, ValueStore& store,
                                   DayRow& day) {
    const auto values = protocols::DecodeQuantumReply(reply, message);
    const auto& names = protocols::QuantumNames(message);
    const std::string now = core::IsoText(place.clock.Now());
    place.dbconn.InTransaction([&] {
        for (std::size_t i = 0; i < values.size(); ++i) {
            day.desc += "#" + std::string(names[i]) + "=" + core::NumberText(values[i]);
            store.PutNamed(names[i], {values[i], core::Quality::Good, now});
        }
    });
    if (message == 1) {
        day.CurrentMonthFlow = values[1];
        day.CurrentDayFlow = values[2];
    } else if (message == 3) {
        day.currentprs = values[2];
    }
    return values;
}

}  // namespace

bool ReadQuantum(Workplace& place, protocols::Conversation& talk, const QuantumOptions& options, ValueStore& store,
                 const std::function<void(int message, const std::array<double, 8>& values)>& stored) {
    DayRow day;
    for (int message = 1; message <= protocols::quantumMessages; ++message) {
        const std::string number = std::to_string(message);
        const std::string request = protocols::BuildQuantumRequest(talk.station.slaveaddress, "A", message);
        talk.feedback.Status("Sending Request Message " + number);
        talk.feedback.Status("Waiting For Reply- Message " + number);
        const std::string reply =
            protocols::CutQuantumEcho(protocols::Exchange(talk, request, options.answerMs), request);
        if (!talk.Ended()) {
            talk.requests.Note(!reply.empty());
        }
        if (reply.empty()) {
            if (!talk.Ended() && options.unattended) {
                place.logs.WriteRtuErr(number + "Quantum Not Responding");
            } else if (!talk.Ended()) {
                talk.feedback.Box("Quantum Not Responding");
            }
            return false;
        }
        talk.feedback.Status("Converting Data..");
        stored(message, StoreMessage(place, reply, message, store, day));
    }
    UpsertLogParam(place.dbconn, talk.station.locationID, place.clock.Now(), place.clock.Now(), day);
    return true;
}

void CollectQuantum(Workplace& place, protocols::Conversation& talk, RunState& state) {
    constexpr double scheduledAnswerMs = 2 * 2500;
    RunTally tally;
    ValueStore store(place.dbconn, talk.station, talk.streamno);
    place.dbconn.InTransaction([&] { store.AskNames(); });
    const bool whole = ReadQuantum(place, talk, {true, scheduledAnswerMs}, store, [](int, const auto&) {});
    if (!whole) {
        tally.Failure("The unit does not answer");
    }
    tally.Add(store);
    tally.Conclude(talk, state);
    if (!whole) {
        state.runfailed = true;
        return;
    }
    // All three messages are in: the unit is not asked again in this minute, whatever else goes wrong.
    state.attemptcount = 3;
}

}  // namespace collection
