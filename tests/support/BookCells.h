#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace support {

// The lines of a workbook as another program reads it; see book_cells.py. The first names the sheet, the second holds
// the captions.
inline std::vector<std::string> BookCells(const std::filesystem::path& file) {
    ChildProcess reader({"/usr/bin/python3", BOOK_CELLS, file.string()});
    EXPECT_TRUE(reader.Printed("\nend\n")) << reader.Said();
    std::vector<std::string> lines;
    std::istringstream said(reader.Said());
    for (std::string line; std::getline(said, line) && line != "end";) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace support
