#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace core {
class Database;
struct DateTime;
}  // namespace core

// The alarm calls that stations made in.
namespace reports {

// The numbers of the alarm modems, from the settings.
struct DialoutNumbers {
    std::int32_t noted = 0;         // the call that a standing alarm notes
    std::int32_t acknowledged = 0;  // the calls from outside that the acknowledgement answers, besides the noted ones
};

// Throws DatabaseError.
DialoutNumbers ReadDialoutNumbers(core::Database& dbconn);

struct DialoutCall {
    std::string Phone_Num;
    std::string Date_Time;  // as people read it
    bool Ack = false;
};

// All calls in the order in which they came. Throws DatabaseError.
std::vector<DialoutCall> ReadDialout(core::Database& dbconn);

// Notes a call of the present date, not acknowledged. Throws DatabaseError.
void AddDialoutRow(core::Database& dbconn, std::int32_t phone, const core::DateTime& now);

// Acknowledges the open calls of both numbers. Returns how many there were. Throws DatabaseError.
int AcknowledgeDialout(core::Database& dbconn, const DialoutNumbers& numbers);

}  // namespace reports
