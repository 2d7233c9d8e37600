#pragma once

#include <QObject>
#include <QString>
#include <functional>

#include "desk/kit/Desk.h"

namespace desk {

// For which station a run has taken the line, and how many wait behind it; empty while no station is collected.
QString TakenBy(Desk& desk);

// Looks once a second at a page that works on a line, and says there by whom it was taken.
class TakenLine : public QObject {
    Q_OBJECT

  public:
    // `lost`: the page works on a line, or has lost one and would go on.
    TakenLine(Desk& desk, QObject* page, std::function<bool()> lost, std::function<void(const QString&)> tell);
};

}  // namespace desk
