#include "desk/signals/frmBeforeChange.h"

#include <utility>

#include "ui_ChangePage.h"

namespace desk {

frmBeforeChange::frmBeforeChange(Desk& desk, session::Session& session)
    : ChangePage(desk, "Before Change", signals::Side::Before, session) {
    Build();
}

// A notice: whoever fetches again has the date of that fetch, and the date after the change is gone.
void frmBeforeChange::Activated() {
    if (!std::exchange(told_, true)) {
        Guarded([this] {
            if (Dates().before) {
                Show("Before change data is already collected.....");
            }
        });
    }
}

void frmBeforeChange::ShowDates(const signals::ChangeDates& dates) {
    ShowDate(*Controls().Label4, *Controls().lblDate, dates.before);
}

}  // namespace desk
