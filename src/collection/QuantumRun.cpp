#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "core/Text.h"
#include "protocols/Quantum.h"

namespace collection {

namespace {

constexpr int answerMs = 2 * 2500;

// The values of one message, each under its name in the station's map and in the day's text.
void StoreMessage(Workplace& place, const core::Station& station, const std::string& reply, int message, DayRow& day) {
    const auto values = protocols::DecodeQuantumReply(reply, message);
    const auto& names = protocols::QuantumNames(message);
    place.dbconn.InTransaction([&] {
        for (std::size_t i = 0; i < values.size(); ++i) {
            day.desc += "#" + std::string(names[i]) + "=" + core::NumberText(values[i]);
            place.dbconn.Execute("update configdata_detail set lastvalue=? where description=? and locationid=?",
                                 {core::RoundTo(values[i], 4), names[i], station.locationID});
        }
    });
    if (message == 1) {
        day.CurrentMonthFlow = values[1];
        day.CurrentDayFlow = values[2];
    } else if (message == 3) {
        day.currentprs = values[2];
    }
}

}  // namespace

void CollectQuantum(Workplace& place, protocols::Conversation& talk, RunState& state) {
    DayRow day;
    for (int message = 1; message <= protocols::quantumMessages; ++message) {
        const std::string number = std::to_string(message);
        const std::string request = protocols::BuildQuantumRequest(talk.station.slaveaddress, "A", message);
        place.feedback.Status("Sending Request Message " + number);
        place.feedback.Status("Waiting For Reply- Message " + number);
        const std::string reply = protocols::CutQuantumEcho(protocols::Exchange(talk, request, answerMs), request);
        if (reply.empty()) {
            if (!talk.Ended()) {
                place.logs.WriteRtuErr(number + "Quantum Not Responding");
            }
            state.runfailed = true;
            return;
        }
        place.feedback.Status("Converting Data..");
        StoreMessage(place, talk.station, reply, message, day);
    }
    UpsertLogParam(place.dbconn, talk.station.locationID, place.clock.Now(), place.clock.Now(), day);
    // All three messages are in: the unit is not asked again in this minute, whatever else goes wrong.
    state.attemptcount = 3;
}

}  // namespace collection
