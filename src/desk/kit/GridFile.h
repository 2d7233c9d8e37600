#pragma once

#include <QStringList>

#include "desk/kit/WholeFile.h"

namespace desk {

class Grid;

// A grid as the files of the archive screens hold it: its captions and rows, a line each, behind every field `ending`.
// `captions` stand in place of the grid's own where it shows them shortened.
QString GridText(const Grid& grid, QChar ending, const QStringList& captions = {});

// Asks over a form for a file and writes that text into it. Says "Data Saved...", or why not. Returns at once.
void SaveGridFile(QWidget* over, const QString& text, const FileWish& wish);

// The spreadsheet file of the archives, which holds text with tabs.
FileWish ExcelFile();

}  // namespace desk
