#pragma once

#include <memory>
#include <string>

#include "desk/kit/Page.h"

namespace Ui {
class frmnewuser;
}
namespace core {
struct UserRecord;
}

namespace desk {

// One user: names, password, levels and rights.
class frmnewuser : public Page {
    Q_OBJECT

  public:
    // Edits the user of this id; empty: adds one.
    explicit frmnewuser(Desk& desk, std::string userid = {});
    ~frmnewuser() override;

  private:
    void ShowUser(const core::UserRecord& user);
    core::UserRecord User() const;
    void cmdsave();

    std::string editedId_;
    std::unique_ptr<Ui::frmnewuser> ui_;
};

}  // namespace desk
