#include "desk/kit/TextWidths.h"

#include <QFontMetricsF>
#include <algorithm>

namespace desk {

double TextWidths::Of(const QString& text, const QFont& font) {
    if (!measured_ || font_ != font) {
        const QFontMetricsF metrics(font);
        for (std::size_t letter = 0; letter < known; ++letter) {
            widths_[letter] = metrics.horizontalAdvance(QChar(static_cast<char16_t>(letter)));
        }
        font_ = font;
        measured_ = true;
    }
    double width = 0;
    for (const QChar letter : text) {
        if (letter.unicode() >= known) {
            return QFontMetricsF(font).horizontalAdvance(text);
        }
        width += widths_[letter.unicode()];
    }
    return width;
}

}  // namespace desk
