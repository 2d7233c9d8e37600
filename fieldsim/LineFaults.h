#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "fieldsim/Device.h"

namespace fieldsim {

enum class Fault {
    None,
    Silence,      // no answer
    NoiseBefore,  // a few wrong bytes in front of the answer
    NoiseAfter,   // or behind it
    BadCheck,     // one bit of the answer is wrong
    Cut,          // only the first half of the answer
    Late,         // the answer comes when the master has given up
    Exception,    // a Modbus exception instead of the answer
    Echo,         // the request in front of the answer
    NoCarrier,    // half an answer, then "NO CARRIER"
};

// "None", "Silence", "NoiseBefore", ... as a fault; nothing for any other name.
std::optional<Fault> FaultByName(std::string_view name);

// A line on which the device's answers meet faults: first those of a script, one an answer, then by chance.
class LineFaults final : public Device {
  public:
    // One request that the device answered, and what the line made of the answer.
    struct Exchange {
        Moment at;
        std::string request;
        std::string answer;  // as the device gave it
        Fault fault = Fault::None;
    };

    struct Options {
        std::deque<Fault> script;
        std::map<Fault, double> chances;  // probability of each, together at most 1
        std::uint32_t seed = 1;
        std::uint32_t lateMs = 8000;
        int exceptionCode = 2;
    };

    // The device must outlive the line.
    LineFaults(Device& device, Options options)
        : device_(device), options_(std::move(options)), random_(options_.seed) {}

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;
    void LineClosed() override { device_.LineClosed(); }

    // In their order; from here a story knows which answers reached the master whole.
    const std::vector<Exchange>& Exchanges() const { return exchanges_; }
    int Count(Fault fault) const;

  private:
    Fault Next();
    Answer Spoilt(Answer answer, Fault fault);
    std::string Noise();

    Device& device_;
    Options options_;
    std::mt19937 random_;
    std::string request_;  // what has come since the last answer
    std::uint64_t lastByteAt_ = 0;
    std::vector<Exchange> exchanges_;
};

}  // namespace fieldsim
