#pragma once

#include <memory>

#include "desk/kit/Page.h"

namespace Ui {
class frmuser;
}

namespace desk {

// The users of the station: add, edit, delete.
class frmuser : public Page {
    Q_OBJECT

  public:
    explicit frmuser(Desk& desk);
    ~frmuser() override;

    // The list is that of the table each time it comes to the front: what frmnewuser has saved is in it.
    void Activated() override;

  private:
    void filluser();
    void cmdedit();
    void cmddelete();
    QString Selected() const;

    std::unique_ptr<Ui::frmuser> ui_;
};

}  // namespace desk
