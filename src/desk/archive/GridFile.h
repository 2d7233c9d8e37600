#pragma once

#include <QChar>

#include "desk/core/WholeFile.h"

namespace desk {

class Grid;

// Asks over a form for a file and writes a grid into it: its captions and rows, a line each, every field with the
// separator behind it. Says "Data Saved...", or why not. Returns at once.
void SaveGridFile(QWidget* over, const Grid& grid, const FileWish& wish, QChar separator);

// The spreadsheet file of the archives, which holds text with tabs.
FileWish ExcelFile();

}  // namespace desk
