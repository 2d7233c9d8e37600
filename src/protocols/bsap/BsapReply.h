#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Where things stand in the replies of a BSAP station. Positions count from 1 over BsapAnswer::text.
namespace protocols {

struct BsapReplyLayout {
    // Poll reply, its first byte cut off.
    std::size_t pollAddress;
    std::size_t pollStatus;
    // What a station did with a request; 0: all of it.
    std::size_t status;
    // Version reply, two bytes.
    std::size_t loadVersion;
    // List reply.
    std::size_t listNext;  // two bytes
    std::size_t firstRecord;
};

constexpr BsapReplyLayout longReply = {6, 7, 11, 14, 14, 16};
// One byte less in front of everything: the CW models.
constexpr BsapReplyLayout shortReply = {5, 6, 10, 13, 13, 15};

constexpr const BsapReplyLayout& ReplyLayout(bool isCW) {
    return isCW ? shortReply : longReply;
}

// DLE ETX and the check, at the end of every reply.
constexpr std::size_t replyTrailer = 4;

// The byte at a position from 1; nothing behind the end of the text.
std::optional<int> ByteAtPosition(std::string_view reply, std::size_t position);

// The check of a whole frame is right. A bit that falls over on the line would otherwise be a value.
bool HasRightCheck(std::string_view frame);

}  // namespace protocols
