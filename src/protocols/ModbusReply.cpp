#include "protocols/ModbusReply.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "protocols/ModbusCheck.h"
#include "protocols/ModbusNumbers.h"

namespace protocols {

namespace {

using Kind = ModbusReply::Kind;

constexpr int readCoils = 1;
constexpr int readHoldingRegisters = 3;
constexpr int readInputRegisters = 4;
constexpr int writeRegister = 6;
constexpr int writeRegisters = 16;
constexpr int exceptionBit = 0x80;

constexpr double lengthError = -32100;

// The decimal text of a number of millionths, without trailing zeros.
void AppendMillionths(std::string& text, long long millionths) {
    constexpr long long one = 1000000;
    std::array<char, 24> digits{};
    // With one more in front, the decimals keep their leading zeros.
    char* end = std::to_chars(digits.data(), digits.data() + digits.size(), one + std::abs(millionths) % one).ptr;
    while (end > digits.data() + 1 && end[-1] == '0') {
        --end;
    }
    text += millionths < 0 ? "-" : "";
    std::array<char, 24> whole{};
    text.append(whole.data(), std::to_chars(whole.data(), whole.data() + whole.size(), std::abs(millionths) / one).ptr);
    if (end > digits.data() + 1) {
        text += '.';
        text.append(digits.data() + 1, end);
    }
}

// Puts values into mbvalues from index 1 on, and their text beside them, until there is no more room.
class Values {
  public:
    explicit Values(ModbusState& modbus) : modbus_(modbus) {}

    void Add(double value) { static_cast<void>(Store(value)); }

    void AddInteger(int value) {
        if (Store(value)) {
            text += std::to_string(value);
            text += ' ';
        }
    }

    // Rounded to 6 decimals, ties to even. A run takes thousands of these, so value and text are made from one whole
    // number of millionths, which a float of this range (below 2^31) never lets overflow.
    void AddFloat(std::uint32_t word) {
        constexpr double scale = 1e6;
        const long long millionths = std::llrint(BitsToFloat(word) * scale);
        Judge(word);
        if (Store(static_cast<double>(millionths) / scale)) {
            AppendMillionths(text, millionths);
            text += ' ';
        }
    }

    // As it came, in a framing that has no text for it.
    void AddUnrounded(std::uint32_t word) {
        Judge(word);
        Add(BitsToFloat(word));
    }

    // Eight coils, the lowest bit first.
    void AddCoils(int byte) {
        for (int bit = 0; bit < 8; ++bit) {
            const bool on = (byte >> bit & 1) != 0;
            if (Store(on ? 1 : 0)) {
                text += on ? "1 " : "0 ";
            }
        }
    }

    std::size_t Count() const { return next_ - 1; }

    std::string text;
    std::bitset<126> outOfRange;

  private:
    // Of the number that is stored next.
    void Judge(std::uint32_t word) {
        if (next_ < outOfRange.size()) {
            outOfRange[next_] = IsOutOfRange(word);
        }
    }

    bool Store(double value) {
        if (next_ == modbus_.mbvalues.size()) {
            return false;
        }
        modbus_.mbvalues[next_++] = value;
        return true;
    }

