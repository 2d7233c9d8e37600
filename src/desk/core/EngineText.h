#pragma once

#include <QStringList>
#include <string>
#include <vector>

// Texts of the engine as the desk shows them. The engine ends the lines of a message with CR.
namespace desk {

// For a place that has one line.
QString OneLine(const std::string& text);

// For a message box.
QString Lines(const std::string& text);

// Rows of cells for a grid.
std::vector<QStringList> GridRows(const std::vector<std::vector<std::string>>& rows);

}  // namespace desk
