#include "protocols/modbus/ModbusFraming.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/Text.h"

namespace protocols {

namespace {

constexpr int exceptionBit = 0x80;
constexpr int readStatus = 7;
constexpr std::size_t addressLength = 6;  // of a message with slave, function, register and quantity or datum
constexpr std::size_t crcLength = 2;

int ByteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

std::size_t WordAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::size_t>(ByteAt(bytes, index) * 256 + ByteAt(bytes, index + 1));
}

std::string Word(std::size_t value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string Crc(std::string_view message) {
    const int crc = ModbusCrc(message);
    return {static_cast<char>(crc), static_cast<char>(crc >> 8)};
}

// The data of a reply to a read: coils in bytes; registers of 16 bits or, on some stations, of 32.
bool HasQuantity(std::size_t bytes, std::size_t quantity, bool registers) {
    return registers ? bytes == 2 * quantity || bytes == 4 * quantity : bytes == (quantity + 7) / 8;
}

// Whether a message is all of a reply to another one: a refusal, what was to be read, or a write given back.
bool Answers(std::string_view reply, std::string_view request) {
    constexpr std::size_t shortest = 3;
    if (reply.size() < shortest || request.size() < 2 || reply[0] != request[0]) {
        return false;
    }
    const int function = ByteAt(request, 1);
    if (ByteAt(reply, 1) != function || function == readStatus) {
        return (ByteAt(reply, 1) & ~exceptionBit) == function && reply.size() == shortest;
    }
    if (request.size() < addressLength) {
        return false;
    }
    if (function > 4) {
        return reply == request.substr(0, addressLength);
    }
    const auto count = static_cast<std::size_t>(ByteAt(reply, 2));
    return reply.size() == shortest + count && HasQuantity(count, WordAt(request, 4), function > 2);
}

bool IsWholeRtu(std::string_view received, std::string_view request) {
    if (received.size() <= crcLength || request.size() <= crcLength) {
        return false;
    }
    const std::string_view message = received.substr(0, received.size() - crcLength);
    return Answers(message, request.substr(0, request.size() - crcLength)) && received.ends_with(Crc(message));
}

std::string BytesOf(std::string_view pairs) {
    std::string bytes;
    for (std::size_t at = 0; at + 2 <= pairs.size(); at += 2) {
        bytes += static_cast<char>(HexNumber(pairs.substr(at, 2)));
    }
    return bytes;
}

bool IsWholeAscii(std::string_view received, std::string_view request, AsciiCheck check) {
    const std::size_t colon = received.find(':');
    if (colon == std::string_view::npos || !received.ends_with("\r\n")) {
        return false;
    }
    const std::string_view digits = received.substr(colon + 1, received.size() - colon - 3);
    if (digits.find_first_not_of("0123456789ABCDEFabcdef") != std::string_view::npos) {
        return false;
    }
    const std::string asked = BytesOf(request.substr(1, 2 * addressLength));
    // The check has two digits, but where nobody looks at it any number of them.
    for (const std::size_t length : {2U, 1U, 3U}) {
        if (digits.size() <= length || (digits.size() - length) % 2 != 0) {
            continue;
        }
        const std::string_view pairs = digits.substr(0, digits.size() - length);
        const bool isRight = length == 2 && HexNumber(digits.substr(pairs.size())) == ModbusLrc(pairs) % 256;
        if (Answers(BytesOf(pairs), asked) && (isRight || check == AsciiCheck::Required)) {
            return true;
        }
    }
    return false;
}

// The head of TCP framing: transaction, protocol, length of what follows it.
constexpr std::size_t protocolAt = 2;
constexpr std::size_t lengthAt = 4;
constexpr std::size_t messageAt = 6;
constexpr std::size_t longestMessage = 254;

// The length of the frame that these bytes begin with; 0 when they begin with none.
std::size_t TcpLength(std::string_view bytes) {
    if (bytes.size() < messageAt || WordAt(bytes, protocolAt) != 0) {
        return 0;
    }
    const std::size_t length = WordAt(bytes, lengthAt);
    return length >= 2 && length <= longestMessage ? messageAt + length : 0;
}

double SilenceMs(const core::Station& station) {
    constexpr double characters = 3.5;
    constexpr double bitsPerCharacter = 11;
    constexpr double fastest = 19200;
    constexpr double aboveMs = 1.75;
    if (!station.ip.empty()) {
        return 0;
    }
    const double baud = core::Val(station.settings);
    return baud > fastest ? aboveMs : characters * bitsPerCharacter * 1000 / (baud > 0 ? baud : 9600);
}

}  // namespace

std::uint32_t InWordOrder(const ModbusState& modbus, std::uint32_t word) {
    const bool lowFirst = modbus.wordOrder == core::WordOrder::LowFirst && !modbus.rtu32bit;
    return lowFirst ? std::rotl(word, 16) : word;
}

std::string TcpFrame(int transaction, std::string_view rtuFrame) {
    const std::string_view message = rtuFrame.substr(0, rtuFrame.size() - std::min(rtuFrame.size(), crcLength));
    return Word(static_cast<std::size_t>(transaction)) + Word(0) + Word(message.size()) + std::string(message);
}

std::optional<std::string> OwnTcpReply(std::string_view received, std::string_view request) {
    const std::string_view transaction = request.substr(0, 2);
    const std::string_view asked = request.substr(std::min(messageAt, request.size()));
    while (!received.empty()) {
        const std::size_t length = TcpLength(received);
        if (length == 0) {
            received.remove_prefix(1);  // the rest of a reply whose beginning came too late for its request
            continue;
        }
        if (length > received.size()) {
            return std::nullopt;
        }
        const std::string_view message = received.substr(messageAt, length - messageAt);
        if (received.starts_with(transaction) && Answers(message, asked)) {
            return std::string(message) + Crc(message);
        }
        received.remove_prefix(length);
    }
    return std::nullopt;
}

WholeReply WholeModbusReply(const core::Station& station, const std::string& request) {
    const AsciiCheck check = station.standardFraming ? AsciiCheck::Standard : AsciiCheck::Required;
    switch (station.framing) {
        case core::Framing::Tcp:
            return {[request](std::string_view received) { return OwnTcpReply(received, request).has_value(); }, 0,
                    true};
        case core::Framing::Ascii:
            return {[=](std::string_view received) { return IsWholeAscii(received, request, check); }};
        case core::Framing::Rtu:
            break;
    }
    return {[request](std::string_view received) { return IsWholeRtu(received, request); }, SilenceMs(station)};
}

}  // namespace protocols
