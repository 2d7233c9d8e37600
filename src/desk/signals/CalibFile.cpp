#include "desk/signals/CalibFile.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace desk {

QString OpenCalibFile(const std::filesystem::path& folder, const char* name) {
    const QFileInfo file(QString::fromStdString((folder / name).string()));
    if (!file.isFile()) {
        return QString("The file %1 is not there.\nIts folder is %2").arg(name, file.absolutePath());
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath()))) {
        return QString("This computer has no program that opens %1.\nIts folder is %2").arg(name, file.absolutePath());
    }
    return {};
}

}  // namespace desk
