#include "protocols/modbus/ModbusTransact.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "core/Text.h"
#include "protocols/modbus/ModbusConstants.h"
#include "protocols/modbus/ModbusRequest.h"

namespace protocols {

namespace {

using Kind = ModbusReply::Kind;

// What is different between RTU and ASCII, chosen once a transaction.
struct Framing {
    bool ascii;
    AsciiCheck check;  // of ASCII

    ModbusRequest Build(int command, int slave, double reg, std::vector<float>& data) const {
        return ascii ? BuildAsciiRequest(command, slave, reg, data, check) : BuildRtuRequest(command, slave, reg, data);
    }
    ModbusReply Parse(ModbusState& modbus, const std::string& reply) const {
        return ascii ? ParseAsciiReply(modbus, reply, check) : ParseRtuReply(modbus, reply);
    }
};

Framing FramingOf(const core::Station& station) {
    return {core::SameText(station.mode, "ASCII"),
            station.standardFraming ? AsciiCheck::Standard : AsciiCheck::Required};
}

// The numbers of values that the reply to a read may have: registers give just what was asked for, and perhaps the
// check word behind it; coils come in bytes, and in ASCII framing with the check behind them.
struct Expected {
    std::size_t least;
    std::size_t most;
};

// Makes of a reply as it was parsed what it is to its request.
using Judge = std::function<ModbusReply(ModbusReply reply, const std::string& bytes)>;

Expected ExpectedValues(const ModbusState& modbus, int count, int command) {
    const bool registers = command == modbus::readHoldingRegisters || command == modbus::readInputRegisters;
    const bool twoRegisters = registers && modbus.floatread && !modbus.rtu32bit;
    const auto values = static_cast<std::size_t>(std::clamp(twoRegisters ? count / 2 : count, 0, 125));
    return {values, values + (registers ? 1 : 15)};
}

// One request and its reply.
ModbusReply Ask(Conversation& talk, const Framing& framing, const std::string& frame, const Judge& judge,
                const TransactOptions& options) {
    const int timeout = talk.CommTimeout();
    talk.feedback.Status(options.waiting);
    const std::string bytes = Exchange(talk, frame, options.waitsForAnswer * timeout);
    if (talk.Wait(options.waitsAfterAnswer * timeout)) {
        talk.feedback.Status(options.converting);
    }
    ModbusReply reply = judge(framing.Parse(talk.modbus, bytes), bytes);
    if (!talk.Ended()) {
        talk.requests.Note(IsAnswer(reply, options));
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

void Report(Conversation& talk, Kind kind, const TransactOptions& options) {
    if (options.failures == FailureReport::Log) {
        LogFailure(talk, kind);
    } else if (options.failures == FailureReport::Box) {
        talk.feedback.Box(FailureText(kind));
    }
}

// A station that refused a write will refuse it again.
bool TriesAgain(Conversation& talk, const ModbusReply& reply, const TransactOptions& options) {
    const bool refusedWrite = reply.kind == Kind::Exception && options.failures == FailureReport::Caller;
    return !IsAnswer(reply, options) && !refusedWrite && !talk.Ended() && !talk.Wanted();
}

ModbusRequest RtuWrite(const Conversation& talk, ModbusDatum datum, int reg, double value) {
    const int slave = talk.station.slaveaddress;
    std::vector<float> data = {static_cast<float>(value)};
    switch (datum) {
        case ModbusDatum::Coil:
            return BuildWriteFrame(talk.modbus, value, reg, modbus::writeCoil, slave);
        case ModbusDatum::Integer:
            return BuildRtuRequest(modbus::writeRegister, slave, reg, data);
        case ModbusDatum::Float:
            break;
    }
    return BuildWriteFrame(talk.modbus, value, reg, modbus::writeRegisters, slave);
}

ModbusRequest AsciiWrite(const Framing& framing, ModbusDatum datum, int slave, int reg, double value) {
    constexpr float on = modbus::coilOn;
    std::vector<float> data = {datum != ModbusDatum::Coil ? static_cast<float>(value) : value == 1 ? on : 0};
    switch (datum) {
        case ModbusDatum::Coil:
            return framing.Build(modbus::writeCoil, slave, reg, data);
        case ModbusDatum::Integer:
            return framing.Build(modbus::writeRegister, slave, reg, data);
        case ModbusDatum::Float:
            break;
    }
    return {{}, "Bad framing for a float."};
}

// Whether a reply names the slave and the function of its request.
bool IsOwn(const std::string& bytes, const std::string& frame, bool ascii) {
    constexpr std::size_t rtuHead = modbus::functionAt + 1;
    const std::size_t colon = ascii ? bytes.find(modbus::colon) : 0;
    const std::size_t head = ascii ? 1 + rtuHead * modbus::digitsPerByte : rtuHead;
    return colon != std::string::npos && bytes.compare(colon, head, frame, 0, head) == 0;
}

// Whether a reply acknowledges just this write. That to a single coil or register repeats its request, that to several
// registers the head: slave, function, register, quantity. In ASCII framing the required check is not
// looked at, and its length is the device's affair.
bool Acknowledges(const std::string& bytes, const std::string& frame, ModbusDatum datum, bool ascii) {
    constexpr std::size_t rtuHead = modbus::writeLength;
    constexpr std::size_t asciiHead = 1 + rtuHead * modbus::digitsPerByte;
    if (ascii) {
        const std::size_t colon = bytes.rfind(modbus::colon);
        return colon != std::string::npos && bytes.compare(colon, asciiHead, frame, 0, asciiHead) == 0;
    }
    return datum == ModbusDatum::Float ? bytes.compare(0, rtuHead, frame, 0, rtuHead) == 0 : bytes == frame;
}

// A whole transaction of a request that was built, or was not.
ModbusReply Transact(Conversation& talk, const Framing& framing, const ModbusRequest& request, const Judge& judge,
                     const TransactOptions& options) {
    if (!request.Built()) {
        talk.feedback.Box("Valid parameters not available to assemble Modbus packet");
        return {};
    }
    talk.feedback.Status(options.sending);
    if (!talk.Wait(options.waitsBefore * talk.CommTimeout()) || talk.Wanted()) {
        return {};
    }
    ModbusReply reply = Ask(talk, framing, request.frame, judge, options);
    for (int made = 1; made < options.tries && TriesAgain(talk, reply, options); ++made) {
        talk.logs.WriteRtuErr("Try" + std::to_string(made));
        reply = Ask(talk, framing, request.frame, judge, options);
    }
    if (IsAnswer(reply, options)) {
        return reply;
    }
    if (!talk.Ended() && !talk.Wanted()) {
        Report(talk, reply.kind, options);
    }
    return reply;
}

}  // namespace

const char* FailureText(Kind kind) {
    switch (kind) {
        case Kind::CrcError:
            return "A CRC Error occurred in the last packet!";
        case Kind::Exception:
            return "Invalid Modbus Address Specified";
        default:
            return "There was No Response from the controller!\rCheck Settings and try again!";
    }
}

bool IsAnswer(const ModbusReply& reply, const TransactOptions& options) {
    return reply.Answered() && (reply.kind != Kind::Exception || options.failures == FailureReport::Log);
}

ModbusReply ModbusTransact(Conversation& talk, int reg, int count, int command, const TransactOptions& options) {
    const Framing framing = FramingOf(talk.station);
    std::vector<float> data = {static_cast<float>(count)};
    const ModbusRequest request = framing.Build(command, talk.station.slaveaddress, reg, data);
    const Expected expected = ExpectedValues(talk.modbus, count, command);
    // A reply with fewer values than were asked for was cut, and what it lacks must not be taken for zeros; one with
    // more belongs to another request.
    const auto judge = [&](ModbusReply reply, const std::string& bytes) {
        const bool own =
            !options.onlyItsOwn || (IsOwn(bytes, request.frame, framing.ascii) && reply.count == expected.least);
        const bool belongs = own && reply.count >= expected.least && reply.count <= expected.most;
        return reply.kind == Kind::Values && !belongs ? ModbusReply{Kind::Empty, 0} : reply;
    };
    return Transact(talk, framing, request, judge, options);
}

WriteOutcome ModbusWrite(Conversation& talk, ModbusDatum datum, int reg, double value, const TransactOptions& options) {
    const Framing framing = FramingOf(talk.station);
    const ModbusRequest request = framing.ascii ? AsciiWrite(framing, datum, talk.station.slaveaddress, reg, value)
                                                : RtuWrite(talk, datum, reg, value);
    const auto judge = [&](ModbusReply reply, const std::string& bytes) {
        if (reply.kind == Kind::Exception) {
            return reply;
        }
        const bool done = Acknowledges(bytes, request.frame, datum, framing.ascii);
        return done && reply.kind != Kind::CrcError ? ModbusReply{Kind::Values, 1}
               : reply.kind == Kind::Values         ? ModbusReply{Kind::Empty, 0}
                                                    : reply;
    };
    const ModbusReply reply = Transact(talk, framing, request, judge, options);
    if (!request.Built()) {
        return WriteOutcome::NotBuilt;
    }
    return reply.kind == Kind::Values      ? WriteOutcome::Done
           : reply.kind == Kind::Exception ? WriteOutcome::Refused
                                           : WriteOutcome::Failed;
}

}  // namespace protocols
