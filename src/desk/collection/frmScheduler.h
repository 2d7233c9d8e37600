#pragma once

#include <QTimer>
#include <cstdint>
#include <memory>
#include <vector>

#include "desk/kit/Page.h"

namespace Ui {
class frmScheduler;
}

namespace desk {

// The schedule: each station with its contract hour, whether it was sampled today, and how today's collection ended, as
// it was when this was opened. Once something is collected from here it follows.
class frmScheduler : public Page {
    Q_OBJECT

  public:
    explicit frmScheduler(Desk& desk);
    ~frmScheduler() override;

  private:
    void Show();
    void Collect();
    void Follow();

    std::unique_ptr<Ui::frmScheduler> ui_;
    std::vector<std::int64_t> stations_;  // by row
    QTimer* follow_;
};

}  // namespace desk
