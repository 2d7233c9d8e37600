#include "protocols/ModbusTransact.h"

#include <vector>

#include "core/Text.h"
#include "protocols/ModbusRequest.h"

namespace protocols {

namespace {

using Kind = ModbusReply::Kind;

// What is different between RTU and ASCII, chosen once a transaction.
struct Framing {
    ModbusRequest (*build)(int command, int slave, double reg, std::vector<float>& data);
    ModbusReply (*parse)(ModbusState& modbus, const std::string& reply);
};

Framing FramingOf(const core::Station& station) {
    return core::SameText(station.mode, "ASCII") ? Framing{BuildAsciiRequest, ParseAsciiReply}
                                                 : Framing{BuildRtuRequest, ParseRtuReply};
}

bool Failed(const ModbusReply& reply, const TransactOptions& options) {
    return !reply.Answered() || (reply.kind == Kind::Exception && !options.unattended);
}

// One request and its reply.
ModbusReply Ask(Conversation& talk, const Framing& framing, const std::string& frame, const TransactOptions& options) {
    const int timeout = talk.CommTimeout();
    talk.feedback.Status(options.waiting);
    const std::string bytes = Exchange(talk, frame, options.waitsForAnswer * timeout);
    if (talk.Wait(options.waitsAfterAnswer * timeout)) {
        talk.feedback.Status(options.converting);
    }
    ModbusReply reply = framing.parse(talk.modbus, bytes);
    talk.Wait(options.waitsAfterAnswer * timeout);
    return reply;
}

void LogFailure(Conversation& talk, Kind kind) {
    const std::string location = "[" + std::to_string(talk.station.locationID) + "]!";
    talk.logs.WriteRtuErr(kind == Kind::CrcError ? "A CRC Error occurred in the last packet locationID --" + location
                                                 : "There was No Response from the controller" + location +
                                                       " Check Settings and try again!");
}

void ShowFailure(Conversation& talk, Kind kind) {
    if (kind == Kind::CrcError) {
        talk.feedback.Box("A CRC Error occurred in the last packet!");
    } else if (kind == Kind::Exception) {
        talk.feedback.Box("Invalid Modbus Address Specified");
    } else {
        talk.feedback.Box("There was No Response from the controller!\rCheck Settings and try again!");
    }
}

}  // namespace

ModbusReply ModbusTransact(Conversation& talk, int reg, int count, int command, const TransactOptions& options) {
    const Framing framing = FramingOf(talk.station);
    std::vector<float> data = {static_cast<float>(count)};
    const ModbusRequest request = framing.build(command, talk.station.slaveaddress, reg, data);
    if (!request.Built()) {
        talk.feedback.Box("Valid parameters not available to assemble Modbus packet");
        return {};
    }
    talk.feedback.Status(options.sending);
    if (!talk.Wait(talk.CommTimeout())) {
        return {};
    }
    ModbusReply reply = Ask(talk, framing, request.frame, options);
    for (int made = 1; made < options.tries && Failed(reply, options) && !talk.Ended(); ++made) {
        talk.logs.WriteRtuErr("Try" + std::to_string(made));
        reply = Ask(talk, framing, request.frame, options);
    }
    if (!Failed(reply, options)) {
        return reply;
    }
    if (!talk.Ended()) {
        options.unattended ? LogFailure(talk, reply.kind) : ShowFailure(talk, reply.kind);
    }
    reply.text.clear();
    return reply;
}

}  // namespace protocols
