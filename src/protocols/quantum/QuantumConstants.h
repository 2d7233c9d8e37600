#pragma once

#include <cstddef>

// What the Quantum protocol fixes. Positions count from 0.
namespace protocols::quantum {

inline constexpr char stx = 0x02;
inline constexpr char etx = 0x03;

// A request: STX, two digits of the station, the command, two digits of the message, a fill byte, checksum, ETX.
inline constexpr std::size_t messageHighAt = 4;
inline constexpr std::size_t messageAt = 5;
inline constexpr std::size_t requestLength = 9;
// Checksum and ETX.
inline constexpr std::size_t trailer = 2;

inline constexpr int messages = 3;

// A reply: a head whose contents are not known, eight fields, the trailer.
inline constexpr std::size_t fields = 8;
inline constexpr std::size_t fieldWidth = 13;
// Where a field in exponent form has the exponent's sign.
inline constexpr std::size_t exponentSignAt = 10;

constexpr std::size_t HeadLength(int message) {
    return message == 3 ? 22 : 23;
}

// Readers on a line with echo keep so many characters of what came. A longer reply has noise in it, and where its
// fields stand is not known.
inline constexpr std::size_t replyLength = 137;

}  // namespace protocols::quantum
