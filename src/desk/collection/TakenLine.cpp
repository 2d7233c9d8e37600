#include "desk/collection/TakenLine.h"

#include <QTimer>

#include "collection/Scheduler.h"
#include "core/Logs.h"
#include "core/Station.h"
#include "desk/collection/ByHand.h"

namespace desk {

QString TakenBy(Desk& desk, std::int64_t locationID) {
    QString text;
    core::Guarded(desk.logs, [&] {
        const auto ours = core::ReadStation(desk.dbconn, locationID);
        const auto inHand = ours ? desk.scheduler.InHandOn(*ours) : std::nullopt;
        if (const auto station = inHand ? core::ReadStation(desk.dbconn, *inHand) : std::nullopt) {
            text = "The line was taken to collect " + QString::fromStdString(station->consumer) +
                   Behind(desk, protocols::LineName(*ours));
        }
    });
    return text;
}

TakenLine::TakenLine(Desk& desk, QObject* page, std::function<std::optional<std::int64_t>()> lost,
                     std::function<void(const QString&)> tell)
    : QObject(page) {
    auto* timer = new QTimer(this);
    timer->setObjectName("tmrline");
    timer->start(1000);
    connect(timer, &QTimer::timeout, this, [&desk, lost = std::move(lost), tell = std::move(tell)] {
        const auto station = lost();
        const QString text = station ? TakenBy(desk, *station) : QString();
        if (!text.isEmpty()) {
            tell(text);
        }
    });
}

}  // namespace desk
