#include "signals/lists/SignalAccess.h"

#include <functional>
#include <optional>

#include "protocols/bsap/BsapLayout.h"

namespace signals {

namespace {

constexpr std::size_t tooShort = protocols::LongestWithoutData(false);

protocols::Bsap Messages(protocols::Conversation& talk) {
    return {talk.counters, talk.bsap, talk.station.isCW};
}

// The records of an answer stand where a list's do: where a list has the place to go on, there is the load version.
// Some stations send each with its name. Nothing when it is no answer with that many signals.
std::optional<std::vector<Signal>> SignalsOf(const core::Station& station, const std::string& reply,
                                             std::size_t count) {
    if (reply.size() <= tooShort) {
        return std::nullopt;
    }
    for (const auto fields : {reading::RecordFields::ValuesOrTexts, reading::RecordFields::Names}) {
        auto records = reading::ReadRecords(reply, {.firstRecord = protocols::ReplyLayout(station.isCW).firstRecord,
                                                    .units = true,
                                                    .isTeleCorrector = station.isTeleCorrector,
                                                    .fields = fields});
        if (records.whole && records.signals.size() == count) {
            return std::move(records.signals);
        }
    }
    return std::nullopt;
}

using IsOf = std::function<bool(const Signal& signal, std::size_t index)>;

ReadAnswer Read(protocols::Conversation& talk, const std::function<std::string()>& request, std::size_t count,
                const IsOf& isOf, int most = mostSends) {
    for (int sends = 0; sends < most;) {
        const protocols::StationReply received = protocols::AskStation(talk, request(), {}, mostSends - sends);
        sends += received.sends;
        if (talk.Ended()) {
            return {Answer::Ended};
        }
        auto signals = received.answer ? SignalsOf(talk.station, received.answer->text, count) : std::nullopt;
        for (std::size_t index = 0; signals && index < count; ++index) {
            if (!isOf((*signals)[index], index)) {
                signals.reset();
            }
        }
        const bool none = received.answer && received.answer->text.size() <= tooShort;
        talk.requests.Note(signals.has_value() || none);
        if (signals) {
            return {Answer::Good, std::move(*signals)};
        }
        if (none) {
            return {Answer::NoSignal};
        }
    }
    return {Answer::None};
}

Answer Write(protocols::Conversation& talk, const std::string& frame) {
    const protocols::StationReply received = protocols::AskStation(talk, frame, {}, 1);
    if (talk.Ended()) {
        return Answer::Ended;
    }
    const bool answered = received.answer || received.acknowledged;
    talk.requests.Note(answered);
    return answered ? Answer::Good : Answer::None;
}

}  // namespace

ReadAnswer ReadByAddress(protocols::Conversation& talk, std::int32_t address) {
    return Read(
        talk, [&] { return Messages(talk).get_by_address(talk.station.slaveaddress, address); }, 1,
        [address](const Signal& signal, std::size_t) { return signal.MSD == address; });
}

ReadAnswer ReadByName(protocols::Conversation& talk, std::span<const NamedSignal> named, int sends) {
    constexpr std::size_t columns = 3;
    std::vector<std::string> table(named.size() * columns);
    for (std::size_t row = 0; row < named.size(); ++row) {
        table[row * columns] = named[row].name;
    }
    return Read(
        talk,
        [&] { return Messages(talk).get_by_name(talk.station.slaveaddress, static_cast<int>(named.size()), table); },
        named.size(),
        [named](const Signal& signal, std::size_t index) {
            return named[index].address == 0 || named[index].address == signal.MSD;
        },
        sends);
}

Answer WriteByName(protocols::Conversation& talk, const std::string& name, double value, core::ValueKind kind) {
    return Write(talk, Messages(talk).write_by_name(talk.station.slaveaddress, name, value, kind));
}

Answer WriteNumber(protocols::Conversation& talk, std::int32_t address, double value, core::ValueKind kind) {
    return Write(talk, Messages(talk).Write_value(talk.station.slaveaddress, value, address, kind));
}

Answer WriteText(protocols::Conversation& talk, std::int32_t address, const std::string& text) {
    return Write(talk, Messages(talk).Write_value_str(talk.station.slaveaddress, text, address));
}

}  // namespace signals
