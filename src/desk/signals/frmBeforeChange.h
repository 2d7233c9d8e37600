#pragma once

#include "desk/signals/ChangePage.h"

namespace desk {

// Stores the lists of a station as they are before a change of its program.
class frmBeforeChange : public ChangePage {
    Q_OBJECT

  public:
    frmBeforeChange(Desk& desk, session::Session& session);

  private:
    void ShowDates(const signals::ChangeDates& dates) override;
    void Activated() override;

    bool told_ = false;  // that the station has been collected
};

}  // namespace desk
