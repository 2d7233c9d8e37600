#include "desk/archive/GridFile.h"

#include "desk/core/Boxes.h"
#include "desk/core/Grid.h"

namespace desk {

namespace {

// Each field has the separator behind it, also the last.
QString FieldsEndedBy(const Grid& grid, QChar separator) {
    QString text;
    for (QString line : grid.TabSeparated().split("\r\n", Qt::SkipEmptyParts)) {
        text += line.replace('\t', separator) + separator + "\r\n";
    }
    return text;
}

}  // namespace

FileWish ExcelFile() {
    return {"Save To File", "Excel Files(*.xls)", "xls"};
}

void SaveGridFile(QWidget* over, const Grid& grid, const FileWish& wish, QChar separator) {
    const QByteArray bytes = FieldsEndedBy(grid, separator).toUtf8();
    AskForFile(over, wish, [over, bytes](const QString& file) {
        const QString failure = WriteWhole(file, bytes);
        ShowBox(over, failure.isEmpty() ? "Data Saved..." : failure, over->windowTitle(),
                failure.isEmpty() ? QMessageBox::Information : QMessageBox::Warning);
    });
}

}  // namespace desk
