#include "desk/core/MenuPage.h"

namespace desk {

void MenuPage::NotYet(QAbstractButton* command) {
    command->setEnabled(false);
    command->setToolTip("Not available in this version");
}

}  // namespace desk
