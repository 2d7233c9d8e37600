#include "desk/collection/TakenLine.h"

#include <QTimer>

#include "collection/Scheduler.h"
#include "core/Logs.h"
#include "core/Station.h"
#include "desk/collection/ByHand.h"

namespace desk {

QString TakenBy(Desk& desk) {
    QString text;
    core::Guarded(desk.logs, [&] {
        const auto inHand = desk.scheduler.InHand();
        if (const auto station = inHand ? core::ReadStation(desk.dbconn, *inHand) : std::nullopt) {
            text = "The line was taken to collect " + QString::fromStdString(station->consumer) + Behind(desk);
        }
    });
    return text;
}

TakenLine::TakenLine(Desk& desk, QObject* page, std::function<bool()> lost, std::function<void(const QString&)> tell)
    : QObject(page) {
    auto* timer = new QTimer(this);
    timer->setObjectName("tmrline");
    timer->start(1000);
    connect(timer, &QTimer::timeout, this, [&desk, lost = std::move(lost), tell = std::move(tell)] {
        const QString text = lost() ? TakenBy(desk) : QString();
        if (!text.isEmpty()) {
            tell(text);
        }
    });
}

}  // namespace desk
