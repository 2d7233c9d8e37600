// Replies of any bytes to the decoding of Quantum messages.
#include "protocols/quantum/Quantum.h"

#include <cmath>
#include <cstdlib>
#include <string>

using namespace protocols;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    const int message = size > 0 ? bytes[0] : 0;
    const std::string request = BuildQuantumRequest(message, input.substr(0, 3), message);
    for (const std::string& reply : {input, request + input}) {
        for (const auto& value : DecodeQuantumReply(CutQuantumEcho(reply, request), message % 5).fields) {
            if (value && !std::isfinite(*value)) {
                std::abort();
            }
        }
    }
    return 0;
}
