#include "signals/calibration/CalibrationLine.h"

#include "session/Session.h"
#include "session/StationLine.h"

namespace signals {

void OnCalibrationLine(const reading::Workplace& place, const collection::Scheduler& scheduler,
                       session::Session& session, std::function<void(protocols::Conversation& talk)> work,
                       std::function<void()> over) {
    const core::Station& station = session.GetStation();
    if (station.protocol != core::Protocol::Bsap) {
        place.feedback.Box("The transmitters of this station cannot be calibrated from here: it speaks " +
                           core::TextOf(station.protocol));
        over();
        return;
    }
    session::StationLineOptions way;
    way.signsOn = true;
    way.lineUp.signOn.password = protocols::screenPassword;
    way.lineUp.signOn.logs = protocols::SignOnLog::PollReply;
    way.lineUp.dead = "Error Occured in Communication";
    session::OnStationLine(place, scheduler, &session, way, station.locationID, std::move(work), std::move(over));
}

}  // namespace signals
