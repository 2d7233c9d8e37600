#include "protocols/modbus/ModbusReply.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "protocols/WireNumbers.h"
#include "protocols/modbus/ModbusCheck.h"
#include "protocols/modbus/ModbusConstants.h"
#include "protocols/modbus/ModbusFraming.h"

namespace protocols {

namespace {

using Kind = ModbusReply::Kind;

constexpr double lengthError = -32100;

// Puts values into mbvalues from index 1 on until there is no more room.
class Values {
  public:
    explicit Values(ModbusState& modbus) : modbus_(modbus) {}

    void Add(double value) {
        if (next_ < modbus_.mbvalues.size()) {
            modbus_.mbvalues[next_++] = value;
        }
    }

    // Rounded to 6 decimals, ties to even. A float of this range (below 2^31) does not overflow the millionths.
    void AddFloat(std::uint32_t word) {
        constexpr double scale = 1e6;
        Add(static_cast<double>(std::llrint(WireFloat(Judged(word)) * scale)) / scale);
    }

    // As it came.
    void AddUnrounded(std::uint32_t word) { Add(WireFloat(Judged(word))); }

    // Eight coils, the lowest bit first.
    void AddCoils(int byte) {
        for (int bit = 0; bit < 8; ++bit) {
            Add((byte >> bit & 1) != 0 ? 1 : 0);
        }
    }

    std::size_t Count() const { return next_ - 1; }

    std::bitset<126> outOfRange;

  private:
    // The float of these registers, judged for the number that is added next.
    std::uint32_t Judged(std::uint32_t registers) {
        const std::uint32_t word = InWordOrder(modbus_, registers);
        if (next_ < outOfRange.size()) {
            outOfRange[next_] = IsOutOfRange(word);
        }
        return word;
    }

