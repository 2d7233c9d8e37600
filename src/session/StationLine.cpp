#include "session/StationLine.h"

#include <memory>
#include <optional>
#include <utility>

#include "core/Logs.h"
#include "protocols/line/Modem.h"
#include "session/Session.h"

namespace session {

namespace {

using Work = std::function<void(protocols::Conversation& talk)>;
using Over = std::function<void()>;

// What a call in progress adds to the time that a reply is waited for.
constexpr int dialupSessionMs = 2000;

// frmarchive asks node 1 whatever address the station has; its users expect that. Behind a modem there is one station.
// On a line with several, node 1 is another station, whose values would come under this one's name.
constexpr int archiveNode = 1;

void OnLentLine(protocols::Conversation& talk, const StationLineOptions& options, const Work& work) {
    std::optional<protocols::KeptLine> kept;
    if (options.keepsLine) {
        kept.emplace(talk.line);
    }
    if (!talk.Wait(options.behindSessionMs)) {
        return;
    }
    talk.station.commtimeout += talk.station.phoneno.empty() ? 0 : options.extraWaitMs;
    if (!options.signsOn || protocols::SignOnInTries(talk, options.lineUp.signOn, options.lineUp.signOnTries)) {
        work(talk);
    } else if (!talk.Ended()) {
        talk.feedback.Box(options.lineUp.dead);
    }
}

bool Lend(const reading::Workplace& place, Session& session, const StationLineOptions& options, const Work& work,
          const Over& over) {
    return session.Lend(place.feedback, [=](protocols::Conversation* talk) {
        if (talk == nullptr) {
            place.feedback.Box("The session ended before it could lend its line.");
        } else {
            core::Guarded(place.logs, [&] { OnLentLine(*talk, options, work); });
        }
        over();
    });
}

// A scheduled run may take the line away meanwhile, as from a session.
void OwnCall(const reading::Workplace& place, const core::Station& station, const StationLineOptions& options,
             const Work& work) {
    auto lease = place.lines.Of(station).TakeIfFree();
    if (lease == nullptr) {
        place.feedback.Box(lineInUse);
        return;
    }
    std::optional<protocols::KeptLine> kept;
    if (options.keepsLine) {
        kept.emplace(lease);
    }
    lease->WhenEnded([&place, &lease = *lease] { place.feedback.Status(lease.Reason()); });
    protocols::Conversation talk = place.Begin(lease, station);
    LineUpOutcome outcome;
    core::Guarded(place.logs, [&] {
        outcome = BringLineUp(talk, options.lineUp);
        if (outcome.up) {
            work(talk);
        }
    });
    place.feedback.Status("Disconnecting....");
    TakeLineDown(talk, outcome.called, protocols::redialGuardMs);
    place.feedback.Status("Disconnected");
}

// Why this screen does not go to that station; empty: it does.
std::string Refusal(const StationLineOptions& options, const core::Station& station) {
    if (options.bsapOnly[0] != '\0' && station.protocol != core::Protocol::Bsap) {
        return options.bsapOnly + std::string(": it speaks ") + core::TextOf(station.protocol);
    }
    if (options.node != 0 && station.phoneno.empty() && station.slaveaddress != options.node) {
        return "This screen asks node " + std::to_string(options.node) +
               ", which is another station on this line: " + station.consumer + " has the address " +
               std::to_string(station.slaveaddress) + ".\rOpen the station and use its Archive/Audit.";
    }
    return {};
}

void Bring(const reading::Workplace& place, Session* session, const StationLineOptions& options,
           std::int64_t locationID, const Work& work, const Over& over) {
    const auto station = core::ReadOnlineStation(place.dbconn, locationID);
    if (const std::string refusal = station ? Refusal(options, *station) : ""; !refusal.empty()) {
        place.feedback.Box(refusal);
        over();
        return;
    }
    const bool sessionIsUp =
        options.ofSession && session != nullptr && session->GetStation().locationID == locationID && session->HasLine();
    if (sessionIsUp && Lend(place, *session, options, work, over)) {
        return;
    }
    if (station && options.ownCall) {
        place.clock.Start([=, station = *station] {
            core::Guarded(place.logs, [&] { OwnCall(place, station, options, work); });
            core::Guarded(place.logs, over);
        });
        return;
    }
    if (!station) {
        place.feedback.Box("Invalid Location");
    } else if (options.noLine[0] != '\0') {
        place.feedback.Box(options.noLine);
    }
    over();
}

}  // namespace

StationLineOptions WayOfArchive(archive::Screen screen) {
    using archive::Screen;
    StationLineOptions way;
    way.ofSession = screen != Screen::frmarchive;
    way.ownCall = screen != Screen::frmparaarchive;
    // A session signs on without the password that opens a station's archive. The older screen's is empty.
    way.signsOn = screen != Screen::frmarchive;
    way.lineUp.signOn.password = screen == Screen::frmarchive ? "" : protocols::screenPassword;
    way.lineUp.signOn.logs = protocols::SignOnLog::None;
    way.lineUp.signOnTries = 1;
    way.lineUp.dead = "RTU DEAD";
    way.extraWaitMs = dialupSessionMs;
    way.node = screen == Screen::frmarchive ? archiveNode : 0;
    way.noLine = "There is no line to the station. Connect to it in its own window first.";
    return way;
}

StationLineOptions WayOfModbusArchive() {
    StationLineOptions way;
    way.behindSessionMs = 0;
    return way;
}

StationLineOptions WayOfSignals(bool hasSession) {
    StationLineOptions way;
    way.ofSession = hasSession;
    way.ownCall = !hasSession;
    way.signsOn = true;  // a session signs on without the password that opens a station's lists
    way.lineUp.signOn = {protocols::screenPassword, protocols::SignOnLog::None, protocols::SignOnTexts::All};
    return way;
}

StationLineOptions WayOfChange() {
    StationLineOptions way = WayOfSignals(true);
    way.ownCall = true;
    way.keepsLine = true;
    way.lineUp.signOn.logs = protocols::SignOnLog::PollReply;
    return way;
}

StationLineOptions WayOfCalibration() {
    StationLineOptions way;
    way.signsOn = true;
    way.lineUp.signOn.password = protocols::screenPassword;
    way.lineUp.signOn.logs = protocols::SignOnLog::PollReply;
    way.lineUp.dead = "Error Occured in Communication";
    way.bsapOnly = "The transmitters of this station cannot be calibrated from here";
    return way;
}

void OnStationLine(const reading::Workplace& place, Session* session, const StationLineOptions& options,
                   std::int64_t locationID, Work work, Over over) {
    const Over once = [over = std::move(over), done = std::make_shared<bool>(false)] {
        if (!std::exchange(*done, true)) {
            over();
        }
    };
    const Work toDo = [work = std::move(work), place, node = options.node](protocols::Conversation& talk) {
        talk.station.slaveaddress = node != 0 ? node : talk.station.slaveaddress;
        core::Guarded(place.logs, [&] { work(talk); });
    };
    try {
        Bring(place, session, options, locationID, toDo, once);
    } catch (...) {
        once();
        throw;
    }
}

}  // namespace session
