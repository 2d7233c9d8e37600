#include "fieldsim/ModbusSlave.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

#include "fieldsim/Checks.h"
#include "fieldsim/ModbusBytes.h"

namespace fieldsim {

namespace {

// A frame that stops for this long is given up. A slave on a wire waits for 3.5 characters; the pieces in which
// a pseudo-terminal brings a frame lie further apart.
constexpr std::uint64_t kFrameGapMs = 200;

constexpr std::size_t kLongestFrame = 256;

// The length of an RTU request that begins like this; 0 when it cannot be told yet.
std::size_t RtuLength(std::string_view start) {
    if (start.size() < 2) {
        return 0;
    }
    const int function = ByteAt(start, 1);
    if (function >= 1 && function <= 6) {
        return 8;
    }
    if (function == kWriteCoils || function == kWriteRegisters) {
        return start.size() > 6 ? 9U + ByteAt(start, 6) : 0;
    }
    return start.size();  // not a function of ours: whatever has come is tried as a whole
}

constexpr std::size_t kTcpHead = 6;

// The length of a request in TCP framing that begins like this, at least that of its head; 0: it is none.
std::size_t TcpLength(std::string_view start) {
    if (start.size() < kTcpHead) {
        return kTcpHead;
    }
    const int length = WordAt(start, 4);
    return WordAt(start, 2) == 0 && length >= 2 && length <= 254 ? kTcpHead + static_cast<std::size_t>(length) : 0;
}

bool GoodCrc(std::string_view frame) {
    const std::string_view message = frame.substr(0, frame.size() - 2);
    return frame.substr(frame.size() - 2) == LowHigh(ModbusCrc16(message));
}

// Two hexadecimal digits as a byte; nothing when they are none.
std::optional<char> HexByte(std::string_view digits) {
    if (digits.size() < 2 || std::isxdigit(static_cast<unsigned char>(digits[0])) == 0 ||
        std::isxdigit(static_cast<unsigned char>(digits[1])) == 0) {
        return std::nullopt;
    }
    return static_cast<char>(std::strtol(std::string(digits.substr(0, 2)).c_str(), nullptr, 16));
}

// The message of a line between ":" and CR: address, function, and two words of register and datum. The masters of
// this field write the LRC without padding, one to three digits, so it is whatever stands behind the fixed fields.
std::optional<std::string> AsciiMessage(std::string_view line) {
    constexpr std::size_t digits = 12;
    std::string message;
    for (std::size_t i = 0; i < digits; i += 2) {
        const auto byte = line.size() > digits ? HexByte(line.substr(i, 2)) : std::nullopt;
        if (!byte) {
            return std::nullopt;
        }
        message += *byte;
    }
    const std::string check(line.substr(digits));
    char* end = nullptr;
    const long lrc = std::strtol(check.c_str(), &end, 16);
    const bool good = check.size() <= 3 && *end == '\0' && (lrc & 0xFF) == ModbusLrc8(message);
    return good ? std::optional(message) : std::nullopt;
}

std::string WordBytes(double value) {
    const auto bits = static_cast<unsigned>(static_cast<int>(value));
    return {static_cast<char>(bits >> 8U), static_cast<char>(bits)};
}

}  // namespace

ModbusMap MakeModbusMap(std::vector<Signal> registers, std::vector<Signal> coils, bool floatInOneRegister,
                        const Behaviour& behaviour) {
    ModbusMap map;
    map.floatInOneRegister = floatInOneRegister;
    for (const Signal& signal : registers) {
        const int further = signal.kind == Kind::Float && !floatInOneRegister ? 1 : 0;
        map.lastRegister = std::max(map.lastRegister, signal.position + further);
    }
    for (const Signal& coil : coils) {
        map.lastCoil = std::max(map.lastCoil, coil.position);
    }
    map.registers = std::make_shared<SignalList>(std::move(registers), behaviour);
    map.coils = std::make_shared<SignalList>(std::move(coils), behaviour);
    return map;
}

ModbusSlave::ModbusSlave(int address, Framing framing, ModbusMap map, std::uint32_t answerMs)
    : address_(address), framing_(framing), map_(std::move(map)), answerMs_(answerMs) {
    RunClockOf(*map_.registers);
    RunClockOf(*map_.coils);
}

std::vector<Answer> ModbusSlave::Receive(std::string_view bytes, const Moment& now) {
    MakeDue(now);
    if (now.milliseconds > lastByteAt_ + kFrameGapMs) {
        buffer_.clear();
    }
    lastByteAt_ = now.milliseconds;
    buffer_ += bytes;
    std::vector<Answer> answers;
    while (const auto message = Next()) {
        if (ByteAt(*message, 0) != address_ || address_ == 0) {
            continue;
        }
        ++requests_;
        const std::string_view request = std::string_view(*message).substr(1);
        if (LineIsDown() || StaysSilent(request)) {
            continue;
        }
        if (const auto answer = Execute(request, now)) {
            answers.push_back(
                {ModbusFrame(framing_, message->substr(0, 1) + answer->bytes, transaction_), answer->delayMs});
        }
    }
    return answers;
}

std::optional<std::string> ModbusSlave::NextRtu() {
    for (std::size_t start = 0; start < buffer_.size(); ++start) {
        const std::string_view rest = std::string_view(buffer_).substr(start);
        const std::size_t length = RtuLength(rest);
        if (length >= 4 && length <= rest.size() && GoodCrc(rest.substr(0, length))) {
            std::string message(rest.substr(0, length - 2));
            buffer_.erase(0, start + length);
            return message;
        }
    }
    if (buffer_.size() > 2 * kLongestFrame) {
        buffer_.erase(0, buffer_.size() - kLongestFrame);
    }
    return std::nullopt;
}

std::optional<std::string> ModbusSlave::NextAscii() {
    for (std::size_t end = buffer_.find('\r'); end != std::string::npos; end = buffer_.find('\r')) {
        const std::string line = buffer_.substr(0, end);
        buffer_.erase(0, end + 1);
        const std::size_t colon = line.rfind(':');
        auto message =
            colon != std::string::npos ? AsciiMessage(std::string_view(line).substr(colon + 1)) : std::nullopt;
        if (message) {
            return message;
        }
    }
    if (buffer_.size() > 4 * kLongestFrame) {
        buffer_.clear();
    }
    return std::nullopt;
}

// What is no frame ends the connection on a real one; here it is dropped.
std::optional<std::string> ModbusSlave::NextTcp() {
    const std::size_t length = TcpLength(buffer_);
    if (length > buffer_.size()) {
        return std::nullopt;
    }
    if (length == 0) {
        buffer_.clear();
        return std::nullopt;
    }
    transaction_ = buffer_.substr(0, 2);
    std::string message = buffer_.substr(kTcpHead, length - kTcpHead);
    buffer_.erase(0, length);
    return message;
}

std::optional<std::string> ModbusSlave::Next() {
    return framing_ == Framing::Rtu ? NextRtu() : framing_ == Framing::Ascii ? NextAscii() : NextTcp();
}

bool ModbusSlave::StaysSilent(std::string_view request) const {
    const int function = ByteAt(request, 0);
    const bool registers = function == 3 || function == 4 || function == kWriteRegister || function == kWriteRegisters;
    if (silentRegister_ == 0 || !registers || request.size() < 5) {
        return false;
    }
    const int first = WordAt(request, 1) + 1;
    const int count = function == kWriteRegister ? 1 : WordAt(request, 3);
    return first <= silentRegister_ && silentRegister_ < first + count;
}

std::optional<Answer> ModbusSlave::Execute(std::string_view request, const Moment& now) {
    return IsWrite(ByteAt(request, 0)) ? AnswerWrite(request, now) : Answer{Read(request, now), answerMs_};
}

std::string ModbusSlave::Read(std::string_view request, const Moment& now) {
    const int function = ByteAt(request, 0);
    if (function < 1 || function > 4 || request.size() != 5) {
        return ModbusExceptionPart(function, kIllegalFunction);
    }
    const bool coils = function <= 2;
    const int first = WordAt(request, 1) + 1;
    const int count = WordAt(request, 3);
    // The data of an answer have to fit 250 bytes.
    const int most = coils ? 2000 : map_.floatInOneRegister ? 62 : 125;
    if (count < 1 || count > most) {
        return ModbusExceptionPart(function, kIllegalValue);
    }
    if (first + count - 1 > (coils ? map_.lastCoil : map_.lastRegister) && (coils || !InArchive(first, count))) {
        return ModbusExceptionPart(function, kIllegalAddress);
    }
    const std::string data = coils ? ReadCoils(first, count, now) : ReadRegisters(first, count, now);
    return std::string{static_cast<char>(function), static_cast<char>(data.size())} + data;
}

SignalList& ModbusSlave::ListOf(int number) const {
    return number > map_.lastRegister ? *map_.archive : *map_.registers;
}

bool ModbusSlave::InArchive(int first, int count) const {
    bool all = first > map_.lastRegister;
    for (int number = first; number < first + count; ++number) {
        all = all && Owner(number) != nullptr;
    }
    return all;
}

const Signal* ModbusSlave::Owner(int number) const {
    const SignalList& list = ListOf(number);
    const Signal* signal = list.At(number);
    if (signal == nullptr && !map_.floatInOneRegister) {
        const Signal* before = list.At(number - 1);
        return before != nullptr && before->kind == Kind::Float ? before : nullptr;
    }
    return signal;
}

std::string ModbusSlave::ReadCoils(int first, int count, const Moment& now) {
    std::string data(static_cast<std::size_t>((count + 7) / 8), '\0');
    for (int i = 0; i < count; ++i) {
        const Signal* coil = map_.coils->At(first + i);
        if (coil != nullptr && map_.coils->Serve(*coil, now) != 0) {
            char& byte = data[static_cast<std::size_t>(i / 8)];
            byte = static_cast<char>(byte | (1 << (i % 8)));
        }
    }
    return data;
}

std::string ModbusSlave::ReadRegisters(int first, int count, const Moment& now) {
    std::string data;
    for (int i = 0; i < count; ++i) {
        data += RegisterBytes(first + i, now);
    }
    return data;
}

std::string ModbusSlave::RegisterBytes(int number, const Moment& now) {
    SignalList& list = ListOf(number);
    if (const Signal* signal = list.At(number)) {
        const double value = list.Serve(*signal, now);
        if (signal->kind != Kind::Float) {
            return WordBytes(value);
        }
        return map_.floatInOneRegister ? FloatBytes(value) : FloatBytes(value).substr(0, 2);
    }
    if (map_.floatInOneRegister) {
        return FloatBytes(0);
    }
    const Signal* before = Owner(number);
    return before != nullptr ? FloatBytes(list.ValueAt(*before, now.local)).substr(2) : WordBytes(0);
}

std::string ModbusFrame(Framing framing, std::string_view message, std::string_view transaction) {
    if (framing == Framing::Tcp) {
        const std::string length = {static_cast<char>(message.size() >> 8), static_cast<char>(message.size())};
        return std::string(transaction) + std::string(2, '\0') + length + std::string(message);
    }
    if (framing == Framing::Rtu) {
        return std::string(message) + LowHigh(ModbusCrc16(message));
    }
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string frame = ":";
    for (const char c : std::string(message) + static_cast<char>(ModbusLrc8(message))) {
        frame += digits[static_cast<std::uint8_t>(c) / 16];
        frame += digits[static_cast<std::uint8_t>(c) % 16];
    }
    return frame + "\r\n";
}

std::string ModbusException(std::string_view requestFrame, int code) {
    if (requestFrame.size() > kTcpHead + 1 && TcpLength(requestFrame) == requestFrame.size() &&
        !GoodCrc(requestFrame)) {
        const std::string_view message = requestFrame.substr(kTcpHead);
        return ModbusFrame(Framing::Tcp,
                           std::string(message.substr(0, 1)) + ModbusExceptionPart(ByteAt(message, 1), code),
                           requestFrame.substr(0, 2));
    }
    if (requestFrame.size() > 1 && requestFrame[0] != ':') {
        return ModbusFrame(Framing::Rtu,
                           std::string(requestFrame.substr(0, 1)) + ModbusExceptionPart(ByteAt(requestFrame, 1), code));
    }
    const auto address = requestFrame.size() > 4 ? HexByte(requestFrame.substr(1, 2)) : std::nullopt;
    const auto function = requestFrame.size() > 4 ? HexByte(requestFrame.substr(3, 2)) : std::nullopt;
    if (!address || !function) {
        return {};
    }
    return ModbusFrame(Framing::Ascii, *address + ModbusExceptionPart(static_cast<std::uint8_t>(*function), code));
}

}  // namespace fieldsim
