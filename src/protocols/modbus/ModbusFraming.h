#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/Kinds.h"
#include "core/Station.h"
#include "protocols/line/Conversation.h"
#include "protocols/modbus/ModbusCheck.h"

// How stations differ on the line: the three framings around a message, which is the slave, the function and what
// belongs to it, and the order of the two registers of a float.
namespace protocols {

// The 32 bits of a float, its sign first, from its two registers as they come; and the other way round. A float in one
// register has no such order.
std::uint32_t InWordOrder(const ModbusState& modbus, std::uint32_t word);

// The message of an RTU frame in TCP framing: transaction number, 0, length, message, high byte first and without a
// check. `transaction` is 0 to 65535.
std::string TcpFrame(int transaction, std::string_view rtuFrame);

// Among the frames in TCP framing that were received the reply to this one, in RTU framing; nothing when it is not
// there. It has the request's transaction number, slave and function, and the length that it says. Others, such as
// late ones, and bytes that are no frame are passed over.
std::optional<std::string> OwnTcpReply(std::string_view received, std::string_view request);

// When the reply to a request, a frame in the station's framing, is whole: RTU by its length and CRC, with 3.5
// characters of silence behind it on a serial line; ASCII by CR and LF, and its LRC where that is looked at; TCP by its
// transaction number and length. It names the slave and the function that were asked, and has the quantity.
WholeReply WholeModbusReply(const core::Station& station, const std::string& request);

}  // namespace protocols
