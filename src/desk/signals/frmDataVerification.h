#pragma once

#include <memory>

#include "desk/kit/MenuPage.h"

namespace Ui {
class frmDataVerification;
}

namespace session {
class Session;
}

namespace desk {

// From here the lists of a session's station are stored before and after a change of its program, and compared.
class frmDataVerification : public MenuPage {
    Q_OBJECT

  public:
    frmDataVerification(Desk& desk, session::Session* session);
    ~frmDataVerification() override;

  private:
    std::unique_ptr<Ui::frmDataVerification> ui_;
};

}  // namespace desk
