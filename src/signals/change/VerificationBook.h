#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "signals/change/Verification.h"

namespace signals {

// Writes a comparison as a workbook (.xlsx) with one sheet, "Data Varification Report": the captions, then the rows in
// their order. Numbers are numbers, names and units always texts; the rows that differ are red. The file is written
// whole, or what stood there stays. Tells why not; empty when it is written.
std::string WriteVerificationBook(const std::filesystem::path& file, const std::vector<VerifiedRow>& rows);

}  // namespace signals
