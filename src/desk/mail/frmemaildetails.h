#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frmemaildetails;
}

namespace desk {

// The addressees and the subject that the mails of the operators begin with.
class frmemaildetails : public Page {
    Q_OBJECT

  public:
    explicit frmemaildetails(Desk& desk);
    ~frmemaildetails() override;

  Q_SIGNALS:
    void Stored();

  private:
    void cmdsave();

    std::unique_ptr<Ui::frmemaildetails> ui_;
};

}  // namespace desk
