#pragma once

#include <span>
#include <vector>

#include "core/Clock.h"
#include "protocols/Conversation.h"
#include "session/ParameterSet.h"
#include "session/WriteRequest.h"

// What an operator has asked for, put on the line between two reads of a station.
namespace session {

// Writes over Modbus, in up to three tries. True: the station has acknowledged it. Otherwise a box says that it could
// not be written, unless the conversation ended.
bool pending_write_request_mbus(protocols::Conversation& talk, const WriteRequest& request);

// Writes over BSAP: once, and what the station says to it is not examined. Whether it has the value shows at the next
// read.
void pending_write_request_bsap(protocols::Conversation& talk, const WriteRequest& request);

// The same for several analog signals in one message.
void pending_mul_write_request_bsap(protocols::Conversation& talk, std::span<const WriteRequest> requests);

// Sets the station's clock: year, month, day, hour, minute, second, and last the switch that takes them over. The
// elements are found in the station's map by their names. False: the map has no such elements, nothing was sent; or an
// element could not be written, and nothing was sent behind it.
bool SetStationTime(protocols::Conversation& talk, const ParameterSet& set, const core::DateTime& time);

}  // namespace session
