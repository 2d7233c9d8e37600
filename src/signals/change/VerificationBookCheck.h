#pragma once

#include <filesystem>

namespace signals {

// Whether each part of a workbook is in it to its end. The library puts a workbook together from files of its own, and
// does not tell when there was no room for one of them.
bool IsWholeBook(const std::filesystem::path& file);

}  // namespace signals
