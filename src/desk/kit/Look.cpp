#include "desk/kit/Look.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <cmath>

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

constexpr double leastContrast = 3.5;  // of a disabled text

// The relative luminance of a colour.
double Luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

// The system's colours, its disabled texts brought nearer to the others until they are read.
QPalette Readable(QPalette palette) {
    constexpr int steps = 20;
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        const QColor given = palette.color(QPalette::Disabled, role);
        const QColor text = palette.color(QPalette::Active, role);
        const auto nearer = [&](int step) {
            const auto mixed = [step](int from, int to) { return from + (to - from) * step / steps; };
            return QColor(mixed(given.red(), text.red()), mixed(given.green(), text.green()),
                          mixed(given.blue(), text.blue()));
        };
        int step = 0;
        const auto isRead = [&](QPalette::ColorRole behind) {
            return Contrast(nearer(step), palette.color(QPalette::Disabled, behind)) >= leastContrast;
        };
        while (step < steps && !(isRead(QPalette::Window) && isRead(QPalette::Base) && isRead(QPalette::Button))) {
            ++step;
        }
        palette.setColor(QPalette::Disabled, role, nearer(step));
    }
    return palette;
}

}  // namespace

double Contrast(const QColor& one, const QColor& other) {
    const double first = Luminance(one);
    const double second = Luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

void ApplyLook(Palette palette) {
    QApplication::setStyle("Fusion");
    QApplication::setPalette(palette == Palette::System ? Readable(QApplication::palette())
                                                        : PaletteOf(palette == Palette::Dark ? dark : light));
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
