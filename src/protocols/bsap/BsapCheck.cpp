#include "protocols/bsap/BsapCheck.h"

#include <array>

#include "protocols/bsap/BsapConstants.h"

namespace protocols {

namespace {

constexpr unsigned polynomial = 0x8408;
constexpr unsigned startValue = 0xFFFF;

// What eight steps of the shift register do with each byte.
constexpr std::array<std::uint16_t, 256> MakeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned value = byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? value >> 1U ^ polynomial : value >> 1U;
        }
        table[byte] = static_cast<std::uint16_t>(value);
    }
    return table;
}

constexpr auto table = MakeTable();

enum class State { Idle, Dle, Body, DleInBody, Ended };

class Scanner {
  public:
    void Take(unsigned char byte) {
        switch (state_) {
            case State::Idle:
            case State::Ended:
                state_ = Outside(byte);
                break;
            case State::Dle:
                state_ = byte == bsap::soh || byte == bsap::stx ? State::Body
                         : byte == bsap::dle                    ? State::Dle
                                                                : State::Idle;
                break;
            case State::Body:
                state_ = byte == bsap::dle ? State::DleInBody : Add(byte, State::Body);
                break;
            case State::DleInBody:
                state_ = byte == bsap::dle   ? Add(byte, State::Body)
                         : byte == bsap::etx ? Add(byte, State::Ended)
                                             : State::Idle;
                break;
        }
    }

    std::uint16_t Value() const { return static_cast<std::uint16_t>(value_); }

  private:
    // A DLE outside a frame starts the value anew; behind an ended frame nothing else does.
    State Outside(unsigned char byte) {
        if (byte == bsap::dle || state_ == State::Idle) {
            value_ = startValue;
        }
        return byte == bsap::dle ? State::Dle : State::Idle;
    }

    State Add(unsigned char byte, State next) {
        value_ = value_ >> 8U ^ table[(value_ ^ byte) & 0xFFU];
        return next;
    }

    State state_ = State::Idle;
    unsigned value_ = startValue;
};

}  // namespace

std::uint16_t BsapCheck(std::string_view frame) {
    Scanner scanner;
    for (const char c : frame) {
        scanner.Take(static_cast<unsigned char>(c));
    }
    return scanner.Value();
}

}  // namespace protocols
