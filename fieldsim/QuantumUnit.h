#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fieldsim/Device.h"
#include "fieldsim/Signals.h"

namespace fieldsim {

// The names of the eight values of message 1, 2 or 3, in their order.
const std::array<const char*, 8>& QuantumNames(int message);

struct QuantumOptions {
    bool echo = false;          // the request stands in front of the reply, as on a two-wire line
    bool decimalComma = false;  // "18,25" instead of "18.25"
    int silentMessage = 0;      // this message is never answered
    std::uint32_t answerMs = 120;
};

// A Quantum unit. It answers the messages 1 to 3 with the eight values of that message, found by their names; a value
// that its list does not hold is 0. Frames for other stations, with a bad checksum or other messages get silence.
class QuantumUnit final : public Device {
  public:
    QuantumUnit(int station, std::shared_ptr<SignalList> values, QuantumOptions options = {})
        : station_(station), values_(std::move(values)), options_(options) {}

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;

    const SignalList& Values() const { return *values_; }

  private:
    std::string Reply(int message, const Moment& now);

    int station_;
    std::shared_ptr<SignalList> values_;
    QuantumOptions options_;
    std::string buffer_;
};

// A number in the 13 characters of a field, left-aligned: plain, or a mantissa and an exponent of two digits behind
// "E".
std::string QuantumField(double value, bool decimalComma);

}  // namespace fieldsim
