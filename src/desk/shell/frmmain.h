#pragma once

#include <memory>

#include "desk/kit/MenuPage.h"

namespace Ui {
class frmmain;
}

namespace desk {

// The menu: a command a screen, open to whom the rights say.
class frmmain : public MenuPage {
    Q_OBJECT

  public:
    explicit frmmain(Desk& desk);
    ~frmmain() override;

    // The rights are those of the user who is logged in now.
    void Activated() override { ApplyRights(); }

  Q_SIGNALS:
    void NodesWanted();
    void LoggedOff();
    void ExitWanted();

  private:
    void ApplyRights();
    void cmdlogoff();

    std::unique_ptr<Ui::frmmain> ui_;
};

}  // namespace desk
