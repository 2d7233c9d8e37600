#pragma once

#include <memory>

#include "core/Clock.h"
#include "desk/core/Page.h"

namespace Ui {
class frmHistLog;
}

namespace desk {

// What the collections of past days have left of one station: a parameter a row, a day a column.
class frmHistLog : public Page {
    Q_OBJECT

  public:
    explicit frmHistLog(Desk& desk);
    ~frmHistLog() override;

  private:
    void cmdGo();
    void cmdList();
    void cmdReset();
    void ShowStations(bool found);
    void ShowColumns();

    core::DateTime from_;  // the range of the columns
    core::DateTime to_;
    std::unique_ptr<Ui::frmHistLog> ui_;
};

}  // namespace desk
