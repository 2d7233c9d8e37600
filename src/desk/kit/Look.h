#pragma once

#include <QFont>
#include <QPalette>

class QWidget;

namespace desk {

enum class Palette { System, Light, Dark };

// The one look of the desk: the Fusion style, and the system's palette unless a light or a dark one is asked for.
// Disabled texts are readable in each.
void ApplyLook(Palette palette);

// From 1, the same colour, to 21, black on white. A text needs 3 or more.
double Contrast(const QColor& one, const QColor& other);

// The same font `times` larger; for what must be read from afar.
QFont Larger(const QFont& font, double times, bool bold = false);

// A text in a muted shade of the page's own colour: what goes with a figure but is not it.
void Mute(QWidget* label);

}  // namespace desk
