#include "desk/core/Look.h"

#include <QApplication>
#include <QWidget>

namespace desk {

namespace {

struct Colours {
    QRgb button, window, text, base, alternateBase, muted, highlight;
};
constexpr Colours light = {0xFFF4F5F7, 0xFFF4F5F7, 0xFF1B1F24, 0xFFFFFFFF, 0xFFEEF1F5, 0xFF6B7480, 0xFF1F5FA8};
// The style draws outlines darker than the window, so on a dark one a field is seen by being lighter.
constexpr Colours dark = {0xFF3A3F47, 0xFF24282E, 0xFFE4E7EB, 0xFF31363D, 0xFF383E46, 0xFF8C95A0, 0xFF3D7FC9};

QPalette PaletteOf(const Colours& colours) {
    QPalette palette(QColor(colours.button), QColor(colours.window));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, QColor(colours.text));
        // A command that is out of reach is still readable, and never mistaken for one that is not.
        palette.setColor(QPalette::Disabled, role, QColor(colours.muted));
    }
    palette.setColor(QPalette::Base, QColor(colours.base));
    palette.setColor(QPalette::AlternateBase, QColor(colours.alternateBase));
    palette.setColor(QPalette::PlaceholderText, QColor(colours.muted));
    palette.setColor(QPalette::ToolTipBase, QColor(colours.button));
    palette.setColor(QPalette::Highlight, QColor(colours.highlight));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

}  // namespace

void ApplyLook(Palette palette) {
    QApplication::setStyle("Fusion");
    if (palette != Palette::System) {
        QApplication::setPalette(PaletteOf(palette == Palette::Dark ? dark : light));
    }
}

QFont Larger(const QFont& font, double times, bool bold) {
    QFont larger = font;
    larger.setPointSizeF(font.pointSizeF() * times);
    larger.setBold(bold);
    return larger;
}

void Mute(QWidget* label) {
    label->setForegroundRole(QPalette::PlaceholderText);
}

}  // namespace desk
