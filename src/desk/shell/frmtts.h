#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frmtts;
}

namespace desk {

// The audit trail: what users did. It is shown when asked for.
class frmtts : public Page {
    Q_OBJECT

  public:
    explicit frmtts(Desk& desk);
    ~frmtts() override;

  private:
    void cmd_view();
    void cmd_clear();

    std::unique_ptr<Ui::frmtts> ui_;
};

}  // namespace desk