    ModbusState& modbus_;
    std::size_t next_ = 1;
};

ModbusReply Reply(std::string text, std::size_t count = 0) {
    return {text.empty() ? Kind::Empty : Kind::Values, std::move(text), count};
}

ModbusReply Reply(Values& values) {
    ModbusReply reply = Reply(std::move(values.text), values.Count());
    reply.outOfRange = values.outOfRange;
    return reply;
}

ModbusReply NoResponse(ModbusState& modbus) {
    modbus.mbvalues[1] = lengthError;
    return {Kind::NoResponse, "No Response", 0};
}

ModbusReply LengthMismatch(ModbusState& modbus) {
    modbus.mbvalues[1] = lengthError;
    return Reply({});
}

ModbusReply Exception(ModbusState& modbus, int code) {
    modbus.mbvalues[1] = code;
    return {Kind::Exception, "Ex.Error", 0};
}

int ByteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

int WordAt(std::string_view bytes, std::size_t index) {
    return ByteAt(bytes, index) * 256 + ByteAt(bytes, index + 1);
}

int SignedWordAt(std::string_view bytes, std::size_t index) {
    const int word = WordAt(bytes, index);
    return word > 32767 ? word - 65536 : word;
}

std::uint32_t DoubleWordAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint32_t>(WordAt(bytes, index)) << 16U |
           static_cast<std::uint32_t>(WordAt(bytes, index + 2));
}

// The parts of an RTU reply that was checked: slave, function, byte count, data, CRC.
constexpr std::size_t byteCountAt = 2;
constexpr std::size_t dataAt = 3;
constexpr std::size_t crcLength = 2;
constexpr std::size_t headAndCrc = dataAt + crcLength;

// As many data as the reply counts, or fewer when it ends before: the CRC is no datum.
std::string_view CountedData(std::string_view reply) {
    const auto count = static_cast<std::size_t>(ByteAt(reply, byteCountAt));
    return reply.substr(dataAt, std::min(count, reply.size() - headAndCrc));
}

ModbusReply DecodeCoils(ModbusState& modbus, std::string_view reply) {
    Values values(modbus);
    for (const char byte : CountedData(reply)) {
        values.AddCoils(static_cast<unsigned char>(byte));
    }
    return Reply(values);
}

ModbusReply DecodeFloats(ModbusState& modbus, std::string_view reply) {
    const std::string_view data = CountedData(reply);
    Values values(modbus);
    for (std::size_t at = 0; at + 4 <= data.size(); at += 4) {
        values.AddFloat(DoubleWordAt(data, at));
    }
    return Reply(values);
}

ModbusReply DecodeIntegers(ModbusState& modbus, std::string_view reply) {
    const auto count = static_cast<std::size_t>(ByteAt(reply, byteCountAt));
    if (reply.size() != count + headAndCrc) {
        return LengthMismatch(modbus);
    }
    Values values(modbus);
    std::size_t at = dataAt;
    for (; at + 2 <= dataAt + count; at += 2) {
        values.AddInteger(SignedWordAt(reply, at));
    }
    // Readers of the stations' pointers expect the check word behind the data.
    if (at + 2 <= reply.size()) {
        values.Add(SignedWordAt(reply, at));
    }
    return Reply(values);
}

ModbusReply DecodeWritten(ModbusState& modbus, std::string_view reply) {
    constexpr std::size_t length = 8;
    if (reply.size() != length) {
        return LengthMismatch(modbus);
    }
    if (ByteAt(reply, 1) == writeRegister) {
        return Reply(std::to_string(SignedWordAt(reply, 4)) + " ");
    }
    std::string text;
    for (const int part : {ByteAt(reply, 0), ByteAt(reply, 1), WordAt(reply, 2), WordAt(reply, 4), WordAt(reply, 6)}) {
        text += std::to_string(part) + " ";
    }
    return Reply(std::move(text));
}

ModbusReply DecodeRtu(ModbusState& modbus, std::string_view reply) {
    switch (ByteAt(reply, 1)) {
        case readCoils:
            return DecodeCoils(modbus, reply);
        case readHoldingRegisters:
            return modbus.floatread ? DecodeFloats(modbus, reply) : DecodeIntegers(modbus, reply);
        case readInputRegisters:
            return modbus.floatread ? Reply({}) : DecodeIntegers(modbus, reply);
        case writeRegister:
        case writeRegisters:
            return DecodeWritten(modbus, reply);
        default:
            return Reply({});
    }
}

// The message of an ASCII reply behind its colon: pairs of digits for address, function, byte count and data.
constexpr std::size_t pairsFrom = 6;

int PairAt(std::string_view pairs, std::size_t index) {
    return HexNumber(pairs.substr(index, 2));
}

ModbusReply DecodeAsciiCoils(ModbusState& modbus, std::string_view pairs) {
    constexpr std::size_t countAt = 4;
    // The pair behind the data is taken too; the coils asked for stand in front of it.
    const auto digits = static_cast<std::size_t>(PairAt(pairs, countAt) + 1) * 2;
    const std::string_view data = pairs.substr(pairsFrom, digits);
    Values values(modbus);
    for (std::size_t at = 0; at < data.size(); at += 2) {
        values.AddCoils(PairAt(data, at));
    }
    return Reply(values);
}

ModbusReply DecodeAsciiFloats(ModbusState& modbus, std::string_view pairs) {
    constexpr std::size_t digitsPerFloat = 8;
    Values values(modbus);
    for (std::size_t at = pairsFrom; at + digitsPerFloat <= pairs.size(); at += digitsPerFloat) {
        values.AddUnrounded(HexToWord(pairs.substr(at, digitsPerFloat)));
    }
    return {values.Count() > 0 ? Kind::Values : Kind::Empty, {}, values.Count(), values.outOfRange};
}

}  // namespace

ModbusReply ParseRtuReply(ModbusState& modbus, const std::string& reply) {
    constexpr std::size_t shortest = 5;
    if (reply.size() < shortest) {
        return NoResponse(modbus);
    }
    modbus.mbvalues.fill(0);
    const std::size_t crcAt = reply.size() - crcLength;
    const int crc = ModbusCrc(std::string_view(reply).substr(0, crcAt));
    if (ByteAt(reply, crcAt) != crc % 256 || ByteAt(reply, crcAt + 1) != crc / 256) {
        modbus.mbvalues[1] = ByteAt(reply, byteCountAt);
        return {Kind::CrcError, "CRC ERROR", 0};
    }
    if ((ByteAt(reply, 1) & exceptionBit) != 0) {
        return Exception(modbus, ByteAt(reply, byteCountAt));
    }
    return DecodeRtu(modbus, reply);
}

ModbusReply ParseAsciiReply(ModbusState& modbus, const std::string& reply) {
    constexpr std::size_t shortest = 10;
    constexpr std::size_t functionAt = 2;
    const std::size_t colon = reply.find(':');
    const std::string_view frame = std::string_view(reply).substr(colon == std::string::npos ? 0 : colon);
    if (frame.size() < shortest) {
        return NoResponse(modbus);
    }
    // Only these: what the last long reply left behind them stays.
    std::fill_n(modbus.mbvalues.begin(), 104, 0.0);
    // The message ends where the digits do: a lost carrier's text is no datum.
    const std::string_view pairs =
        frame.substr(1, std::min(frame.find_first_not_of("0123456789ABCDEFabcdef", 1), frame.size()) - 1);
    if (pairs.size() < pairsFrom || frame.find(':', 1) != std::string_view::npos) {
        return Reply({});
    }
    const int function = PairAt(pairs, functionAt);
    if ((function & exceptionBit) != 0) {
        return Exception(modbus, PairAt(pairs, functionAt + 2));
    }
    if (function == readCoils) {
        return DecodeAsciiCoils(modbus, pairs);
    }
    if (function == readHoldingRegisters && modbus.floatread) {
        return DecodeAsciiFloats(modbus, pairs);
    }
    return Reply({});
}

}  // namespace protocols
