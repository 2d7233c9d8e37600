#include "desk/core/MenuPage.h"

#include <QCommandLinkButton>

#include "desk/core/Look.h"

namespace desk {

void MenuPage::StyleCommands() {
    for (QCommandLinkButton* command : findChildren<QCommandLinkButton*>()) {
        command->setFont(Larger(font(), 1.3, true));
        command->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        command->setFlat(false);
    }
}

void MenuPage::NotYet(QAbstractButton* command) {
    command->setEnabled(false);
    command->setToolTip("Not available in this version");
}

}  // namespace desk
