#include "reading/QuantumRead.h"

#include <optional>

#include "core/Text.h"
#include "reading/LogParam.h"

namespace reading {

namespace {

constexpr int mostAsks = 3;

// Asks for one message, again while a field of its reply is missing. The best reply counts. Nothing: the unit was
// silent, or the conversation ended.
std::optional<protocols::QuantumReply> Ask(protocols::Conversation& talk, int message, double answerMs) {
    const std::string number = std::to_string(message);
    const std::string request = protocols::BuildQuantumRequest(talk.station.slaveaddress, "A", message);
    std::optional<protocols::QuantumReply> best;
    std::size_t longer = 0;  // the last reply that was longer than it should be
    for (int asked = 0; asked < mostAsks && (asked == 0 || (!talk.Ended() && !talk.Wanted())); ++asked) {
        talk.feedback.Status("Sending Request Message " + number);
        talk.feedback.Status("Waiting For Reply- Message " + number);
        const std::string received =
            protocols::Exchange(talk, request, answerMs, protocols::WholeQuantumReply(request));
        const std::string reply = protocols::CutQuantumEcho(received, request);
        if (talk.Ended()) {
            return std::nullopt;
        }
        // Noise ahead of a reply moves its fields, which may then read as other numbers. Two replies of one length are
        // that of the unit.
        const bool isNoisy = reply.size() > protocols::quantum::replyLength && reply.size() != longer;
        longer = isNoisy ? reply.size() : longer;
        const auto decoded = isNoisy ? protocols::QuantumReply{} : protocols::DecodeQuantumReply(reply, message);
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

// The values of one message, each under its name in the station's map and in the day's text. A missing field is stored
// as 0, as the readers of these units' values expect it, and no figure is made of it.
void StoreMessage(Workplace& place, const protocols::QuantumReply& reply, int message, ValueStore& store, DayRow& day) {
    const auto& names = protocols::QuantumNames(message);
    const std::string now = core::IsoText(place.clock.Now());
    place.dbconn.InTransaction([&] {
        for (std::size_t i = 0; i < reply.fields.size(); ++i) {
            const auto& field = reply.fields[i];
            store.PutNamed(names[i],
                           {field.value_or(0), field ? core::Quality::Good : core::Quality::NotReceived, now});
            if (field) {
                day.desc += "#" + std::string(names[i]) + "=" + core::NumberText(*field);
            }
        }
    });
    if (message == 1) {
        day.CurrentMonthFlow = reply.fields[1];
        day.CurrentDayFlow = reply.fields[2];
    } else if (message == 3) {
        day.currentprs = reply.fields[2];
    }
}

}  // namespace

bool ReadQuantum(Workplace& place, protocols::Conversation& talk, const QuantumOptions& options, ValueStore& store,
                 const std::function<void(int message, const protocols::QuantumReply& reply)>& stored) {
    DayRow day;
    for (int message = 1; message <= protocols::quantum::messages; ++message) {
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
        StoreMessage(place, *reply, message, store, day);
        stored(message, *reply);
    }
    if (!day.desc.empty()) {
        UpsertLogParam(place.dbconn, talk.station.locationID, place.clock.Now(), place.clock.Now(), day);
    }
    return true;
}

}  // namespace reading
