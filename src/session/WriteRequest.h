#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/Station.h"
#include "session/ParameterSet.h"

namespace core {
class Database;
class Logs;
}  // namespace core

namespace session {

// A value that an operator has entered for a row, on its way to the station.
struct WriteRequest {
    RowPlace place;
    std::string aga;
    std::string Description;
    DataKind kind = DataKind::Float;
    std::int64_t writeAddress = 0;  // Modbus: register or coil from 1, as the row is read; BSAP: the signal's address
    double writeValue = 0;
    double oldValue = 0;
    std::string oldText;
    std::string newText;
};

// Who writes to what.
struct WriteContext {
    core::Database& dbconn;
    core::Logs& logs;
    const core::Station& station;
    int streamno = 1;
    std::string currentuser;
};

// What became of an entered text: a request, or why there is none, in the words for the operator.
struct WriteCheck {
    std::optional<WriteRequest> request;
    std::string refusal;
};

// The refusal of a text that is none for the row, as opposed to a write that may not be.
inline constexpr const char* enterProperData = "Enter Proper Data";

// While a request waits for its turn on the line.
inline constexpr const char* requestPending = "Write Request Pending.....";

// Judges a text that was entered for a row: a number, or for a switch one of its words or 1 or 0; within what the
// row's kind holds; of a row whose address is known; by a user who may write it. Changes nothing. Throws DatabaseError.
WriteCheck CheckWrite(const WriteContext& context, const ParameterSet& set, const RowPlace& place,
                      const std::string& text);

// Enters the value in the station's map, before it is on the line, and leaves the line in the audit trail unless
// nothing was changed. Throws DatabaseError.
void EnterWrite(const WriteContext& context, const WriteRequest& request);

// The request never went out: the map has the old value again, and the audit trail says so. Throws DatabaseError.
void TakeBackWrite(const WriteContext& context, const WriteRequest& request, const std::string& reason);

// The request was cut off on its way: the audit trail says that nobody knows what the station has. Throws
// DatabaseError.
void NoteCutOff(const WriteContext& context, const WriteRequest& request, const std::string& reason);

}  // namespace session
