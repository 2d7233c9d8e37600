#pragma once

#include <memory>

#include "desk/core/Page.h"

namespace Ui {
class frmScheduler;
}

namespace desk {

// The schedule: each station with its contract hour, and whether it was sampled today, as it was when this was opened.
class frmScheduler : public Page {
    Q_OBJECT

  public:
    explicit frmScheduler(Desk& desk);
    ~frmScheduler() override;

  private:
    std::unique_ptr<Ui::frmScheduler> ui_;
};

}  // namespace desk
