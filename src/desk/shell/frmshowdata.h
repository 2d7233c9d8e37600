#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frmshowdata;
}

namespace desk {

// The volumes of a group's stations, and their total.
class frmshowdata : public Page {
    Q_OBJECT

  public:
    // Groups count from 1.
    frmshowdata(Desk& desk, int groupno);
    ~frmshowdata() override;

  private:
    std::unique_ptr<Ui::frmshowdata> ui_;
};

}  // namespace desk
