#include "protocols/bsap/BsapReply.h"

#include "protocols/bsap/BsapCheck.h"
#include "protocols/bsap/BsapConstants.h"

namespace protocols {

std::optional<int> ByteAtPosition(std::string_view reply, std::size_t position) {
    if (position < 1 || position > reply.size()) {
        return std::nullopt;
    }
    return static_cast<unsigned char>(reply[position - 1]);
}

bool HasRightCheck(std::string_view frame) {
    if (frame.size() < bsap::checkLength) {
        return false;
    }
    const std::string_view check = frame.substr(frame.size() - bsap::checkLength);
    const int value = BsapCheck(frame.substr(0, frame.size() - bsap::checkLength));
    return static_cast<unsigned char>(check[0]) == value % 256 && static_cast<unsigned char>(check[1]) == value / 256;
}

}  // namespace protocols
