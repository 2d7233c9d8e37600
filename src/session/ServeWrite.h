#pragma once

#include <span>
#include <string>

#include "core/Clock.h"
#include "protocols/line/Conversation.h"
#include "session/ParameterSet.h"
#include "session/WriteAnswer.h"

// What an operator has asked for, put on the line between two reads of a station.
namespace session {

// How a value went out over Modbus.
struct WriteSent {
    WriteAnswer answer;
    bool mayFollow = false;  // the station may take the value yet: the next polls will tell
};

// Writes over Modbus, in up to three tries, and reads back. A box says that the value could not be written where the
// station neither acknowledged nor shows it. Of a conversation that ended meanwhile the answer says nothing.
WriteSent pending_write_request_mbus(protocols::Conversation& talk, const WriteRequest& request);

// Writes over BSAP: once, and what the station says to it is not examined. Whether it has the value shows at the next
// read.
void pending_write_request_bsap(protocols::Conversation& talk, const WriteRequest& request);

// The same for several analog signals in one message.
void pending_mul_write_request_bsap(protocols::Conversation& talk, std::span<const WriteRequest> requests);

// What was sent to set a station's clock.
struct TimeSent {
    WriteResult result = WriteResult::NotSent;  // NotConfirmed: all of it is out
    core::DateTime time{};                      // that the station was given
    std::string reason{};
};

// Sets the station's clock to the time of this computer: year, month, day, hour, minute, second, and last the switch
// that takes them over. Since the elements take their time, they carry the moment at which the switch will go out, and
// it waits for that moment. The elements are found in the station's map by their names; none is sent that was not read
// in this connection.
TimeSent SetStationTime(protocols::Conversation& talk, const ParameterSet& set);

}  // namespace session
