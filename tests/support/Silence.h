#pragma once

#include <string_view>
#include <vector>

#include "fieldsim/Device.h"

namespace support {

// What stands on a port and does not answer.
struct Silence final : fieldsim::Device {
    std::vector<fieldsim::Answer> Receive(std::string_view, const fieldsim::Moment&) override { return {}; }
};

}  // namespace support
