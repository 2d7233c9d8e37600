#pragma once

#include <memory>
#include <vector>

#include "core/Clock.h"
#include "desk/kit/Page.h"

namespace Ui {
class frmHistLog;
}

namespace desk {

// The history log: for one station and a range of days, a row a parameter and a column a day.
class frmHistLog : public Page {
    Q_OBJECT

  public:
    explicit frmHistLog(Desk& desk);
    ~frmHistLog() override;

  private:
    void cmdGo();
    void cmdList();
    void cmdReset();
    void HideStations();
    void ShowHead();

    std::vector<core::DateTime> days_;  // the columns: the range as it was when the stations were found
    std::unique_ptr<Ui::frmHistLog> ui_;
};

}  // namespace desk
