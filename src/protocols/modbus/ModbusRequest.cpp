#include "protocols/modbus/ModbusRequest.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>

#include "core/Text.h"
#include "protocols/WireNumbers.h"
#include "protocols/modbus/ModbusCheck.h"
#include "protocols/modbus/ModbusConstants.h"
#include "protocols/modbus/ModbusFraming.h"

namespace protocols {

namespace {

constexpr int bytesPerFloat = 4;

constexpr std::array<int, 9> commands = {modbus::readCoils,          modbus::readInputs, modbus::readHoldingRegisters,
                                         modbus::readInputRegisters, modbus::writeCoil,  modbus::writeRegister,
                                         modbus::readStatus,         modbus::writeCoils, modbus::writeRegisters};

constexpr const char* badDatum = "Bad DATA VALUE entered.";
constexpr double largestDatum = 65536;

// Why there can be no such request; empty when there can.
std::string AddressProblem(int command, int slave, double reg) {
    if (std::find(commands.begin(), commands.end(), command) == commands.end()) {
        return "Bad COMMAND TYPE selected.";
    }
    if (slave < 0 || slave > modbus::highestSlave) {
        return "Illegal Slave Address.";
    }
    const bool registerFits = reg >= 0 && reg <= modbus::highestRegister;
    return registerFits ? "" : "Bad REGISTER entered.";
}

bool Fits(double datum) {
    return std::fabs(datum) <= largestDatum;
}

// A negative datum as the word that stands for it.
double Unsigned(double datum) {
    return datum < 0 ? datum + 65536 : datum;
}

std::string DataProblem(std::vector<float>& data) {
    for (float& datum : data) {
        if (!Fits(datum)) {
            return badDatum;
        }
        datum = static_cast<float>(Unsigned(datum));
    }
    return {};
}

std::string RequestProblem(int command, int slave, double reg, std::vector<float>& data) {
    const std::string problem = AddressProblem(command, slave, reg);
    return problem.empty() ? DataProblem(data) : problem;
}

std::string Byte(int value) {
    return {static_cast<char>(value)};
}

// A word of the line, high byte first.
std::string Word(double value) {
    const auto word = static_cast<int>(std::nearbyint(value));
    return {static_cast<char>(word >> 8), static_cast<char>(word)};
}

std::string RtuDatum(int command, double datum) {
    return command == modbus::writeCoil ? Word(datum == 1 ? modbus::coilOn : 0) : Word(datum);
}

// Quantity and byte count in front of the data of a plain request. For the coils the quantity is half the number of
// data: that is what the stations take.
std::string RtuHeader(int command, std::size_t dataCount) {
    if (command == modbus::writeRegisters) {
        return Word(1) + Byte(4);
    }
    if (command == modbus::writeCoils) {
        const auto count = static_cast<double>(dataCount);
        return Byte(0) + Byte(static_cast<int>(std::nearbyint(count / 2))) + Byte(static_cast<int>(dataCount));
    }
    return {};
}

// Quantity and byte count in front of floats.
std::string FloatHeader(const ModbusState& modbus, int floats) {
    return Word(modbus.rtu32bit ? floats : 2 * floats) + Byte(floats * bytesPerFloat);
}

std::string FloatText(const ModbusState& modbus, double value) {
    std::uint32_t word = 0;
    for (const unsigned char byte : FloatToBytes(value)) {
        word = word << 8U | byte;
    }
    word = InWordOrder(modbus, word);
    return {static_cast<char>(word >> 24U), static_cast<char>(word >> 16U), static_cast<char>(word >> 8U),
            static_cast<char>(word)};
}

// The whole frame: slave, command, register, what follows it, CRC low byte first.
ModbusRequest RtuFrame(int command, int slave, double reg, const std::string& rest) {
    std::string frame = Byte(slave) + Byte(command) + Word(reg) + rest;
    const int crc = ModbusCrc(frame);
    frame += Byte(crc) + Byte(crc >> 8);
    return {frame, {}};
}

// A number in hexadecimal capitals, with "0" in front up to `digits`.
std::string HexText(double value, std::size_t digits) {
    std::array<char, 16> buffer{};
    const auto whole = static_cast<unsigned>(std::nearbyint(value));
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), whole, 16).ptr;
    const std::string text = core::UpperText({buffer.data(), static_cast<std::size_t>(end - buffer.data())});
    return std::string(digits - std::min(digits, text.size()), '0') + text;
}

// One datum of up to four digits is padded to four. Anything else, several data or none, becomes the decimal text of
// the number that the digits begin with.
std::string AsciiData(const std::vector<float>& data) {
    constexpr std::size_t width = 4;
    std::string text;
    for (const float datum : data) {
        text += HexText(datum, 1);
    }
    if (text.empty() || text.size() > width) {
        return core::NumberText(core::Val(text));
    }
    return std::string(width - text.size(), '0') + text;
}

}  // namespace

ModbusRequest BuildRtuRequest(int command, int slave, double reg, std::vector<float>& data) {
    std::string problem = RequestProblem(command, slave, reg, data);
    if (!problem.empty()) {
        return {{}, std::move(problem)};
    }
    std::string rest = RtuHeader(command, data.size());
    for (const float datum : data) {
        rest += RtuDatum(command, datum);
    }
    return RtuFrame(command, slave, reg, rest);
}

ModbusRequest BuildAsciiRequest(int command, int slave, double reg, std::vector<float>& data, AsciiCheck check) {
    std::string problem = RequestProblem(command, slave, reg, data);
    if (!problem.empty()) {
        return {{}, std::move(problem)};
    }
    const std::string text = HexText(slave, 2) + HexText(command, 2) + HexText(reg, 4) + AsciiData(data);
    // The required check goes out without padding: "5" for 05, and "100" for 00. Slaves of other makes refuse that.
    const int lrc = ModbusLrc(text);
    const std::string digits = check == AsciiCheck::Standard ? HexText(lrc % 256, 2) : HexText(lrc, 1);
    return {modbus::colon + text + digits + std::string(modbus::asciiEnd), {}};
}

ModbusRequest BuildWriteFrame(const ModbusState& modbus, double value, int reg, int command, int slave) {
    std::string problem = AddressProblem(command, slave, reg);
    if (!problem.empty()) {
        return {{}, std::move(problem)};
    }
    const bool fits = command == modbus::writeRegisters ? std::fabs(value) <= FLT_MAX : Fits(value);
    if (!fits) {
        return {{}, badDatum};
    }
    if (command == modbus::writeRegisters) {
        return RtuFrame(command, slave, reg, FloatHeader(modbus, 1) + FloatText(modbus, value));
    }
    const std::string header = command == modbus::writeCoils ? Word(0) + Byte(0) : std::string();
    return RtuFrame(command, slave, reg, header + RtuDatum(command, Unsigned(value)));
}

ModbusRequest BuildClockWriteFrame(const ModbusState& modbus, const core::DateTime& now, int reg, int slave) {
    std::string problem = AddressProblem(modbus::writeRegisters, slave, reg);
    if (!problem.empty()) {
        return {{}, std::move(problem)};
    }
    std::string floats;
    for (const int part : {now.year, now.month, now.day, now.hour, now.minute, now.second}) {
        floats += FloatText(modbus, part);
    }
    return RtuFrame(modbus::writeRegisters, slave, reg, FloatHeader(modbus, 6) + floats);
}

}  // namespace protocols
