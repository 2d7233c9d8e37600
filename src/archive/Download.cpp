#include "archive/Download.h"

namespace archive {

std::string ShownTime(const core::DateTime& at) {
    return core::DateText(at) + "   " + std::to_string(at.hour) + ":" + std::to_string(at.minute) + ":" +
           std::to_string(at.second);
}

}  // namespace archive
