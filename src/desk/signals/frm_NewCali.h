#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frm_NewCali;
}

namespace desk {

// Opens the template files of the models' own configuration program.
class frm_NewCali : public Page {
    Q_OBJECT

  public:
    explicit frm_NewCali(Desk& desk);
    ~frm_NewCali() override;

  private:
    std::unique_ptr<Ui::frm_NewCali> ui_;
};

}  // namespace desk
