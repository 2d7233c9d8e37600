#pragma once

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "fieldsim/ModbusSlave.h"

namespace support {

// What stands on a port and does not answer.
struct Silence final : fieldsim::Device {
    std::vector<fieldsim::Answer> Receive(std::string_view, const fieldsim::Moment&) override { return {}; }
};

// Stands in front of a slave and answers the reads of an RTU master that it refuses by exception 2, as one does that
// has no such registers.
struct RefusingSlave final : fieldsim::Device {
    fieldsim::Device& slave;
    std::function<bool(int reg)> refuses;  // the first register or coil of a request, from 1

    RefusingSlave(fieldsim::Device& behind, std::function<bool(int reg)> which)
        : slave(behind), refuses(std::move(which)) {}

    std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment& now) override {
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
        if (bytes.size() == 8 && byte(1) <= 4 && refuses(byte(2) * 256 + byte(3) + 1)) {
            return {{fieldsim::ModbusException(bytes, 2), 50}};
        }
        return slave.Receive(bytes, now);
    }
};

}  // namespace support
