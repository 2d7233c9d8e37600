#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

#include "desk/kit/Desk.h"

namespace desk {

// For which station a run has taken the line of a station, and how many wait behind it; empty while none is collected
// there.
QString TakenBy(Desk& desk, std::int64_t locationID);

// Looks once a second at a page that works on a line, and says there by whom it was taken.
class TakenLine : public QObject {
    Q_OBJECT

  public:
    // `lost`: the station on whose line the page works, or whose line it has lost and would go on with.
    TakenLine(Desk& desk, QObject* page, std::function<std::optional<std::int64_t>()> lost,
              std::function<void(const QString&)> tell);
};

}  // namespace desk
