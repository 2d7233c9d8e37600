#pragma once

#include <filesystem>

namespace core {

class Database;

// The device of a port number, by the port's name "COM" and the number in comports. A relative path starts at the
// application directory. Empty: no such port. Throws DatabaseError.
std::filesystem::path DevicePath(Database& dbconn, int port, const std::filesystem::path& directory);

}  // namespace core
