#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fieldsim {

// A body as a frame: DLE STX, the body with every DLE doubled, DLE ETX, the check (not escaped).
std::string BsapFrame(std::string_view body);

// Cuts the bytes of a line into frames.
class BsapReader {
  public:
    // Bytes that come after a longer pause begin anew.
    void Add(std::string_view bytes, std::uint64_t atMilliseconds);
    // The body of the next frame with a good check, its doubled bytes undone; it and what stood before it are gone.
    std::optional<std::string> Next();

  private:
    std::string buffer_;
    std::uint64_t lastByteAt_ = 0;
};

}  // namespace fieldsim
