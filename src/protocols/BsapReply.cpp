#include "protocols/BsapReply.h"

#include <algorithm>

#include "core/Text.h"
#include "protocols/BsapCheck.h"

namespace protocols {

std::optional<int> ByteAtPosition(std::string_view reply, std::size_t position) {
    if (position < 1 || position > reply.size()) {
        return std::nullopt;
    }
    return static_cast<unsigned char>(reply[position - 1]);
}

std::string UndoDoubling(const std::string& reply) {
    constexpr std::size_t check = 2;
    const std::size_t checkAt = reply.size() - std::min(reply.size(), check);
    return core::ReplaceAll(reply.substr(0, checkAt), "\x10\x10", "\x10") + reply.substr(checkAt);
}

bool IsWholeFrame(std::string_view reply) {
    if (!reply.starts_with("\x10\x02")) {
        return false;
    }
    std::size_t dle = reply.find('\x10', 2);
    while (dle != std::string_view::npos && reply.substr(dle, 2) == "\x10\x10") {
        dle = reply.find('\x10', dle + 2);
    }
    return dle != std::string_view::npos && reply.substr(dle, 2) == "\x10\x03" && dle + replyTrailer == reply.size();
}

bool HasRightCheck(std::string_view frame) {
    constexpr std::size_t checkLength = 2;
    if (frame.size() < checkLength) {
        return false;
    }
    const std::string_view check = frame.substr(frame.size() - checkLength);
    const int value = BsapCheck(frame.substr(0, frame.size() - checkLength));
    return static_cast<unsigned char>(check[0]) == value % 256 && static_cast<unsigned char>(check[1]) == value / 256;
}

}  // namespace protocols
