#pragma once

#include <memory>

#include "desk/kit/MenuPage.h"

namespace Ui {
class frmCalibration;
}
namespace session {
class Session;
}

namespace desk {

// What there is for calibrating the station of a session, which must outlive the page.
class frmCalibration : public MenuPage {
    Q_OBJECT

  public:
    frmCalibration(Desk& desk, session::Session* session);
    ~frmCalibration() override;

  private:
    std::unique_ptr<Ui::frmCalibration> ui_;
};

}  // namespace desk
