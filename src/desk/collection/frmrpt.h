#pragma once

#include <memory>

#include "core/Clock.h"
#include "desk/kit/Page.h"

namespace Ui {
class frmrpt;
}

namespace desk {

// The daily report of a day, on the screen and as a file. What stands in the grid is always that of the date above it.
class frmrpt : public Page {
    Q_OBJECT

  public:
    explicit frmrpt(Desk& desk);
    ~frmrpt() override;

  private:
    core::DateTime Day() const;
    // Makes the report of the day and shows it; throws what the database throws.
    void Make();
    void Clear();
    void cmddaily();
    void cmdsavertf();
    void Write(const QString& file);

    std::unique_ptr<Ui::frmrpt> ui_;
};

}  // namespace desk
