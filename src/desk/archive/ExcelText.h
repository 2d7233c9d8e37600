#pragma once

#include <QString>

namespace desk {

class Grid;

// Captions and rows of a grid as the ".xls" files of the archive have them: text, a line a row, behind each cell a tab.
QString ExcelText(const Grid& grid);

}  // namespace desk
