#pragma once

#include <QStringList>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Texts of the engine as the desk shows them. The engine ends the lines of a message with CR.
namespace desk {

// As it stands, from UTF-8.
QString Text(std::string_view text);

// A number as operators write it.
QString Number(double value);

// How many, with its thousands: "28,812".
QString Count(std::size_t number);

// For a place that has one line.
QString OneLine(const std::string& text);

// For a message box.
QString Lines(const std::string& text);

// Rows of cells for a grid.
std::vector<QStringList> GridRows(const std::vector<std::vector<std::string>>& rows);

}  // namespace desk
