#include "fieldsim/BsapFrame.h"

#include "fieldsim/Checks.h"

namespace fieldsim {

namespace {

constexpr char kDle = 0x10;
constexpr char kStx = 0x02;
constexpr char kEtx = 0x03;
constexpr std::uint64_t kFrameGapMs = 200;

enum class Found { Frame, NotWhole, NoFrame };

struct Reading {
    Found found = Found::NoFrame;
    std::string body;
    std::size_t length = 0;  // of the frame on the line
};

// What stands at the start of these bytes, which begin with DLE STX.
Reading ReadFrame(std::string_view bytes) {
    Reading reading;
    std::size_t at = 2;
    for (; at + 1 < bytes.size(); ++at) {
        if (bytes[at] != kDle) {
            reading.body += bytes[at];
        } else if (bytes[at + 1] == kDle) {
            reading.body += bytes[++at];
        } else if (bytes[at + 1] == kEtx) {
            break;
        } else {
            return reading;
        }
    }
    reading.length = at + 4;
    if (reading.length > bytes.size()) {
        reading.found = Found::NotWhole;
    } else if (bytes.substr(at + 2, 2) == LowHigh(BsapCrc16(reading.body))) {
        reading.found = Found::Frame;
    }
    return reading;
}

}  // namespace

std::string BsapFrame(std::string_view body) {
    std::string frame = {kDle, kStx};
    for (const char c : body) {
        frame.append(c == kDle ? 2 : 1, c);
    }
    return frame + kDle + kEtx + LowHigh(BsapCrc16(body));
}

void BsapReader::Add(std::string_view bytes, std::uint64_t atMilliseconds) {
    if (atMilliseconds > lastByteAt_ + kFrameGapMs) {
        buffer_.clear();
    }
    lastByteAt_ = atMilliseconds;
    buffer_ += bytes;
}

std::optional<std::string> BsapReader::Next() {
    static constexpr char start[] = {kDle, kStx, '\0'};
    for (std::size_t at = buffer_.find(start); at != std::string::npos; at = buffer_.find(start, at + 1)) {
        Reading reading = ReadFrame(std::string_view(buffer_).substr(at));
        if (reading.found == Found::Frame) {
            buffer_.erase(0, at + reading.length);
            return std::move(reading.body);
        }
        if (reading.found == Found::NotWhole) {
            buffer_.erase(0, at);
            return std::nullopt;
        }
    }
    // A DLE at the end may be the first byte of the next frame.
    buffer_ = !buffer_.empty() && buffer_.back() == kDle ? std::string(1, kDle) : std::string();
    return std::nullopt;
}

}  // namespace fieldsim
