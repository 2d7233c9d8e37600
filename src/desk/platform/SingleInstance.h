#pragma once

#include <filesystem>

namespace desk {

// One instance an application directory. The hold is the kernel's lock on a file there: it ends with the process, so a
// crashed instance locks nobody out.
class SingleInstance {
  public:
    explicit SingleInstance(const std::filesystem::path& directory);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // Another instance is running in this directory.
    bool Taken() const { return taken_; }

  private:
    int descriptor_;
    bool taken_ = false;
};

}  // namespace desk
