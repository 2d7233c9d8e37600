#pragma once

#include <memory>

#include "desk/archive/ArchivePage.h"

namespace Ui {
class frmCW_archive;
}

namespace desk {

// Downloads an archive file of a CW by its number, or its audit trail.
class frmCW_archive : public ArchivePage {
    Q_OBJECT

  public:
    // For the station of a session or, without one, for that of `locationID`; null and nothing: for any.
    frmCW_archive(Desk& desk, session::Session* session, std::optional<std::int64_t> locationID);
    ~frmCW_archive() override;

  private:
    std::optional<archive::Wish> GetWish() override;

    std::unique_ptr<Ui::frmCW_archive> ui_;
};

}  // namespace desk
