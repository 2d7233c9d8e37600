#pragma once

#include <QString>
#include <filesystem>

namespace desk {

// Opens a file of the application directory with the program that the system has for it, and returns at once. Empty, or
// why not, for the operator.
QString OpenCalibFile(const std::filesystem::path& folder, const char* name);

}  // namespace desk
