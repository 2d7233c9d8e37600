#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/Database.h"
#include "core/Station.h"
#include "session/ParameterSet.h"

namespace core {
class Logs;
}

namespace session {

// A value that an operator has entered for a row, on its way to the station.
struct WriteRequest {
    RowPlace place;
    std::string aga;
    std::string Description;
    core::ValueKind kind = core::ValueKind::Float;
    std::int64_t writeAddress = 0;  // Modbus: register or coil from 1, as the row is read; BSAP: the signal's address
    double writeValue = 0;
    double oldValue = 0;
    std::string oldText;
    std::string newText;
    std::string user;        // who asked for it
    core::Value oldQuality;  // as it stood in the map; null: none
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

// The refusal of a row that was not read since the line came up.
inline constexpr const char* neverRead = "The value has not been read in this connection: it takes no write";

// While a request waits for its turn on the line.
inline constexpr const char* requestPending = "Write Request Pending.....";

// Judges a text that was entered for a row: a number, or for a switch one of its words or 1 or 0; within what the
// row's kind holds; of a row that was read in this connection; by a user who may write it. Changes nothing. Throws
// DatabaseError.
WriteCheck CheckWrite(const WriteContext& context, const ParameterSet& set, const RowPlace& place,
                      const std::string& text);

// Enters the value in the station's map, not confirmed, before it is on the line, and leaves in the audit trail what
// was asked for. What comes of it is left there by Settle. Throws DatabaseError.
void EnterWrite(const WriteContext& context, const WriteRequest& request);

}  // namespace session
