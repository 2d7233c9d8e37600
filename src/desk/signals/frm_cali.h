#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frm_cali;
}

namespace desk {

// Opens the pages that tell how the transmitters of a model are calibrated and verified, in the system's browser.
class frm_cali : public Page {
    Q_OBJECT

  public:
    // With a model that is chosen from the start, if there is such a one.
    explicit frm_cali(Desk& desk, const QString& modelno = {});
    ~frm_cali() override;

  private:
    void ShowModel();

    std::unique_ptr<Ui::frm_cali> ui_;
};

}  // namespace desk
