#pragma once

#include <QTimer>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "collection/Scheduler.h"
#include "desk/kit/Page.h"
#include "reports/NodeOverview.h"

namespace Ui {
class frmGraphicRept;
}
class QPushButton;

namespace desk {

class NodeButton;

// The wall: every station as a button with the state of today's collection, in four groups with their totals. It
// follows a run as it happens. The first screen after a login.
class frmGraphicRept : public Page, public collection::RunWatcher {
    Q_OBJECT

  public:
    explicit frmGraphicRept(Desk& desk);
    ~frmGraphicRept() override;

    // Rebuilds the display from the register.
    void Activated() override;

    // "Next: Mill at 14:30". Throws DatabaseError.
    QString NextDue() const;

    // One more line of what was done.
    void Line(const QString& text);

    void Collecting(std::int64_t locationID) override;
    void Collected(std::int64_t locationID) override;

  Q_SIGNALS:
    void MenuWanted();
    void ExitWanted();

  private:
    void MakeColumns();
    void MakeLegend();
    void Reset();
    void Refresh();
    void ShowNow();
    void ShowNext();
    void FollowTheClock();
    const reports::Node* StationAt(int index) const;
    void cmdLoc(int index);
    void Collect(int index);
    void OpenStation(std::int64_t locationId);

    std::array<NodeButton*, reports::nodeButtons> cmdLoc_{};
    std::array<QPushButton*, reports::groups> lblgroup_{};
    std::vector<reports::Node> nodes_;
    QTimer next_;         // looks whether the minute is another
    std::string minute_;  // that is shown
    std::unique_ptr<Ui::frmGraphicRept> ui_;
};

}  // namespace desk
