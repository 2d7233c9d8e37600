#include "collection/CollectionRun.h"

#include "collection/ProtocolRuns.h"
#include "protocols/line/Modem.h"

namespace collection {

namespace {

core::ModelCounts Counts(reading::Workplace& place, const protocols::Conversation& talk) {
    const auto counts = core::ReadModelCounts(place.dbconn, talk.station, talk.streamno);
    if (!counts) {
        place.feedback.Box("Value is not defined in Modbus Parameter Table");
    }
    return counts.value_or(core::ModelCounts{});
}

// What was read is not known to be on the disk, so the attempt does not count as good.
void Fail(reading::Workplace& place, reading::RunState& state, const std::exception& failure) {
    place.logs.WriteRtuErr(failure.what());
    state.runfailed = true;
    state.result = reading::Result::BrokenOff;
    state.reason = failure.what();
}

void NotReached(reading::RunState& state, const std::string& reason) {
    state.result = reading::Result::NotReached;
    state.reason = reason;
}

std::string Device(const core::Station& station) {
    return station.ip.empty() ? "Port " + std::to_string(station.comport) : station.ip;
}

// Opens the port of the station, or the connection to its address.
bool OpenPort(reading::Workplace& place, protocols::Conversation& talk, reading::RunState& state) {
    const core::Station& station = talk.station;
    talk.line->PortOpen(false);
    if (station.ip.empty()) {
        talk.line->CommPort(station.comport);
        place.feedback.Status(std::to_string(station.comport));
        talk.line->Settings(station.settings);
        place.feedback.Status(station.settings);
    } else {
        place.feedback.Status(station.ip);
    }
    place.feedback.Status("Scheduler :: connecting to Location " + station.consumer + "[ Try -> " +
                          std::to_string(state.attemptcount) + "]");
    if (!talk.Wait(talk.CommTimeout())) {
        return false;
    }
    if (!talk.line->PortOpen(true)) {
        const std::string what = Device(station) + (station.ip.empty() ? " cannot be opened" : " cannot be reached");
        place.logs.WriteRtuErr(what + " [" + std::to_string(station.locationID) + "]: " + talk.line->LastError());
        NotReached(state, what + ": " + talk.line->LastError());
        return false;
    }
    return true;
}

void Collect(reading::Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts,
             reading::RunState& state) {
    place.feedback.Status("Collecting Data");
    try {
        if (talk.station.protocol == core::Protocol::Bsap) {
            CollectBsap(place, talk, state);
        } else if (talk.station.protocol == core::Protocol::Quantum) {
            CollectQuantum(place, talk, state);
        } else {
            CollectModbus(place, talk, counts, state);
        }
    } catch (const std::exception& failure) {
        Fail(place, state, failure);
    }
}

// Whether there is somebody to talk to: always on a line without a modem. A modem that is not there and a number that
// is not reached leave `runfailed` clear, which makes the day count as sampled: that is what the operators go by.
bool LineUp(protocols::Conversation& talk, reading::RunState& state) {
    if (talk.station.phoneno.empty()) {
        return true;
    }
    const int dialsBefore = state.attemptcount;
    const auto outcome = protocols::Dial(talk, state.attemptcount);
    state.dials += state.attemptcount - dialsBefore;
    switch (outcome) {
        case protocols::DialOutcome::Connected:
            return true;
        case protocols::DialOutcome::NoPort:
            state.runfailed = true;
            NotReached(state, "Port " + std::to_string(talk.station.comport) + " cannot be opened for a redial");
            break;
        case protocols::DialOutcome::NoModem:
            NotReached(state, "The modem does not answer");
            break;
        case protocols::DialOutcome::NotReached:
            NotReached(state, "The number " + talk.station.phoneno + " was not reached");
            break;
        case protocols::DialOutcome::Ended:
        case protocols::DialOutcome::EndedEarly:
            break;
    }
    return false;
}

// A conversation that was told to end before all was in.
void NoteEnd(const protocols::Conversation& talk, reading::RunState& state) {
    if (talk.Ended() && state.result != reading::Result::Collected) {
        state.result = reading::Result::BrokenOff;
        state.reason = talk.line->Reason();
        state.runfailed = true;
    }
}

void Run(reading::Workplace& place, std::int64_t locationID, reading::RunState& state, Call& call,
         const std::function<bool()>& another) {
    auto station = core::ReadStation(place.dbconn, locationID);
    if (!station) {
        return;
    }
    const bool reached = call.Reaches(*station);
    if (!reached) {
        call.End(place);
    }
    auto line = reached ? call.Line() : place.lines.Of(*station).TakeOver("A scheduled collection has taken the line");
    auto talk = place.Begin(std::move(line), std::move(*station));
    const auto counts = Counts(place, talk);
    if (!reached && !OpenPort(place, talk, state)) {
        state.runfailed = true;
        NoteEnd(talk, state);
        return;
    }
    call.Keep(talk.line, talk.station);
    if (reached || LineUp(talk, state)) {
        Collect(place, talk, counts, state);
    }
    state.runfailed = state.runfailed || talk.line->Lost();
    const bool good = state.result == reading::Result::Collected && !state.runfailed && !talk.Ended();
    if (!good || !another()) {
        call.End(place);
    }
    if (talk.line->Lost()) {
        place.logs.WriteRtuErr(talk.line->Reason() + " [" + std::to_string(locationID) + "]");
        place.feedback.Status(talk.line->Reason());
    }
    NoteEnd(talk, state);
}

}  // namespace

void Call::Keep(std::shared_ptr<protocols::LineLease> line, const core::Station& station) {
    line_ = std::move(line);
    phoneno_ = station.phoneno;
    settings_ = station.settings;
}

bool Call::Up() const {
    return line_ != nullptr && !phoneno_.empty() && !line_->Ended() && line_->PortOpen();
}

bool Call::Reaches(const core::Station& station) const {
    return Up() && station.ip.empty() && station.phoneno == phoneno_ && station.settings == settings_;
}

void Call::End(reading::Workplace& place) {
    const auto line = std::exchange(line_, nullptr);
    if (line == nullptr) {
        return;
    }
    if (!phoneno_.empty() && line->PortOpen()) {
        place.feedback.Status("Disconnecting" + phoneno_);
        protocols::HangUp(*line, place.clock, place.feedback, protocols::redialGuardMs);
    }
    line->PortOpen(false);
}

void collectiong_Data(reading::Workplace& place, std::int64_t locationID, reading::RunState& state, Call& call,
                      const std::function<bool()>& another) {
    state.result = reading::Result::NoAnswer;
    state.asked = 0;
    state.received = 0;
    state.reason.clear();
    state.figures = {};
    try {
        Run(place, locationID, state, call, another);
    } catch (const std::exception& failure) {
        Fail(place, state, failure);
    }
}

void collectiong_Data(reading::Workplace& place, std::int64_t locationID, reading::RunState& state) {
    Call call;
    collectiong_Data(place, locationID, state, call, [] { return false; });
}

}  // namespace collection
