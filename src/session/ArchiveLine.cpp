#include "session/ArchiveLine.h"

#include "session/StationLine.h"

namespace session {

namespace {

using archive::Screen;

// What a call in progress adds to the time that a reply is waited for.
constexpr int dialupSessionMs = 2000;

// The older screen signs on with an empty password.
StationLineOptions WayOf(Screen screen) {
    StationLineOptions way;
    way.ofSession = screen != Screen::frmarchive;
    way.ownCall = screen != Screen::frmparaarchive;
    // A session signs on without the password that opens a station's archive.
    way.signsOn = screen != Screen::frmarchive;
    way.lineUp.signOn.password = screen == Screen::frmarchive ? "" : protocols::screenPassword;
    way.lineUp.signOn.logs = protocols::SignOnLog::None;
    way.lineUp.signOnTries = 1;
    way.lineUp.dead = "RTU DEAD";
    way.extraWaitMs = dialupSessionMs;
    way.noLine = "There is no line to the station. Connect to it in its own window first.";
    return way;
}

// frmarchive asks node 1 whatever address the station has; its users expect that. Behind a modem there is one station.
// On a line with several, node 1 is another station, whose values would come under this one's name.
constexpr int archiveNode = 1;

bool AsksAnotherStation(const core::Station& station) {
    return station.phoneno.empty() && station.slaveaddress != archiveNode;
}

}  // namespace

void OnArchiveLine(const reading::Workplace& place, const collection::Scheduler& scheduler, Session* session,
                   Screen screen, std::int64_t locationID, std::function<void(protocols::Conversation& talk)> work,
                   std::function<void()> over) {
    const bool asksNodeOne = screen == Screen::frmarchive;
    std::optional<core::Station> station;
    try {
        station = core::ReadOnlineStation(place.dbconn, locationID);
    } catch (...) {
        over();
        throw;
    }
    if (asksNodeOne && station && AsksAnotherStation(*station)) {
        place.feedback.Box("This screen asks node 1, which is another station on this line: " + station->consumer +
                           " has the address " + std::to_string(station->slaveaddress) +
                           ".\rOpen the station and use its Archive/Audit.");
        over();
        return;
    }
    OnStationLine(
        place, scheduler, session, WayOf(screen), locationID,
        [asksNodeOne, work](protocols::Conversation& talk) {
            talk.station.slaveaddress = asksNodeOne ? archiveNode : talk.station.slaveaddress;
            work(talk);
        },
        over);
}

}  // namespace session
