#include "core/Ports.h"

#include <string>

#include "core/Database.h"

namespace core {

std::filesystem::path DevicePath(Database& dbconn, int port, const std::filesystem::path& directory) {
    const auto row = dbconn.First("select device from comports where portname=?", {"COM" + std::to_string(port)});
    const std::string device = row ? (*row)[0].Text() : std::string();
    return device.empty() ? std::filesystem::path() : directory / device;
}

}  // namespace core
