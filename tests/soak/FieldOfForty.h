#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "demo/DemoRegister.h"
#include "fieldsim/Device.h"

// Forty stations of all kinds, and what goes wrong with them in thirty days: drawn from a seed, and known before the
// program starts, so that what it should leave can be worked out without it.
namespace soak {

constexpr std::uint64_t minuteMs = 60000;
constexpr std::uint64_t hourMs = 60 * minuteMs;
constexpr std::uint64_t dayMs = 24 * hourMs;
constexpr int days = 30;

// A span of the thirty days, in milliseconds from their start.
struct Span {
    std::uint64_t from = 0;
    std::uint64_t until = 0;

    bool Overlaps(std::uint64_t begin, std::uint64_t end) const { return begin < until && from < end; }
    bool Covers(std::uint64_t begin, std::uint64_t end) const { return from <= begin && end <= until; }
};

enum class Trouble {
    Dead,     // whatever stands behind the port does not answer: a station, or a modem
    Refused,  // the port cannot be opened
    Busy,     // the number is busy
};

struct TroubleSpan {
    Trouble trouble = Trouble::Dead;
    int port = 1;
    std::string phoneno{};  // Busy
    Span span{};
};

struct ClockStep {
    std::uint64_t at = 0;
    std::int64_t seconds = 0;
};

struct PlannedStation {
    demo::DemoStation station;
    bool badLine = false;  // answers are lost and spoilt by chance
};

struct Plan {
    std::vector<PlannedStation> stations;
    std::vector<TroubleSpan> troubles;
    std::vector<Span> off;  // the program does not run: a power cut at `from`, a start at `until`
    std::vector<ClockStep> steps;
};

Plan DrawPlan(std::uint32_t seed);

// Stands between a port and what is behind it. While it is cut off nothing comes back.
class Gate final : public fieldsim::Device {
  public:
    explicit Gate(fieldsim::Device& behind) : behind_(behind) {}
    std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment& now) override {
        return cut ? std::vector<fieldsim::Answer>() : behind_.Receive(bytes, now);
    }
    void LineClosed() override { behind_.LineClosed(); }

    bool cut = false;

  private:
    fieldsim::Device& behind_;
};

}  // namespace soak
