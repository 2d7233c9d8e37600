#include "desk/core/Look.h"

#include <QApplication>
#include <QWidget>

namespace desk {

namespace {

QPalette LightPalette() {
    QPalette palette(QColor(0xF4, 0xF5, 0xF7));
    palette.setColor(QPalette::WindowText, QColor(0x1B, 0x1F, 0x24));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xEE, 0xF1, 0xF5));
    palette.setColor(QPalette::Text, QColor(0x1B, 0x1F, 0x24));
    palette.setColor(QPalette::ButtonText, QColor(0x1B, 0x1F, 0x24));
    palette.setColor(QPalette::PlaceholderText, QColor(0x6B, 0x74, 0x80));
    palette.setColor(QPalette::Highlight, QColor(0x1F, 0x5F, 0xA8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

QPalette DarkPalette() {
    QPalette palette(QColor(0x3A, 0x3F, 0x47), QColor(0x24, 0x28, 0x2E));
    palette.setColor(QPalette::WindowText, QColor(0xE4, 0xE7, 0xEB));
    palette.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x23));
    palette.setColor(QPalette::AlternateBase, QColor(0x22, 0x26, 0x2C));
    palette.setColor(QPalette::Text, QColor(0xE4, 0xE7, 0xEB));
    palette.setColor(QPalette::ButtonText, QColor(0xE4, 0xE7, 0xEB));
    palette.setColor(QPalette::PlaceholderText, QColor(0x8C, 0x95, 0xA0));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3A, 0x3F, 0x47));
    palette.setColor(QPalette::ToolTipText, QColor(0xE4, 0xE7, 0xEB));
    palette.setColor(QPalette::Highlight, QColor(0x3D, 0x7F, 0xC9));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

// What a command that is out of reach looks like: still readable, never mistaken for one that is not.
void ShadeDisabled(QPalette& palette) {
    const QColor text = palette.color(QPalette::PlaceholderText);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, text);
    }
}

}  // namespace

void ApplyLook(QApplication& application, Palette palette) {
    QApplication::setStyle("Fusion");
    if (palette != Palette::System) {
        QPalette colours = palette == Palette::Dark ? DarkPalette() : LightPalette();
        ShadeDisabled(colours);
        QApplication::setPalette(colours);
    }
    static_cast<void>(application);
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
