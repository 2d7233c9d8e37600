#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

class QWidget;

namespace desk {

// What the dialog for a file to be written says and offers.
struct FileWish {
    QString title;
    QString kinds;   // "Text (*.txt)"
    QString suffix;  // for a name without one
    QString name{};  // offered at first
};

// Asks over a form for a file to be written, and for leave when there is one of that name. Returns at once: `write` is
// called with the choice. The dialog's own question would wait in a loop of its own.
void AskForFile(QWidget* over, const FileWish& wish, std::function<void(const QString& file)> write);

// Writes a file that an operator asked for, whole or not at all. Tells why not; empty when it is written.
QString WriteWhole(const QString& file, const QByteArray& bytes);

}  // namespace desk
