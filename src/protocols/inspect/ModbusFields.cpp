#include <bit>

#include "core/Text.h"
#include "protocols/WireNumbers.h"
#include "protocols/inspect/FieldWriter.h"
#include "protocols/modbus/ModbusCheck.h"
#include "protocols/modbus/ModbusConstants.h"

// Modbus by name: its framings carry the same body, slave, function and data, RTU and ASCII in front of their check,
// TCP behind a head.
namespace protocols {

namespace {

std::string FunctionWord(int function) {
    switch (function & ~modbus::exceptionBit) {
        case modbus::readCoils:
            return "read coils";
        case modbus::readInputs:
            return "read inputs";
        case modbus::readHoldingRegisters:
            return "read holding registers";
        case modbus::readInputRegisters:
            return "read input registers";
        case modbus::writeCoil:
            return "write one coil";
        case modbus::writeRegister:
            return "write one register";
        case modbus::readStatus:
            return "read exception status";
        case modbus::writeCoils:
            return "write coils";
        case modbus::writeRegisters:
            return "write registers";
        default:
            return "not recognised";
    }
}

// The words of the Modbus application protocol.
std::string ExceptionWord(int code) {
    switch (code) {
        case 1:
            return "illegal function";
        case 2:
            return "illegal data address";
        case 3:
            return "illegal data value";
        case 4:
            return "slave device failure";
        case 5:
            return "acknowledge";
        case 6:
            return "slave device busy";
        case 8:
            return "memory parity error";
        case 10:
            return "gateway path unavailable";
        case 11:
            return "gateway target failed to respond";
        default:
            return "not recognised";
    }
}

bool Known(int function) {
    return FunctionWord(function) != "not recognised";
}

bool IsRead(int function) {
    return function >= modbus::readCoils && function <= modbus::readInputRegisters;
}

bool IsWriteOfMany(int function) {
    return function == modbus::writeCoils || function == modbus::writeRegisters;
}

std::string Unit(int function) {
    return function == modbus::readCoils || function == modbus::writeCoil || function == modbus::writeCoils ? "coil"
           : function == modbus::readInputs                                                                 ? "input"
                                            : "register";
}

// The maps of the stations count from 1, the line from 0.
void TakeAddress(BodyFields& body, int function) {
    const int number = body.HighLow();
    body.Take(2, Unit(function),
              std::to_string(number) + " on the line, " + std::to_string(number + 1) + " in the map");
}

void TakeWord(BodyFields& body, const std::string& name) {
    body.Take(2, name, std::to_string(body.HighLow()));
}

std::string Floats(std::string_view bytes, bool lowWordFirst) {
    constexpr std::size_t most = 3;
    std::string text;
    for (std::size_t at = 0; at + 4 <= bytes.size() && at < most * 4; at += 4) {
        std::uint32_t word = 0;
        for (const char c : bytes.substr(at, 4)) {
            word = word << 8U | static_cast<unsigned char>(c);
        }
        text += (text.empty() ? "" : " ") +
                core::NumberText(core::RoundTo(WireFloat(lowWordFirst ? std::rotl(word, 16) : word), 6));
    }
    return text + (bytes.size() > most * 4 ? " ..." : "");
}

void TakeData(BodyFields& body, int function, std::size_t count, bool lowWordFirst) {
    const std::string_view bytes = body.PeekAll().substr(0, count);
    const bool registers = function == modbus::readHoldingRegisters || function == modbus::readInputRegisters ||
                           function == modbus::writeRegisters;
    const bool floats = registers && count > 0 && count % 4 == 0;
    body.Take(count, "data", ShortHex(bytes) + (floats ? ", as floats " + Floats(bytes, lowWordFirst) : ""));
}

void TakeCoilValue(BodyFields& body) {
    const int value = body.HighLow();
    body.Take(2, "value", std::to_string(value) + (value == modbus::coilOn ? " on" : value == 0 ? " off" : ""));
}

void TakeHead(BodyFields& body) {
    body.TakeByte("slave");
    const int function = std::max(body.Peek(), 0);
    const std::string number = std::to_string(function & ~modbus::exceptionBit);
    body.Take(1, "function",
              number + " " + FunctionWord(function) + ((function & modbus::exceptionBit) != 0 ? ", refused" : ""));
}

void TakeAddressAndDatum(BodyFields& body, int function) {
    TakeAddress(body, function);
    if (function == modbus::writeCoil) {
        TakeCoilValue(body);
    } else {
        TakeWord(body, function == modbus::writeRegister ? "value" : "quantity");
    }
}

void TakeRequest(BodyFields& body, bool lowWordFirst) {
    const int function = body.Peek(modbus::functionAt);
    TakeHead(body);
    TakeAddressAndDatum(body, function);
    if (IsWriteOfMany(function)) {
        body.TakeByte("byte count");
        // The requests of this master do not always carry what they count, so the data is what is there.
        TakeData(body, function, body.Left(), lowWordFirst);
    }
    body.TakeRest("data");
}

void TakeReply(BodyFields& body, bool lowWordFirst) {
    const int function = body.Peek(modbus::functionAt);
    TakeHead(body);
    if ((function & modbus::exceptionBit) != 0) {
        const int code = std::max(body.Peek(), 0);
        body.Take(1, "exception", std::to_string(code) + " " + ExceptionWord(code));
    } else if (IsRead(function)) {
        const int count = std::max(body.Peek(), 0);
        body.TakeByte("byte count");
        TakeData(body, function, static_cast<std::size_t>(count), lowWordFirst);
    } else if (function == modbus::readStatus) {
        body.TakeByte("status");
    } else {
        TakeAddressAndDatum(body, function);
    }
    body.TakeRest("not recognised");
}

// False: the body is cut short.
bool TakeBody(const Body& bytes, Naming& naming) {
    BodyFields body(bytes, naming.fields);
    if (!Known(body.Peek(modbus::functionAt))) {
        TakeHead(body);
        body.TakeRest("not recognised");
    } else if (naming.direction == Direction::TX) {
        TakeRequest(body, naming.lowWordFirst);
    } else {
        TakeReply(body, naming.lowWordFirst);
    }
    naming.next = bytes.at.back();
    return !body.CutShort();
}

std::string RtuCheck(std::string_view body) {
    const int check = ModbusCrc(body);
    return {static_cast<char>(check & 0xFF), static_cast<char>(check >> 8)};
}

bool IsRightRtu(std::string_view frame) {
    return frame.size() >= 2 + modbus::crcLength &&
           frame.ends_with(RtuCheck(frame.substr(0, frame.size() - modbus::crcLength)));
}

// How long the body of a reply says that it is; one that does not say so ends with the line.
std::size_t ReplyLength(std::string_view line) {
    const int function = static_cast<unsigned char>(line[modbus::functionAt]);
    if ((function & modbus::exceptionBit) != 0 || function == modbus::readStatus) {
        return modbus::exceptionAt + 1;
    }
    if (IsRead(function)) {
        const bool counts = line.size() > modbus::byteCountAt;
        return modbus::dataAt + (counts ? static_cast<unsigned char>(line[modbus::byteCountAt]) : 0U);
    }
    return modbus::writeLength;
}

// The digits of a frame in ASCII framing, and how many of them, at their end, are its check.
struct AsciiDigits {
    std::string_view digits;
    std::size_t check = 0;
    bool right = false;
    std::string expected{};
};

// The check of this master's own requests has no padding: "A" for 0A, and "100" where the protocol has 00. In front of
// it there are pairs.
AsciiDigits SplitCheck(std::string_view digits) {
    const bool pairs = digits.size() % 2 == 0;
    const std::size_t usual = pairs ? 2 : 1;
    for (const std::size_t length : {usual, usual + 2}) {
        if (digits.size() > length && length < 4) {
            const int lrc = ModbusLrc(digits.substr(0, digits.size() - length));
            const int given = HexNumber(digits.substr(digits.size() - length));
            if (given == lrc || (pairs && given == lrc % 256)) {
                return {digits, length, true};
            }
        }
    }
    const std::size_t check = std::min(digits.size(), usual);
    return {digits, check, false, HexByte(ModbusLrc(digits.substr(0, digits.size() - check)) & 0xFF)};
}

// The bytes of hexadecimal pairs that begin at `from`; a digit that is left over is a byte of its own.
Body PairsBody(std::string_view digits, std::size_t from) {
    Body body;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        body.bytes += static_cast<char>(HexNumber(digits.substr(i, 2)));
        body.at.push_back(from + i);
    }
    body.at.push_back(from + digits.size());
    return body;
}

void NameAsciiFrame(Naming& naming) {
    naming.Take(1, "start", ":");
    const std::string_view rest = naming.Rest();
    const std::string_view digits = rest.substr(0, rest.find_first_not_of(modbus::asciiDigits));
    const std::string_view end = rest.substr(digits.size(), 2);
    const bool ended = end.starts_with('\r') || end.starts_with('\n');
    AsciiDigits frame = SplitCheck(digits);
    if (!ended && !frame.right) {
        frame.check = 0;  // what came last need not be the check
    }
    const bool whole = TakeBody(PairsBody(digits.substr(0, digits.size() - frame.check), naming.next), naming);
    if (frame.check > 0) {
        naming.Take(frame.check, "check", CheckWord(frame.right, frame.expected));
    }
    if (ended) {
        naming.Take(end == modbus::asciiEnd ? 2 : 1, "end",
                    end == modbus::asciiEnd ? "CR LF" : Readable(end.substr(0, 1)));
    } else if (naming.Rest().empty() && whole) {
        naming.TakeCut(frame.check > 0 ? "end" : "check");
    }
}

}  // namespace

