#include "desk/platform/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace desk {

SingleInstance::SingleInstance(const std::filesystem::path& directory)
    : descriptor_(open((directory / "norwen.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    taken_ = descriptor_ >= 0 && flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

SingleInstance::~SingleInstance() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

}  // namespace desk
