#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frmlog;
}

namespace desk {

// RTU_Err.log as it is when the page opens: failures of the line and of the collection.
class frmlog : public Page {
    Q_OBJECT

  public:
    explicit frmlog(Desk& desk);
    ~frmlog() override;

  private:
    void cmdclear();

    std::unique_ptr<Ui::frmlog> ui_;
};

}  // namespace desk
