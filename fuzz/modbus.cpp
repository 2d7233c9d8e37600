// Replies of any bytes to the Modbus parsers, in all framings, both word orders and both kinds of numbers, and numbers
// of any size to the conversions and the builders.
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "protocols/WireNumbers.h"
#include "protocols/modbus/ModbusCheck.h"
#include "protocols/modbus/ModbusFraming.h"
#include "protocols/modbus/ModbusReply.h"
#include "protocols/modbus/ModbusRequest.h"

using namespace protocols;

namespace {

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Any bytes to a request for two registers, alone and around a right reply to it in TCP framing.
void Unwrap(const std::string& reply) {
    const std::string rtu("\x01\x03\x00\x64\x00\x02\x85\xD4", 8);
    const std::string request = TcpFrame(0x1501, rtu);
    const std::string head("\x15\x01\0\0\0\x07\x01\x03\x04", 9);
    for (const std::string& received : {reply, head + reply, reply + head + "abcd"}) {
        const auto own = OwnTcpReply(received, request);
        core::Station station;
        station.framing = core::Framing::Tcp;
        Check(WholeModbusReply(station, request).judge(received) == own.has_value());
        ModbusState modbus;
        Check(!own || ParseRtuReply(modbus, *own).kind != ModbusReply::Kind::CrcError);
        station.framing = core::Framing::Rtu;
        WholeModbusReply(station, rtu).judge(received);
        station.framing = core::Framing::Ascii;
        for (const bool standard : {false, true}) {
            station.standardFraming = standard;
            WholeModbusReply(station, ":01030064000296\r\n").judge(received);
            WholeModbusReply(station, ":01030064000296\r\n").judge(":" + received + "\r\n");
        }
    }
}

void Parse(std::string reply, bool floatread) {
    ModbusState modbus;
    modbus.floatread = floatread;
    modbus.wordOrder = reply.size() % 2 == 0 ? core::WordOrder::LowFirst : core::WordOrder::HighFirst;
    ParseAsciiReply(modbus, reply);
    ParseAsciiReply(modbus, reply, AsciiCheck::Standard);
    ParseRtuReply(modbus, reply);
    // Past the check, which random bytes do not meet.
    const int crc = ModbusCrc(reply);
    reply += {static_cast<char>(crc), static_cast<char>(crc >> 8)};
    Check(ParseRtuReply(modbus, reply).kind != ModbusReply::Kind::CrcError);
    for (const double value : modbus.mbvalues) {
        Check(std::isfinite(value));
    }
}

void Convert(std::uint64_t bits) {
    const auto number = std::bit_cast<double>(bits);
    const auto bytes = FloatToBytes(number);
    const std::uint32_t word = static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
                               static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
    const auto stored = static_cast<double>(std::bit_cast<float>(word));
    if (std::isnormal(stored) && std::fabs(number) < std::ldexp(1.0, 128)) {
        Check(std::fabs(stored) <= std::fabs(number) &&
              std::fabs(number - stored) < std::ldexp(std::fabs(number), -23));
    }
    Check(std::isfinite(BitsToFloat(static_cast<std::uint32_t>(bits))));
    PowerOfTwo(static_cast<int>(bits));

    std::vector<float> data = {std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
    for (const int command : {3, 5, 15, 16}) {
        BuildRtuRequest(command, 1, number, data);
        BuildAsciiRequest(command, 1, number, data);
        BuildWriteFrame({}, number, 1, command, 1);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    Parse(input, false);
    Parse(input, true);
    Unwrap(input);
    HexToFloat(input);
    BitsToFloat(input);
    Check(std::isfinite(BitsToNumber(input, 0.5)));
    if (size >= sizeof(std::uint64_t)) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, bytes, sizeof bits);
        Convert(bits);
    }
    return 0;
}
