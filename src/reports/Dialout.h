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

// The numbers of the alarm modems. They differ: what the desk notes itself is not what its acknowledgement answers.
// Both are set by the installation, and nothing else in the program depends on them.
struct DialoutNumbers {
    std::int32_t noted = 3508216;         // the call that a standing alarm notes
    std::int32_t acknowledged = 4170253;  // the calls that the acknowledgement answers
};

struct DialoutCall {
    std::string Phone_Num;
    std::string Date_Time;  // as people read it
    bool Ack = false;
};

// All calls in the order in which they came. Throws DatabaseError.
std::vector<DialoutCall> ReadDialout(core::Database& dbconn);

// Notes a call of the present date, not acknowledged. Throws DatabaseError.
void AddDialoutRow(core::Database& dbconn, std::int32_t phone, const core::DateTime& now);

// Acknowledges the open calls of a number. Tells how many there were. Throws DatabaseError.
int AcknowledgeDialout(core::Database& dbconn, std::int32_t phone);

}  // namespace reports