void NameModbusRtu(Naming& naming) {
    const std::string_view line = naming.Rest();
    if (line.size() < 2 || (!Known(static_cast<unsigned char>(line[modbus::functionAt])) && !IsRightRtu(line))) {
        return;
    }
    std::size_t length = line.size() - std::min(line.size() - 2, modbus::crcLength);
    if (naming.direction == Direction::RX && !IsRightRtu(line)) {
        // More than it says: something came behind it. Less: it was cut.
        length = std::min(ReplyLength(line), line.size());
    }
    if (!TakeBody(PlainBody(naming.line, naming.next, length), naming)) {
        return;
    }
    if (naming.Rest().size() < modbus::crcLength) {
        naming.TakeCut("check");
        return;
    }
    const std::string expected = RtuCheck(line.substr(0, length));
    naming.Take(modbus::crcLength, "check", CheckWord(naming.Rest().starts_with(expected), ShortHex(expected)));
}

void NameModbusTcp(Naming& naming) {
    constexpr std::size_t headLength = 6;
    while (!naming.Rest().empty()) {
        const Body head = PlainBody(naming.line, naming.next, naming.Rest().size());
        BodyFields fields(head, naming.fields);
        const auto word = [&](std::size_t at) {
            return std::max(fields.Peek(at), 0) * 256 + std::max(fields.Peek(at + 1), 0);
        };
        const int length = word(4);
        if (naming.Rest().size() < headLength + 2 || word(2) != 0 || length < 2) {
            return;
        }
        TakeWord(fields, "transaction");
        TakeWord(fields, "protocol");
        TakeWord(fields, "length");
        naming.next += headLength;
        const std::size_t size = std::min(static_cast<std::size_t>(length), naming.Rest().size());
        const bool isWhole = TakeBody(PlainBody(naming.line, naming.next, size), naming);
        if (isWhole && size < static_cast<std::size_t>(length)) {
            naming.TakeCut("the rest");
        }
    }
}

void NameModbusAscii(Naming& naming) {
    while (naming.Rest().find(modbus::colon) != std::string_view::npos) {
        naming.TakeUnknown(naming.Rest().find(modbus::colon));
        NameAsciiFrame(naming);
    }
}

}  // namespace protocols
