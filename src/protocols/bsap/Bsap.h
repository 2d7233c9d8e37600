#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/Kinds.h"
#include "protocols/line/Conversation.h"

namespace protocols {

// Every request of the BSAP conversation as a finished frame. An object is made for a message and holds nothing of its
// own: the sequence numbers live for the run of the program, the load version and the place in a list belong to the
// conversation.
//
// Of each address, list number and count the low byte is sent; a signal's address goes as two bytes. Texts go out as
// they are, one byte a character, closed by 00. A request by address or by list carries the load version of the last
// sign-on.
class Bsap {
  public:
    Bsap(BsapCounters& counters, const BsapState& state, bool isCW) : counters_(counters), state_(state), isCW_(isCW) {}

    // Asks a station for what it has ready, and acknowledges what it gave.
    std::string POLL_RTU(int address);
    std::string POLL_RTU_1(int address);

    std::string SignOn_RTU(int address, const std::string& password);
    // Asks for the signal #ON.., in whose answer the load version stands.
    std::string GetVersion_RTU(int address);

    // A list from its start, or from where the last reply left off (listnext1, listnext2).
    std::string get_LIST(int address, int listNumber, bool first);

    // A logical value is on when it is above 0. One of any other kind is analog: single precision, truncated.
    std::string Write_value(int address, double value, std::int32_t signalAddress, core::ValueKind kind);
    std::string Write_value_str(int address, const std::string& text, std::int32_t signalAddress);
    // `count` signals from `firstIndex` of both arrays on, as many as both have; all go in the analog form.
    std::string Write_Mul_value(int address, std::span<const double> values,
                                std::span<const std::int32_t> signalAddresses, std::size_t firstIndex,
                                std::size_t count);

    std::string get_by_address(int address, std::int32_t signalAddress);
    // `names` is a table of three columns a row, the name in the first; `count` rows of it, as many as there are and 99
    // at most.
    std::string get_by_name(int address, int count, std::span<const std::string> names);
    std::string get_by_single_name(int address, const std::string& name);

    // A logical signal is always switched on: by name only commands are written.
    std::string write_by_name(int address, const std::string& name, double value, core::ValueKind kind);

    // `kind` is 1 for the search by how a name begins, any other number for that by its attribute, which stands behind
    // its last point. The two parameters are where the last reply left off, 0 and 0 for the first.
    std::string get_signal_search(int address, const std::string& pattern, int kind, int firstParameter,
                                  int secondParameter);

  private:
    std::string LoadVersion() const;
    char SearchFlag(int kind) const;

    BsapCounters& counters_;
    const BsapState& state_;
    bool isCW_;
};

}  // namespace protocols
