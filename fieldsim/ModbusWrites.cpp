// How a Modbus slave is written to.

#include <limits>

#include "fieldsim/ModbusBytes.h"
#include "fieldsim/ModbusSlave.h"

namespace fieldsim {

namespace {

// Where the data of functions 15 and 16 begin: behind function, first number, quantity and byte count.
constexpr std::size_t kHead = 6;

// Function, number and datum: the answer to every write begins like its request.
constexpr std::size_t kEcho = 5;

}  // namespace

bool ModbusSlave::IsWrite(int function) {
    return function == kWriteCoil || function == kWriteRegister || function == kWriteCoils ||
           function == kWriteRegisters;
}

std::optional<Answer> ModbusSlave::AnswerWrite(std::string_view request, const Moment& now) {
    const int function = ByteAt(request, 0);
    std::vector<Change> changes;
    int exception = request.size() < kEcho ? kIllegalValue : 0;
    const bool coils = function == kWriteCoil || function == kWriteCoils;
    if (exception == 0) {
        exception = coils ? CoilChanges(request, changes) : RegisterChanges(request, now, changes);
    }
    if (changes.empty()) {  // nothing that could be told: it is noted with the number where it begins
        const int first = request.size() >= kEcho ? WordAt(request, 1) + 1 : 0;
        const double unknown = std::numeric_limits<double>::quiet_NaN();
        changes.push_back(coils ? CoilChange(first, unknown) : RegisterChange(first, Owner(first), unknown));
    }
    const WriteFault fault = Take(changes, exception == 0, now);
    if (exception == 0 && fault == WriteFault::Refuse) {
        exception = Manners().exceptionCode;
    }
    return Answered(exception != 0 ? ModbusExceptionPart(function, exception) : std::string(request.substr(0, kEcho)),
                    answerMs_, fault);
}

int ModbusSlave::CoilChanges(std::string_view request, std::vector<Change>& changes) const {
    const int first = WordAt(request, 1) + 1;
    const int datum = WordAt(request, 3);
    if (ByteAt(request, 0) == kWriteCoil) {
        changes.push_back(CoilChange(first, datum != 0 ? 1 : 0));
        if (request.size() != kEcho || (datum != 0xFF00 && datum != 0)) {
            return kIllegalValue;
        }
        return changes[0].signal == nullptr ? kIllegalAddress : 0;
    }
    const auto length = static_cast<std::size_t>((datum + 7) / 8);
    if (datum < 1 || datum > 0x7B0 || request.size() != kHead + length || ByteAt(request, kHead - 1) != length) {
        return kIllegalValue;
    }
    bool all = true;
    for (int i = 0; i < datum; ++i) {
        const int byte = ByteAt(request, kHead + static_cast<std::size_t>(i / 8));
        changes.push_back(CoilChange(first + i, (byte & (1 << (i % 8))) != 0 ? 1 : 0));
        all = all && changes.back().signal != nullptr;
    }
    return all ? 0 : kIllegalAddress;
}

int ModbusSlave::RegisterChanges(std::string_view request, const Moment& now, std::vector<Change>& changes) const {
    const bool single = ByteAt(request, 0) == kWriteRegister;
    const std::size_t width = map_.floatInOneRegister && !single ? 4 : 2;
    const int first = WordAt(request, 1) + 1;
    const int count = single ? 1 : WordAt(request, 3);
    const std::size_t length = static_cast<std::size_t>(count) * width;
    const std::size_t head = single ? kEcho - width : kHead;
    if (count == 0 || length > 246 || request.size() != head + length ||
        (!single && ByteAt(request, kHead - 1) != length)) {
        return kIllegalValue;
    }
    bool all = true;
    std::string halves;
    for (int i = 0; i < count; ++i) {
        const std::string_view bytes = request.substr(head + static_cast<std::size_t>(i) * width, width);
        const Signal* signal = Owner(first + i);
        if (signal == nullptr || signal->kind != Kind::Float) {
            all = all && signal != nullptr;
            changes.push_back(RegisterChange(first + i, signal, static_cast<std::int16_t>(WordAt(bytes, width - 2))));
        } else if (map_.floatInOneRegister && single) {
            changes.push_back(RegisterChange(first, signal, static_cast<std::int16_t>(WordAt(bytes, 0))));
            return kIllegalValue;  // 16 bits are no float
        } else if (!changes.empty() && changes.back().signal == signal) {
            changes.back().wanted.value = FloatOf(halves.replace(2, width, bytes));
        } else {
            halves = FloatBytes(ListOf(first + i).ValueAt(*signal, now.local));
            halves.replace(first + i == signal->position ? 0 : 2, width, bytes);
            changes.push_back(RegisterChange(first + i, signal, FloatOf(halves)));
        }
    }
    return all ? 0 : kIllegalAddress;
}

ModbusSlave::Change ModbusSlave::CoilChange(int number, double value) const {
    Change change;
    change.signal = map_.coils->At(number);
    change.list = map_.coils.get();
    change.clockElements = map_.registers.get();
    change.wanted.to = Write::To::Coil;
    change.wanted.position = number;
    change.wanted.description = change.signal != nullptr ? change.signal->description : std::string();
    change.wanted.value = value;
    return change;
}

ModbusSlave::Change ModbusSlave::RegisterChange(int number, const Signal* signal, double value) const {
    Change change;
    change.signal = signal;
    change.list = &ListOf(number);
    change.wanted.position = signal != nullptr ? signal->position : number;
    change.wanted.description = signal != nullptr ? signal->description : std::string();
    change.wanted.value = value;
    return change;
}

}  // namespace fieldsim
