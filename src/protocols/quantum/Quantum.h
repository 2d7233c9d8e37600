#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "protocols/line/Conversation.h"
#include "protocols/quantum/QuantumConstants.h"

// The messages of a Quantum unit: three text requests, each answered with eight numbers in fixed-width text.
namespace protocols {

// The frame of a request for message 1 to 3 with the command "A". Station numbers above 99 and messages above 9 send
// only the first digit of each field.
std::string BuildQuantumRequest(int station, const std::string& command, int message);

// The check byte over everything in front of it: 0 to 255.
int QuantumChecksum(std::string_view frame);

// The description of each value of message 1 to 3, in the order of the reply. They are the names of the station's
// parameters, with a doubled blank and a joined word as they stand there.
const std::array<std::string_view, quantum::fields>& QuantumNames(int message);

// A decoded reply: the value of each field in order, none where the field was not received. A reply has no check that
// could be tested: a digit that was spoilt into another digit cannot be seen.
struct QuantumReply {
    std::array<std::optional<double>, quantum::fields> fields;

    int Received() const;
    bool Whole() const { return Received() == static_cast<int>(fields.size()); }
};

// Takes a reply to `message` apart: its head, whose contents are not known, and eight fields of 13 characters. A field
// is received if all of it is there and reads as a number, or, as the first of message 3, as a date. A comma is as good
// a decimal mark as a point.
QuantumReply DecodeQuantumReply(const std::string& reply, int message);

// On a line with echo the request stands in front of the reply: then what is behind it, which is empty for an echo
// alone.
std::string CutQuantumEcho(const std::string& reply, const std::string& request);

// When the reply to a request is whole: by its length and its end, behind the echo. Shorter ones may end in a check
// byte that looks like the end.
WholeReply WholeQuantumReply(const std::string& request);

}  // namespace protocols
