#include "desk/kit/MenuButton.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include "desk/kit/Look.h"

namespace desk {

namespace {

constexpr int buttonMargin = 16;
constexpr int captionGap = 6;
constexpr double captionSize = 1.35;

}  // namespace

MenuButton::MenuButton(QWidget* parent) : QPushButton(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void MenuButton::setDescription(const QString& text) {
    description_ = text;
    setAccessibleDescription(text);
    updateGeometry();
}

QSize MenuButton::sizeHint() const {
    const QFontMetrics caption(Larger(font(), captionSize, true));
    const int width = caption.horizontalAdvance(text()) + 2 * buttonMargin;
    return {std::max(220, width), caption.height() + captionGap + 2 * fontMetrics().height() + 2 * buttonMargin};
}

void MenuButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    painter.drawControl(QStyle::CE_PushButton, option);

    const QFont captionFont = Larger(font(), captionSize, true);
    const int captionHeight = QFontMetrics(captionFont).height();
    QRect place = rect().adjusted(buttonMargin, buttonMargin, -buttonMargin, -buttonMargin);
    const int used = captionHeight + captionGap + 2 * fontMetrics().height();
    place.setTop(std::max(place.top(), rect().center().y() - used / 2));
    painter.setFont(captionFont);
    painter.drawItemText(place, Qt::AlignLeft | Qt::AlignTop | Qt::TextShowMnemonic, option.palette, isEnabled(),
                         text(), QPalette::ButtonText);
    painter.setFont(font());
    place.setTop(place.top() + captionHeight + captionGap);
    painter.drawItemText(place, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, option.palette, isEnabled(),
                         description_, isEnabled() ? QPalette::PlaceholderText : QPalette::ButtonText);
}

}  // namespace desk
