#pragma once

#include <QByteArray>
#include <QString>

namespace desk {

// Writes a file that an operator asked for, whole or not at all. Tells why not; empty when it is written.
QString WriteWhole(const QString& file, const QByteArray& bytes);

}  // namespace desk
