#include "desk/kit/GridFile.h"

#include "desk/kit/Boxes.h"
#include "desk/kit/Grid.h"

namespace desk {

QString GridText(const Grid& grid, QChar ending, const QStringList& captions) {
    QString text;
    const auto add = [&](QString cell) {
        text += cell.replace(ending, ' ').replace('\r', ' ').replace('\n', ' ') + ending;
    };
    for (int column = 0; column < grid.Columns(); ++column) {
        add(captions.isEmpty() ? grid.model()->headerData(column, Qt::Horizontal).toString() : captions.value(column));
    }
    text += "\r\n";
    for (int row = 0; row < grid.Rows(); ++row) {
        for (int column = 0; column < grid.Columns(); ++column) {
            add(grid.TextMatrix(row, column));
        }
        text += "\r\n";
    }
    return text;
}

FileWish ExcelFile() {
    return {"Save To File", "Excel Files(*.xls)", "xls"};
}

void SaveGridFile(QWidget* over, const QString& text, const FileWish& wish) {
    AskForFile(over, wish, [over, bytes = text.toUtf8()](const QString& file) {
        const QString failure = WriteWhole(file, bytes);
        ShowBox(over, failure.isEmpty() ? "Data Saved..." : failure, over->windowTitle(),
                failure.isEmpty() ? QMessageBox::Information : QMessageBox::Warning);
    });
}

}  // namespace desk
