#pragma once

#include <string>

#include "protocols/bsap/BsapConstants.h"
#include "protocols/line/Conversation.h"

// What all BSAP messages have in common; the archive's requests are built on it too. A frame is
//
//   10 02   body, every byte 10 in it sent twice   10 03   check, low byte first, not escaped
namespace protocols {

// A byte of a frame: the low byte of a number.
inline char LowByte(long long number) {
    return static_cast<char>(number & 0xFF);
}

// The next byte: a number's second byte. Addresses of signals go low byte, high byte.
inline char HighByte(long long number) {
    return LowByte(number >> 8);
}

// The hexadecimal reading of a number's decimal digits: 12 hex for 12, 256 for 100.
int DigitsAsHex(int number);

// An application message: address, link sequence, A0, application sequence, 0B 00, function, data. Both sequence
// numbers are advanced first: the link's from 1 to 255 and round to 1, the application's in twos from 2 to 65534 and
// round to 2. Of the address its low byte is sent.
std::string BuildApplicationFrame(BsapCounters& counters, int address, const bsap::Function& function,
                                  const std::string& data);

// A local link message: address, link sequence (advanced first), command, argument. Each is doubled where it is 10 hex,
// the address too: undoubled it would reach nobody.
std::string BuildPoll(BsapCounters& counters, int address);             // command 85, argument 10 hex
std::string BuildAcknowledgement(BsapCounters& counters, int address);  // command 8B, argument the sequence

}  // namespace protocols
