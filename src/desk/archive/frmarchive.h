#pragma once

#include <memory>

#include "desk/archive/ArchivePage.h"

namespace Ui {
class frmarchive;
}

namespace desk {

// Downloads the archive or the audit trail of a TeleFlow or TeleCorrector, by a call of its own.
class frmarchive : public ArchivePage {
    Q_OBJECT

  public:
    explicit frmarchive(Desk& desk);
    ~frmarchive() override;

  private:
    std::optional<archive::Wish> GetWish() override;
    void ShowNode();

    std::unique_ptr<Ui::frmarchive> ui_;
};

}  // namespace desk
