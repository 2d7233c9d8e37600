#include "desk/kit/RevealButton.h"

namespace desk {

RevealButton::RevealButton(QWidget* parent) : QToolButton(parent) {
    setText("Show");
    setToolTip("Shows the password while it is held down");
    setAccessibleName(toolTip());
    // A click leaves the focus in the field.
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QToolButton::pressed, this, [this] { Show(true); });
    connect(this, &QToolButton::released, this, [this] { Show(false); });
}

// A button that is hidden while it is held down is never released.
void RevealButton::hideEvent(QHideEvent* event) {
    setDown(false);
    Show(false);
    QToolButton::hideEvent(event);
}

void RevealButton::Show(bool shown) {
    for (QLineEdit* field : fields_) {
        field->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    }
}

}  // namespace desk