    ModbusState& modbus_;
    std::size_t next_ = 1;
};

ModbusReply Reply(const Values& values) {
    return {values.Count() > 0 ? Kind::Values : Kind::Empty, values.Count(), values.outOfRange};
}

ModbusReply NoResponse(ModbusState& modbus) {
    modbus.mbvalues[1] = lengthError;
    return {Kind::NoResponse, 0};
}

ModbusReply LengthMismatch(ModbusState& modbus) {
    modbus.mbvalues[1] = lengthError;
    return {Kind::Empty, 0};
}

ModbusReply Exception(ModbusState& modbus, int code) {
    modbus.mbvalues[1] = code;
    return {Kind::Exception, 0};
}

ModbusReply CheckError(ModbusState& modbus, int thirdByte) {
    modbus.mbvalues[1] = thirdByte;
    return {Kind::CrcError, 0};
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

// As many data as the reply counts, or fewer when it ends before: the CRC is no datum.
std::string_view CountedData(std::string_view reply) {
    const auto count = static_cast<std::size_t>(ByteAt(reply, modbus::byteCountAt));
    return reply.substr(modbus::dataAt, std::min(count, reply.size() - modbus::shortestRtuReply));
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
    const auto count = static_cast<std::size_t>(ByteAt(reply, modbus::byteCountAt));
    if (reply.size() != count + modbus::shortestRtuReply) {
        return LengthMismatch(modbus);
    }
    Values values(modbus);
    std::size_t at = modbus::dataAt;
    for (; at + 2 <= modbus::dataAt + count; at += 2) {
        values.Add(SignedWordAt(reply, at));
    }
    // Readers of the stations' pointers expect the check word behind the data.
    if (at + 2 <= reply.size()) {
        values.Add(SignedWordAt(reply, at));
    }
    return Reply(values);
}

ModbusReply DecodeWritten(ModbusState& modbus, std::string_view reply) {
    if (reply.size() != modbus::writeLength + modbus::crcLength) {
        return LengthMismatch(modbus);
    }
    return {Kind::Values, 0};
}

ModbusReply DecodeRtu(ModbusState& modbus, std::string_view reply) {
    switch (ByteAt(reply, modbus::functionAt)) {
        case modbus::readCoils:
            return DecodeCoils(modbus, reply);
        case modbus::readHoldingRegisters:
            return modbus.floatread ? DecodeFloats(modbus, reply) : DecodeIntegers(modbus, reply);
        case modbus::readInputRegisters:
            return modbus.floatread ? ModbusReply{Kind::Empty, 0} : DecodeIntegers(modbus, reply);
        case modbus::writeRegister:
        case modbus::writeRegisters:
            return DecodeWritten(modbus, reply);
        default:
            return {Kind::Empty, 0};
    }
}

// The message of an ASCII reply behind its colon is one of digits, two a byte.
constexpr std::size_t pairsFrom = modbus::dataAt * modbus::digitsPerByte;

int PairAt(std::string_view pairs, std::size_t index) {
    return HexNumber(pairs.substr(index, modbus::digitsPerByte));
}

int PairOf(std::string_view pairs, std::size_t byte) {
    return PairAt(pairs, byte * modbus::digitsPerByte);
}

// Whether a frame ends in a check of two digits over all pairs before it, and in CR and LF.
bool HasRightLrc(std::string_view pairs, std::string_view frame) {
    const std::size_t checkAt = pairs.size() - modbus::digitsPerByte;
    return pairs.size() % 2 == 0 && frame.substr(1 + pairs.size(), 2) == modbus::asciiEnd &&
           PairAt(pairs, checkAt) == ModbusLrc(pairs.substr(0, checkAt)) % 256;
}

ModbusReply DecodeAsciiCoils(ModbusState& modbus, std::string_view pairs) {
    // The pair behind the data is taken too; the coils asked for stand in front of it.
    const auto digits = static_cast<std::size_t>(PairOf(pairs, modbus::byteCountAt) + 1) * 2;
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
    return Reply(values);
}

}  // namespace

ModbusReply ParseRtuReply(ModbusState& modbus, const std::string& reply) {
    if (reply.size() < modbus::shortestRtuReply) {
        return NoResponse(modbus);
    }
    modbus.mbvalues.fill(0);
    const std::size_t crcAt = reply.size() - modbus::crcLength;
    const int crc = ModbusCrc(std::string_view(reply).substr(0, crcAt));
    if (ByteAt(reply, crcAt) != crc % 256 || ByteAt(reply, crcAt + 1) != crc / 256) {
        return CheckError(modbus, ByteAt(reply, modbus::byteCountAt));
    }
    if ((ByteAt(reply, modbus::functionAt) & modbus::exceptionBit) != 0) {
        return Exception(modbus, ByteAt(reply, modbus::exceptionAt));
    }
    return DecodeRtu(modbus, reply);
}

ModbusReply ParseAsciiReply(ModbusState& modbus, const std::string& reply, AsciiCheck check) {
    const std::size_t colon = reply.find(modbus::colon);
    const std::string_view frame = std::string_view(reply).substr(colon == std::string::npos ? 0 : colon);
    if (frame.size() < modbus::shortestAsciiReply) {
        return NoResponse(modbus);
    }
    // Only these: what the last long reply left behind them stays.
    std::fill_n(modbus.mbvalues.begin(), 104, 0.0);
    // The message ends where the digits do: a lost carrier's text is no datum.
    const std::string_view pairs =
        frame.substr(1, std::min(frame.find_first_not_of(modbus::asciiDigits, 1), frame.size()) - 1);
    if (pairs.size() < pairsFrom || frame.find(modbus::colon, 1) != std::string_view::npos) {
        return {Kind::Empty, 0};
    }
    if (check == AsciiCheck::Standard && !HasRightLrc(pairs, frame)) {
        return CheckError(modbus, PairOf(pairs, modbus::byteCountAt));
    }
    const int function = PairOf(pairs, modbus::functionAt);
    if ((function & modbus::exceptionBit) != 0) {
        return Exception(modbus, PairOf(pairs, modbus::exceptionAt));
    }
    if (function == modbus::readCoils) {
        return DecodeAsciiCoils(modbus, pairs);
    }
    if (function == modbus::readHoldingRegisters && modbus.floatread) {
        return DecodeAsciiFloats(modbus, pairs);
    }
    return {Kind::Empty, 0};
}

}  // namespace protocols
