// Lines of any bytes to the naming of their fields, for every protocol and direction: every byte is in one field, and
// names and values are printable.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "protocols/inspect/FrameFields.h"

using namespace protocols;

namespace {

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bool IsPrintable(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    const std::size_t split = size > 0 ? std::min<std::size_t>(bytes[0] % 32, size) : 0;
    const std::string line = input.substr(split);
    const std::string request = input.substr(0, split);
    for (const Wire& wire :
         {Wire{core::Protocol::Modbus}, Wire{core::Protocol::Modbus, core::Framing::Ascii}, Wire{core::Protocol::Bsap},
          Wire{core::Protocol::Bsap, {}, true}, Wire{core::Protocol::Quantum}, Wire{}}) {
        for (const Direction direction : {Direction::TX, Direction::RX}) {
            const auto fields = FrameFields(line, wire, direction, request);
            std::size_t next = 0;
            for (const FrameField& field : fields) {
                Check(field.offset == next && (field.length > 0 || field.name == "cut short"));
                Check(!field.name.empty() && IsPrintable(field.name) && IsPrintable(field.value));
                next += field.length;
            }
            Check(next == line.size());
            static_cast<void>(FieldTable(fields));
        }
        static_cast<void>(IsRequest(line, wire));
    }
    return 0;
}
