#include "session/ArchiveLine.h"

#include "session/OwnCall.h"
#include "session/Session.h"

namespace session {

namespace {

using archive::Screen;
using Work = std::function<void(protocols::Conversation& talk)>;

constexpr double behindSessionMs = 500;
// What a call in progress adds to the time that a reply is waited for.
constexpr int dialupSessionMs = 2000;

// The older screen signs on with an empty password.
LineUpOptions SignOnOf(Screen screen) {
    LineUpOptions options;
    options.signOn.password = screen == Screen::frmarchive ? "" : protocols::screenPassword;
    options.signOn.logs = protocols::SignOnLog::None;
    options.signOnTries = 1;
    options.dead = "RTU DEAD";
    return options;
}

// frmarchive asks node 1 whatever address the station has; its users expect that. Behind a modem there is one station.
// On a line with several, node 1 is another station, whose values would come under this one's name.
constexpr int archiveNode = 1;

bool AsksAnotherStation(const core::Station& station) {
    return station.phoneno.empty() && station.slaveaddress != archiveNode;
}

bool Lend(const collection::Workplace& place, Session& session, const Work& work, const std::function<void()>& over) {
    return session.Lend(place.feedback, [work, over, &feedback = place.feedback](protocols::Conversation* talk) {
        if (talk == nullptr) {
            feedback.Box("The session ended before it could lend its line.");
        } else if (talk->Wait(behindSessionMs)) {
            talk->station.commtimeout += talk->station.phoneno.empty() ? 0 : dialupSessionMs;
            work(*talk);
        }
        over();
    });
}

}  // namespace

void OnArchiveLine(const collection::Workplace& place, const collection::Scheduler& scheduler, Session* session,
                   Screen screen, std::int64_t locationID, Work toDo, std::function<void()> over) {
    const Work work = [toDo, &logs = place.logs](protocols::Conversation& talk) {
        core::Guarded(logs, [&] { toDo(talk); });
    };
    const auto station = core::ReadOnlineStation(place.dbconn, locationID);
    const bool ofSession = screen != Screen::frmarchive && session != nullptr &&
                           session->GetStation().locationID == locationID && session->HasLine();
    if (ofSession && Lend(place, *session, work, over)) {
        return;
    }
    if (!station) {
        place.feedback.Box("Invalid Location");
    } else if (screen == Screen::frmparaarchive) {
        place.feedback.Box("There is no line to the station. Connect to it in its own window first.");
    } else if (screen == Screen::frmarchive && AsksAnotherStation(*station)) {
        place.feedback.Box("This screen asks node 1, which is another station on this line: " + station->consumer +
                           " has the address " + std::to_string(station->slaveaddress) +
                           ".\rOpen the station and use its Archive/Audit.");
    } else {
        OwnCall(place, scheduler, *station, SignOnOf(screen), [&](protocols::Conversation& talk) {
            talk.station.slaveaddress = screen == Screen::frmarchive ? archiveNode : talk.station.slaveaddress;
            work(talk);
        });
    }
    over();
}

}  // namespace session
