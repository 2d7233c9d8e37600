#include "desk/collection/ByHand.h"

#include <algorithm>

#include "collection/Scheduler.h"
#include "core/Clock.h"
#include "core/Feedback.h"
#include "core/MAIN_Module.h"
#include "reports/NodeOverview.h"

namespace desk {

bool MayCollect(const Desk& desk) {
    return desk.shared.rights.rightOnline;
}

void CollectNow(Desk& desk, std::int64_t locationID, const std::string& consumer) {
    if (desk.scheduler.CollectNow(locationID)) {
        desk.scheduler.Serve();
    } else {
        desk.feedback.Status(consumer + " is already being collected or queued");
    }
}

void CollectMissing(Desk& desk) {
    const int queued = desk.scheduler.CollectMissing();
    desk.feedback.Status(queued == 0 ? "No station is missing"
                                     : std::to_string(queued) + (queued == 1 ? " station is" : " stations are") +
                                           " missing and will be collected");
    if (queued > 0) {
        desk.scheduler.Serve();
    }
}

collection::DayLine LineNow(Desk& desk, std::int64_t locationID) {
    return collection::LineNow(desk.dbconn, locationID, desk.clock.Now(), desk.scheduler.StandOf(locationID));
}

QString Behind(Desk& desk, const std::string& line) {
    const auto nodes = reports::ReadNodes(desk.dbconn);
    const auto waiting = std::count_if(nodes.begin(), nodes.end(), [&](const reports::Node& node) {
        const auto station =
            desk.scheduler.Queued(node.locationId) ? core::ReadStation(desk.dbconn, node.locationId) : std::nullopt;
        return station && (line.empty() || protocols::LineName(*station) == line);
    });
    return waiting == 0 ? "" : ", " + QString::number(waiting) + (waiting == 1 ? " more waits" : " more wait");
}

std::string WhyKept(const Desk& desk, std::int64_t locationID, const std::string& consumer) {
    switch (desk.scheduler.StandOf(locationID)) {
        case collection::InQueue::Collecting:
            return consumer + " is being collected. Delete it when that is over.";
        case collection::InQueue::Queued:
            return consumer + " waits to be collected. Delete it after that.";
        case collection::InQueue::No:
            break;
    }
    return {};
}

}  // namespace desk
