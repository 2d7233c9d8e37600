#include "collection/CollectionRun.h"

#include "collection/ProtocolRuns.h"
#include "core/Text.h"
#include "protocols/Modem.h"

namespace collection {

namespace {

protocols::Conversation Begin(Workplace& place, core::Station station) {
    protocols::Conversation talk{place.line.TakeOver("A scheduled collection has taken the line"),
                                 place.clock,
                                 place.feedback,
                                 place.logs,
                                 place.counters,
                                 std::move(station),
                                 place.shared.currentuser};
    talk.modbus.rtu32bit = talk.station.rtuBitsMode;
    return talk;
}

core::ModelCounts Counts(Workplace& place, const protocols::Conversation& talk) {
    const auto counts = core::ReadModelCounts(place.dbconn, talk.station, talk.streamno);
    if (!counts) {
        place.feedback.Box("Value is not defined in Modbus Parameter Table");
    }
    return counts.value_or(core::ModelCounts{});
}

// Opens the port of the station. An "IP" station has none: its transactions fail as those of a silent one.
bool OpenPort(Workplace& place, protocols::Conversation& talk, const RunState& state) {
    const core::Station& station = talk.station;
    talk.line->PortOpen(false);
    if (!station.ip.empty()) {
        place.feedback.Status(station.ip);
        return true;
    }
    talk.line->CommPort(station.comport);
    place.feedback.Status(std::to_string(station.comport));
    talk.line->Settings(station.settings);
    place.feedback.Status(station.settings);
    place.feedback.Status("Scheduler :: connecting to Location " + station.consumer + "[ Try -> " +
                          std::to_string(state.attemptcount) + "]");
    if (!talk.Wait(talk.CommTimeout())) {
        return false;
    }
    if (!talk.line->PortOpen(true)) {
        place.logs.WriteRtuErr("Port " + std::to_string(station.comport) + " cannot be opened [" +
                               std::to_string(station.locationID) + "]: " + talk.line->LastError());
        return false;
    }
    return true;
}

void Collect(Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts, RunState& state) {
    place.feedback.Status("Collecting Data");
    try {
        if (core::SameText(talk.station.protocol, "BSAP")) {
            CollectBsap(place, talk, state);
        } else if (core::SameText(talk.station.protocol, "Quantum")) {
            CollectQuantum(place, talk, state);
        } else {
            CollectModbus(place, talk, counts, state);
        }
    } catch (const std::exception& failure) {
        // What was read is not known to be on the disk, so the attempt does not count as good.
        place.logs.WriteRtuErr(failure.what());
        state.runfailed = true;
    }
}

// Whether there is somebody to talk to: always on a line without a modem. A modem that is not there and a number that
// is not reached leave `runfailed` clear, which makes the day count as sampled: that is what the operators go by.
bool LineUp(protocols::Conversation& talk, RunState& state) {
    if (talk.station.phoneno.empty()) {
        return true;
    }
    switch (protocols::Dial(talk, state.attemptcount)) {
        case protocols::DialOutcome::Connected:
            return true;
        case protocols::DialOutcome::NoPort:
            state.runfailed = true;
            return false;
        case protocols::DialOutcome::NoModem:
        case protocols::DialOutcome::NotReached:
        case protocols::DialOutcome::Ended:
        case protocols::DialOutcome::EndedEarly:
            break;
    }
    return false;
}

void HangUp(Workplace& place, protocols::Conversation& talk) {
    if (!talk.station.phoneno.empty() && talk.line->PortOpen()) {
        place.feedback.Status("Disconnecting" + talk.station.phoneno);
        protocols::HangUp(*talk.line, place.clock, place.feedback, protocols::redialGuardMs);
    }
    talk.line->PortOpen(false);
}

void Run(Workplace& place, std::int64_t locationID, RunState& state) {
    auto station = core::ReadStation(place.dbconn, locationID);
    if (!station) {
        return;
    }
    auto talk = Begin(place, std::move(*station));
    const auto counts = Counts(place, talk);
    if (!OpenPort(place, talk, state)) {
        state.runfailed = true;
        return;
    }
    if (LineUp(talk, state)) {
        Collect(place, talk, counts, state);
    }
    state.runfailed = state.runfailed || talk.line->Lost();
    HangUp(place, talk);
    if (talk.line->Lost()) {
        place.logs.WriteRtuErr(talk.line->Reason() + " [" + std::to_string(locationID) + "]");
        place.feedback.Status(talk.line->Reason());
    }
}

}  // namespace

void collectiong_Data(Workplace& place, std::int64_t locationID, RunState& state) {
    try {
        Run(place, locationID, state);
    } catch (const std::exception& failure) {
        place.logs.WriteRtuErr(failure.what());
        state.runfailed = true;
    }
}

}  // namespace collection
