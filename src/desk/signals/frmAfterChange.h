#pragma once

#include "desk/signals/ChangePage.h"

namespace desk {

// Stores the lists of a station as they are after a change of its program.
class frmAfterChange : public ChangePage {
    Q_OBJECT

  public:
    frmAfterChange(Desk& desk, session::Session& session);

  private:
    void ShowDates(const signals::ChangeDates& dates) override;
};

}  // namespace desk
