#include "session/OwnCall.h"

#include <exception>
#include <optional>

#include "collection/Scheduler.h"
#include "protocols/line/Modem.h"

namespace session {

bool OwnCall(const reading::Workplace& place, const collection::Scheduler&, const core::Station& station,
             const LineUpOptions& options, const std::function<void(protocols::Conversation& talk)>& work) {
    auto lease = place.lines.Of(station).TakeIfFree();
    if (lease == nullptr) {
        place.feedback.Box(lineInUse);
        return false;
    }
    std::optional<protocols::KeptLine> kept;
    if (options.keepsLine) {
        kept.emplace(lease);
    }
    lease->WhenEnded([&place, &lease = *lease] { place.feedback.Status(lease.Reason()); });
    protocols::Conversation talk = place.Begin(lease, station);
    const LineUpOutcome outcome = BringLineUp(talk, options);
    std::exception_ptr failure;
    if (outcome.up) {
        try {
            work(talk);
        } catch (...) {
            failure = std::current_exception();
        }
    }
    place.feedback.Status("Disconnecting....");
    TakeLineDown(talk, outcome.called, protocols::redialGuardMs);
    place.feedback.Status("Disconnected");
    if (failure) {
        std::rethrow_exception(failure);
    }
    return outcome.up;
}

}  // namespace session
