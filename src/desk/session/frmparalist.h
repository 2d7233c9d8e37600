#pragma once

#include <memory>

#include "desk/core/Page.h"
#include "desk/session/RegisterEditing.h"

namespace Ui {
class frmparalist;
}

namespace desk {

// The window on the parameters of one station, a grid for each group.
class frmparalist : public Page {
    Q_OBJECT

  public:
    // The configuration mode: the register map of a station is laid out. Closed without OK it stores nothing.
    frmparalist(Desk& desk, const RegisterStation& station);
    ~frmparalist() override;

    void Activated() override;

  Q_SIGNALS:
    // The addresses are stored.
    void Stored();

  private:
    void Ok();
    void CloseAsked();

    std::unique_ptr<Ui::frmparalist> ui_;
    std::unique_ptr<RegisterEditing> editing_;
};

}  // namespace desk
