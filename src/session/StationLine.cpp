#include "session/StationLine.h"

#include <memory>
#include <optional>
#include <utility>

#include "session/OwnCall.h"
#include "session/Session.h"

namespace session {

namespace {

using Work = std::function<void(protocols::Conversation& talk)>;

constexpr double behindSessionMs = 500;

void OnLentLine(protocols::Conversation& talk, const StationLineOptions& options, const Work& work) {
    std::optional<protocols::KeptLine> kept;
    if (options.lineUp.keepsLine) {
        kept.emplace(talk.line);
    }
    if (!talk.Wait(behindSessionMs)) {
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
          const std::function<void()>& over) {
    return session.Lend(place.feedback, [=, &feedback = place.feedback](protocols::Conversation* talk) {
        if (talk == nullptr) {
            feedback.Box("The session ended before it could lend its line.");
        } else {
            OnLentLine(*talk, options, work);
        }
        over();
    });
}

void Bring(const reading::Workplace& place, const collection::Scheduler& scheduler, Session* session,
           const StationLineOptions& options, std::int64_t locationID, const Work& toDo,
           const std::function<void()>& over) {
    const Work work = [toDo, &logs = place.logs](protocols::Conversation& talk) {
        core::Guarded(logs, [&] { toDo(talk); });
    };
    const auto station = core::ReadOnlineStation(place.dbconn, locationID);
    const bool sessionIsUp =
        options.ofSession && session != nullptr && session->GetStation().locationID == locationID && session->HasLine();
    if (sessionIsUp && Lend(place, *session, options, work, over)) {
        return;
    }
    if (!station) {
        place.feedback.Box("Invalid Location");
    } else if (options.ownCall) {
        OwnCall(place, scheduler, *station, options.lineUp, work);
    } else if (options.noLine[0] != '\0') {
        place.feedback.Box(options.noLine);
    }
    over();
}

}  // namespace

void OnStationLine(const reading::Workplace& place, const collection::Scheduler& scheduler, Session* session,
                   const StationLineOptions& options, std::int64_t locationID, Work toDo, std::function<void()> over) {
    const auto once = [over = std::move(over), done = std::make_shared<bool>(false)] {
        if (!std::exchange(*done, true)) {
            over();
        }
    };
    try {
        Bring(place, scheduler, session, options, locationID, toDo, once);
    } catch (...) {
        once();
        throw;
    }
}

}  // namespace session
