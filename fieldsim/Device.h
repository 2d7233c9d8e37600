#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/Clock.h"

// The far side of the line: what a station, a modem or a bad cable does with the bytes that the master sends.
namespace fieldsim {

// When something happens in the field: the local time there, and a count of milliseconds that never wraps.
struct Moment {
    core::DateTime local;
    std::uint64_t milliseconds = 0;
};

// Bytes that come back, and how many milliseconds after the bytes that caused them.
struct Answer {
    std::string bytes;
    std::uint32_t delayMs = 0;
};

class Device {
  public:
    virtual ~Device() = default;

    // Bytes from the master, which may be a part of a frame, or noise. Empty: nothing comes back for them.
    virtual std::vector<Answer> Receive(std::string_view bytes, const Moment& now) = 0;

    // The master closed its port. A modem takes that as the end of the call.
    virtual void LineClosed() {}
};

}  // namespace fieldsim
