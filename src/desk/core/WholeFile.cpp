#include "desk/core/WholeFile.h"

#include <QSaveFile>

namespace desk {

QString WriteWhole(const QString& file, const QByteArray& bytes) {
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        return file + ": " + out.errorString();
    }
    return {};
}

}  // namespace desk
