#include "protocols/modbus/ModbusTransact.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "protocols/modbus/ModbusConstants.h"
#include "protocols/modbus/ModbusFraming.h"
#include "protocols/modbus/ModbusRequest.h"

namespace protocols {

namespace {

using Kind = ModbusReply::Kind;

// What the framings do differently, chosen once a transaction. A request and its reply are held in RTU framing where
// the line has TCP: the message is the same.
struct Framed {
    core::Framing framing;
    AsciiCheck check;  // of ASCII

    bool IsAscii() const { return framing == core::Framing::Ascii; }
    ModbusRequest Build(int command, int slave, double reg, std::vector<float>& data) const {
        return IsAscii() ? BuildAsciiRequest(command, slave, reg, data, check)
                         : BuildRtuRequest(command, slave, reg, data);
    }
    ModbusReply Parse(ModbusState& modbus, const std::string& reply) const {
        return IsAscii() ? ParseAsciiReply(modbus, reply, check) : ParseRtuReply(modbus, reply);
    }
};

Framed Prepare(Conversation& talk) {
    talk.modbus.wordOrder = talk.station.wordOrder;
    return {talk.station.framing, talk.station.standardFraming ? AsciiCheck::Standard : AsciiCheck::Required};
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

// Each try over TCP has a number of its own, so that a late reply to an earlier one is told by it.
std::string Converse(Conversation& talk, core::Framing framing, const std::string& frame, double answerMs) {
    if (framing != core::Framing::Tcp) {
        return Exchange(talk, frame, answerMs, WholeModbusReply(talk.station, frame));
    }
    talk.counters.transaction = (talk.counters.transaction + 1) % 65536;
    const std::string request = TcpFrame(talk.counters.transaction, frame);
    const std::string received = Exchange(talk, request, answerMs, WholeModbusReply(talk.station, request));
    return OwnTcpReply(received, request).value_or("");
}

// One request and its reply.
ModbusReply Ask(Conversation& talk, const Framed& framed, const std::string& frame, const Judge& judge,
                const TransactOptions& options) {
    const int timeout = talk.CommTimeout();
    talk.feedback.Status(options.waiting);
    const std::string bytes = Converse(talk, framed.framing, frame, options.waitsForAnswer * timeout);
    if (talk.Pause(options.waitsAfterAnswer * timeout)) {
        talk.feedback.Status(options.converting);
    }
    ModbusReply reply = judge(framed.Parse(talk.modbus, bytes), bytes);
    if (!talk.Ended()) {
        talk.requests.Note(IsAnswer(reply, options));
    }
    talk.Pause(options.waitsAfterAnswer * timeout);
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

ModbusRequest RtuWrite(const Conversation& talk, core::ValueKind datum, int reg, double value) {
    const int slave = talk.station.slaveaddress;
    std::vector<float> data = {static_cast<float>(value)};
    switch (datum) {
        case core::ValueKind::Logical:
            return BuildWriteFrame(talk.modbus, value, reg, modbus::writeCoil, slave);
        case core::ValueKind::Integer:
            return BuildRtuRequest(modbus::writeRegister, slave, reg, data);
        case core::ValueKind::Float:
            break;
    }
    return BuildWriteFrame(talk.modbus, value, reg, modbus::writeRegisters, slave);
}

ModbusRequest AsciiWrite(const Framed& framed, core::ValueKind datum, int slave, int reg, double value) {
    constexpr float on = modbus::coilOn;
    std::vector<float> data = {datum != core::ValueKind::Logical ? static_cast<float>(value) : value == 1 ? on : 0};
    switch (datum) {
        case core::ValueKind::Logical:
            return framed.Build(modbus::writeCoil, slave, reg, data);
        case core::ValueKind::Integer:
            return framed.Build(modbus::writeRegister, slave, reg, data);
        case core::ValueKind::Float:
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
bool Acknowledges(const std::string& bytes, const std::string& frame, core::ValueKind datum, bool ascii) {
    constexpr std::size_t rtuHead = modbus::writeLength;
    constexpr std::size_t asciiHead = 1 + rtuHead * modbus::digitsPerByte;
    if (ascii) {
        const std::size_t colon = bytes.rfind(modbus::colon);
        return colon != std::string::npos && bytes.compare(colon, asciiHead, frame, 0, asciiHead) == 0;
    }
    return datum == core::ValueKind::Float ? bytes.compare(0, rtuHead, frame, 0, rtuHead) == 0 : bytes == frame;
}

// A whole transaction of a request that was built, or was not.
ModbusReply Transact(Conversation& talk, const Framed& framed, const ModbusRequest& request, const Judge& judge,
                     const TransactOptions& options) {
    if (!request.Built()) {
        talk.feedback.Box("Valid parameters not available to assemble Modbus packet");
        return {};
    }
    talk.feedback.Status(options.sending);
    if (!talk.Pause(options.waitsBefore * talk.CommTimeout()) || talk.Wanted()) {
        return {};
    }
    ModbusReply reply = Ask(talk, framed, request.frame, judge, options);
    for (int made = 1; made < options.tries && TriesAgain(talk, reply, options); ++made) {
        talk.logs.WriteRtuErr("Try" + std::to_string(made));
        reply = Ask(talk, framed, request.frame, judge, options);
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
    const Framed framed = Prepare(talk);
    std::vector<float> data = {static_cast<float>(count)};
    const ModbusRequest request = framed.Build(command, talk.station.slaveaddress, reg, data);
    const Expected expected = ExpectedValues(talk.modbus, count, command);
    // A reply with fewer values than were asked for was cut, and what it lacks must not be taken for zeros; one with
    // more belongs to another request.
    const auto judge = [&](ModbusReply reply, const std::string& bytes) {
        const bool own =
            !options.onlyItsOwn || (IsOwn(bytes, request.frame, framed.IsAscii()) && reply.count == expected.least);
        const bool belongs = own && reply.count >= expected.least && reply.count <= expected.most;
        return reply.kind == Kind::Values && !belongs ? ModbusReply{Kind::Empty, 0} : reply;
    };
    return Transact(talk, framed, request, judge, options);
}

WriteOutcome ModbusWrite(Conversation& talk, core::ValueKind datum, int reg, double value,
                         const TransactOptions& options) {
    const Framed framed = Prepare(talk);
    const ModbusRequest request = framed.IsAscii() ? AsciiWrite(framed, datum, talk.station.slaveaddress, reg, value)
                                                   : RtuWrite(talk, datum, reg, value);
    const auto judge = [&](ModbusReply reply, const std::string& bytes) {
        if (reply.kind == Kind::Exception) {
            return reply;
        }
        const bool done = Acknowledges(bytes, request.frame, datum, framed.IsAscii());
        return done && reply.kind != Kind::CrcError ? ModbusReply{Kind::Values, 1}
               : reply.kind == Kind::Values         ? ModbusReply{Kind::Empty, 0}
                                                    : reply;
    };
    const ModbusReply reply = Transact(talk, framed, request, judge, options);
    if (!request.Built()) {
        return WriteOutcome::NotBuilt;
    }
    return reply.kind == Kind::Values      ? WriteOutcome::Done
           : reply.kind == Kind::Exception ? WriteOutcome::Refused
                                           : WriteOutcome::Failed;
}

}  // namespace protocols
