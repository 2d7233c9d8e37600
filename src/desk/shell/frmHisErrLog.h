#pragma once

#include <memory>

#include "desk/kit/MenuPage.h"

namespace Ui {
class frmHisErrLog;
}

namespace desk {

// The second menu: history, reports, logs and mail.
class frmHisErrLog : public MenuPage {
    Q_OBJECT

  public:
    explicit frmHisErrLog(Desk& desk);
    ~frmHisErrLog() override;

    void Activated() override;

  private:
    std::unique_ptr<Ui::frmHisErrLog> ui_;
};

}  // namespace desk
