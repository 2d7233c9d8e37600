#include "desk/archive/ExcelText.h"

#include "desk/core/Grid.h"

namespace desk {

QString ExcelText(const Grid& grid) {
    QString text;
    const auto add = [&text](QString cell) {
        text += cell.replace('\t', ' ').replace('\r', ' ').replace('\n', ' ') + '\t';
    };
    for (int column = 0; column < grid.Columns(); ++column) {
        add(grid.model()->headerData(column, Qt::Horizontal).toString());
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

}  // namespace desk
