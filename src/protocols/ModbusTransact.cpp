#include "protocols/ModbusTransact.h"

#include <algorithm>
#include <functional>
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

// The numbers of values that the reply to a read may have: registers give just what was asked for, and perhaps the
// check word behind it; coils come in bytes, and in ASCII framing with the check behind them.
struct Expected {
    std::size_t least;
    std::size_t most;
};

// Whether a reply with good values is that of its request.
using Belongs = std::function<bool(const ModbusReply& reply, const std::string& bytes)>;

Expected ExpectedValues(const ModbusState& modbus, int count, int command) {
    constexpr int readHoldingRegisters = 3;
    constexpr int readInputRegisters = 4;
    const bool registers = command == readHoldingRegisters || command == readInputRegisters;
    const bool twoRegisters = registers && modbus.floatread && !modbus.rtu32bit;
    const auto values = static_cast<std::size_t>(std::clamp(twoRegisters ? count / 2 : count, 0, 125));
    return {values, values + (registers ? 1 : 15)};
}

// One request and its reply.
ModbusReply Ask(Conversation& talk, const Framing& framing, const std::string& frame, const Belongs& belongs,
                const TransactOptions& options) {
    const int timeout = talk.CommTimeout();
    talk.feedback.Status(options.waiting);
    const std::string bytes = Exchange(talk, frame, options.waitsForAnswer * timeout);
    if (talk.Wait(options.waitsAfterAnswer * timeout)) {
        talk.feedback.Status(options.converting);
    }
    ModbusReply reply = framing.parse(talk.modbus, bytes);
    if (reply.kind == Kind::Values && !belongs(reply, bytes)) {
        reply = {Kind::Empty, {}, 0};
    }
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

// A whole transaction of a request that was built, or was not.
ModbusReply Transact(Conversation& talk, const Framing& framing, const ModbusRequest& request, const Belongs& belongs,
                     const TransactOptions& options) {
    if (!request.Built()) {
        talk.feedback.Box("Valid parameters not available to assemble Modbus packet");
        return {};
    }
    talk.feedback.Status(options.sending);
    if (!talk.Wait(talk.CommTimeout())) {
        return {};
    }
    ModbusReply reply = Ask(talk, framing, request.frame, belongs, options);
    for (int made = 1; made < options.tries && Failed(reply, options) && !talk.Ended(); ++made) {
        talk.logs.WriteRtuErr("Try" + std::to_string(made));
        reply = Ask(talk, framing, request.frame, belongs, options);
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

}  // namespace

ModbusReply ModbusTransact(Conversation& talk, int reg, int count, int command, const TransactOptions& options) {
    const Framing framing = FramingOf(talk.station);
    std::vector<float> data = {static_cast<float>(count)};
    const ModbusRequest request = framing.build(command, talk.station.slaveaddress, reg, data);
    const Expected expected = ExpectedValues(talk.modbus, count, command);
    // A reply with fewer values than were asked for was cut, and what it lacks must not be taken for zeros; one with
    // more belongs to another request.
    const auto belongs = [expected](const ModbusReply& reply, const std::string&) {
        return reply.count >= expected.least && reply.count <= expected.most;
    };
    return Transact(talk, framing, request, belongs, options);
}

bool ModbusWrite(Conversation& talk, int reg, double value) {
    constexpr int writeRegisters = 16;
    const Framing framing = FramingOf(talk.station);
    const ModbusRequest request =
        framing.build == BuildAsciiRequest
            ? ModbusRequest{{}, "Bad framing for a float."}
            : BuildWriteFrame(talk.modbus, value, reg, writeRegisters, talk.station.slaveaddress);
    // The acknowledgement repeats the head of its request: slave, function, register, quantity.
    constexpr std::size_t head = 6;
    const auto belongs = [&request](const ModbusReply&, const std::string& bytes) {
        return bytes.compare(0, head, request.frame, 0, head) == 0;
    };
    return Transact(talk, framing, request, belongs, scheduledTransact).kind == Kind::Values;
}

}  // namespace protocols
