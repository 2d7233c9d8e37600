#include "desk/signals/frmAfterChange.h"

#include "ui_ChangePage.h"

namespace desk {

frmAfterChange::frmAfterChange(Desk& desk, session::Session& session)
    : ChangePage(desk, "After Change", signals::Side::After, session) {
    Build();
}

void frmAfterChange::ShowDates(const signals::ChangeDates& dates) {
    ShowDate(*Controls().lblF, *Controls().lblFD, dates.before);
    ShowDate(*Controls().lblL, *Controls().lblLD, dates.after);
}

}  // namespace desk
