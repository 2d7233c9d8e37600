#pragma once

#include <cstddef>
#include <string_view>

// What the BSAP protocol fixes: the bytes of its frames here, where things stand in the replies in BsapLayout.h.
namespace protocols::bsap {

using namespace std::string_view_literals;

inline constexpr char soh = 0x01;
inline constexpr char stx = 0x02;
inline constexpr char etx = 0x03;
inline constexpr char dle = 0x10;
inline constexpr auto frameStart = "\x10\x02"sv;
inline constexpr auto frameEnd = "\x10\x03"sv;
inline constexpr std::size_t checkLength = 2;

// Positions in the body of a request, from 0. In an answer whose leading byte stands in the head, what is behind the
// serial stands one further.
inline constexpr std::size_t serialAt = 1;
inline constexpr std::size_t messageAt = 2;
inline constexpr std::size_t numbersAt = 3;  // of an application message: its two sequence bytes
inline constexpr std::size_t stationAt = 3;  // of a link message

// Message codes.
inline constexpr int poll = 0x85;
inline constexpr int acknowledge = 0x8B;
inline constexpr int application = 0xA0;
inline constexpr char answer = 0x0B;
// Those of a station's link messages.
inline constexpr auto linkCodes = "\x86\x87\x95"sv;
// The argument of a poll.
inline constexpr char pollArgument = 0x10;
// Stands between the sequence of an application message and its function.
inline constexpr auto behindSequence = "\x0B\x00"sv;

// How the application sequence number stands in a message. The stations expect it in the order of each message.
enum class SequenceOrder {
    LowHigh,
    HighLow,
    // Low, high, each as the hexadecimal reading of its decimal digits: 12 goes out as 12 hex. From 100 on the reading
    // is no byte and is left out.
    LowHighDigits,
};

// What a request begins with behind its head, and the order of the sequence number in that.
struct Function {
    std::string_view code;
    SequenceOrder order;
};

inline constexpr Function signOn = {"\x70\x05\x01"sv, SequenceOrder::LowHighDigits};
inline constexpr Function readVersion = {"\x04\x02\x01\xFF\x11"sv, SequenceOrder::LowHigh};
inline constexpr Function firstOfList = {"\x0C"sv, SequenceOrder::HighLow};
inline constexpr Function nextOfList = {"\x0D"sv, SequenceOrder::HighLow};
inline constexpr Function writeValues = {"\x80"sv, SequenceOrder::LowHigh};
inline constexpr Function writeByName = {"\x84\xFF\x01"sv, SequenceOrder::HighLow};
inline constexpr Function readByAddress = {"\x00\x05\xF8\x01"sv, SequenceOrder::HighLow};
inline constexpr Function readByName = {"\x04\x05\xF8\x01\xFF"sv, SequenceOrder::HighLow};
inline constexpr Function searchSignals = {"\x08\x05\xF9\x01\xFF"sv, SequenceOrder::HighLow};
inline constexpr Function archiveInformation = {"\x70\x07\x04"sv, SequenceOrder::LowHigh};
inline constexpr Function archiveDefinitions = {"\x70\x07\x02"sv, SequenceOrder::LowHigh};
inline constexpr Function archiveByDate = {"\x70\x07\x06"sv, SequenceOrder::LowHigh};
inline constexpr Function archiveRecords = {"\x70\x07\x07"sv, SequenceOrder::LowHigh};
inline constexpr Function auditRecords = {"\x70\x03\x05"sv, SequenceOrder::LowHigh};

// Which fields a list is asked for.
inline constexpr auto fieldsWithNames = "\x05\xF9\x01"sv;
inline constexpr auto fieldsWithUnits = "\x01\xF0"sv;
inline constexpr auto fieldsWithoutUnits = "\x01\xD0"sv;

// What stands behind the load version.
inline constexpr char behindVersion = '\xFF';

// What a written value begins with.
inline constexpr char writtenOn = 0x09;
inline constexpr char writtenOff = 0x0A;
inline constexpr char writtenAnalog = 0x0B;
inline constexpr char writtenText = 0x0D;

// The type codes of signals that are known. In a list every other one is an analog.
inline constexpr int logicalType = 0;
inline constexpr int analogType = 2;
inline constexpr int logicalAlarmType = 4;
inline constexpr int analogAlarmType = 6;
inline constexpr int teleCorrectorLogicalType = 32;
inline constexpr int systemSignalType = 50;
inline constexpr int textType = 67;
inline constexpr int otherLogicalType = 68;

// Replies by their length, over BsapAnswer::text.
inline constexpr std::size_t shortestAcknowledgement = 11;
inline constexpr std::size_t longestAcknowledgement = 17;

}  // namespace protocols::bsap
