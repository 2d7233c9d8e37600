#include <algorithm>
#include <optional>

#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "collection/QuantumRead.h"
#include "core/Text.h"
#include "protocols/Quantum.h"

namespace collection {

namespace {

constexpr int mostAsks = 3;

// Asks for one message, again while a field of its reply is missing. The best reply counts. Nothing: the unit was
// silent, or the conversation ended.
std::optional<protocols::QuantumReply> Ask(protocols::Conversation& talk, int message, double answerMs) {
    const std::string number = std::to_string(message);
    const std::string request = protocols::BuildQuantumRequest(talk.station.slaveaddress, "A", message);
    std::optional<protocols::QuantumReply> best;
    for (int asked = 0; asked < mostAsks && (asked == 0 || (!talk.Ended() && !talk.Wanted())); ++asked) {
        talk.feedback.Status("Sending Request Message " + number);
        talk.feedback.Status("Waiting For Reply- Message " + number);
        const std::string reply = protocols::CutQuantumEcho(protocols::Exchange(talk, request, answerMs), request);
        if (talk.Ended()) {
            return std::nullopt;
        }
        const protocols::QuantumReply decoded = protocols::DecodeQuantumReply(reply, message);
        talk.requests.Note(decoded.Whole());
        if (reply.empty() && !best) {
            return std::nullopt;
        }
        if (!best || decoded.Received() > best->Received()) {
            best = decoded;
        }
        if (best->Whole()) {
            break;
        }
    }
    return best;
}

// The values of one message, each under its name in the station's map and in the day's text.
std::array<double, 8> StoreMessage(Workplace& place, const core::Station& station, const protocols::QuantumReply& reply,
                                   int message, DayRow& day) {
    std::array<double, 8> values{};
    std::transform(reply.fields.begin(), reply.fields.end(), values.begin(),
                   [](const auto& field) { return field.value_or(0); });
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
    return values;
}

}  // namespace

bool ReadQuantum(Workplace& place, protocols::Conversation& talk, const QuantumOptions& options,
                 const std::function<void(int message, const std::array<double, 8>& values)>& stored) {
    DayRow day;
    for (int message = 1; message <= protocols::quantumMessages; ++message) {
        const auto reply = Ask(talk, message, options.answerMs);
        if (!reply) {
            if (!talk.Ended() && options.unattended) {
                place.logs.WriteRtuErr(std::to_string(message) + "Quantum Not Responding");
            } else if (!talk.Ended()) {
                talk.feedback.Box("Quantum Not Responding");
            }
            return false;
        }
        talk.feedback.Status("Converting Data..");
        stored(message, StoreMessage(place, talk.station, *reply, message, day));
    }
    UpsertLogParam(place.dbconn, talk.station.locationID, place.clock.Now(), place.clock.Now(), day);
    return true;
}

void CollectQuantum(Workplace& place, protocols::Conversation& talk, RunState& state) {
    constexpr double scheduledAnswerMs = 2 * 2500;
    if (!ReadQuantum(place, talk, {true, scheduledAnswerMs}, [](int, const auto&) {})) {
        state.runfailed = true;
        return;
    }
    // All three messages are in: the unit is not asked again in this minute, whatever else goes wrong.
    state.attemptcount = 3;
}

}  // namespace collection
