#include "signals/change/VerificationBookCheck.h"

#include <zlib.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace signals {

namespace {

// A number of a ZIP file, least significant byte first; 0 beyond its end.
std::size_t NumberAt(std::string_view zip, std::size_t at, int bytes) {
    std::size_t number = 0;
    for (int i = bytes - 1; i >= 0; --i) {
        const std::size_t place = at + static_cast<std::size_t>(i);
        number = number << 8 | (place < zip.size() ? static_cast<unsigned char>(zip[place]) : 0);
    }
    return number;
}

std::optional<std::string> Inflated(std::string_view packed, std::size_t size) {
    std::string text(size, '\0');
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
        return std::nullopt;
    }
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(text.data());
    stream.avail_out = static_cast<uInt>(size);
    const bool whole = inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_out == 0;
    inflateEnd(&stream);
    return whole ? std::optional(text) : std::nullopt;
}

// An XML text whose outermost element is closed at its end.
bool IsWholeXml(std::string_view text) {
    const std::size_t declaration = text.find("?>");
    const std::size_t root = declaration == std::string_view::npos ? declaration : text.find('<', declaration);
    if (root == std::string_view::npos) {
        return false;
    }
    const std::string_view name = text.substr(root + 1, text.find_first_of(" />", root + 1) - root - 1);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text.ends_with("</" + std::string(name) + ">") ||
           (text.ends_with("/>") && text.find('<', root + 1) == std::string_view::npos);
}

// The part that an entry of the directory, 46 bytes and its name, tells of.
bool IsWholePart(std::string_view zip, std::size_t entry) {
    constexpr std::size_t deflated = 8;
    const std::size_t packedSize = NumberAt(zip, entry + 20, 4);
    const std::size_t local = NumberAt(zip, entry + 42, 4);
    const std::size_t data = local + 30 + NumberAt(zip, local + 26, 2) + NumberAt(zip, local + 28, 2);
    if (NumberAt(zip, entry + 10, 2) != deflated || data + packedSize > zip.size()) {
        return false;
    }
    const auto text = Inflated(zip.substr(data, packedSize), NumberAt(zip, entry + 24, 4));
    return text && IsWholeXml(*text);
}

}  // namespace

bool IsWholeBook(const std::filesystem::path& file) {
    constexpr std::size_t endSize = 22;
    constexpr std::size_t endMark = 0x06054B50;
    std::ifstream in(file, std::ios::binary);
    const std::string zip{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (zip.size() < endSize || NumberAt(zip, zip.size() - endSize, 4) != endMark) {
        return false;
    }
    const std::size_t entries = NumberAt(zip, zip.size() - endSize + 10, 2);
    std::size_t entry = NumberAt(zip, zip.size() - endSize + 16, 4);
    for (std::size_t n = 0; n < entries; ++n) {
        if (!IsWholePart(zip, entry)) {
            return false;
        }
        entry += 46 + NumberAt(zip, entry + 28, 2) + NumberAt(zip, entry + 30, 2) + NumberAt(zip, entry + 32, 2);
    }
    return entries > 0;
}

}  // namespace signals
