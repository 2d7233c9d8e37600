#pragma once

#include <memory>

#include "desk/archive/ArchivePage.h"

namespace Ui {
class frmparaarchive;
}

namespace desk {

// Downloads the archives and the audit trail of the station that a session has on its line, stream by stream. What is
// new of an archive goes to the store.
class frmparaarchive : public ArchivePage {
    Q_OBJECT

  public:
    frmparaarchive(Desk& desk, session::Session& session);
    ~frmparaarchive() override;

  private:
    std::optional<archive::Wish> GetWish() override;
    void ShowKind();

    std::unique_ptr<Ui::frmparaarchive> ui_;
};

}  // namespace desk
