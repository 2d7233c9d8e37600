#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Kinds.h"
#include "fieldsim/Device.h"
#include "fieldsim/Signals.h"
#include "fieldsim/WritableStation.h"

namespace fieldsim {

using core::Framing;

// What a slave holds. Register and coil 1 go over the line as 0.
struct ModbusMap {
    std::shared_ptr<SignalList> registers = std::make_shared<SignalList>();  // floats and integers
    std::shared_ptr<SignalList> coils = std::make_shared<SignalList>();
    // The windows of an archive, behind the last register; only what is a signal there exists.
    std::shared_ptr<SignalList> archive = std::make_shared<SignalList>();
    bool floatInOneRegister = false;  // a float is one 32-bit register; otherwise two of 16 bits, high word first
    // The highest numbers that exist. Numbers without a signal below them read as 0, those above are an exception.
    int lastRegister = 0;
    int lastCoil = 0;
};

// A map whose last register and coil are those of its signals.
ModbusMap MakeModbusMap(std::vector<Signal> registers, std::vector<Signal> coils, bool floatInOneRegister = false,
                        const Behaviour& behaviour = {});

// A Modbus slave. Coils are read by functions 1 and 2 and written by 5 and 15, registers read by 3 and 4 and written by
// 6 and 16: what was written is what is read from then on. A write that touches a number without a signal is exception
// 2, one with a bad quantity, byte count or datum exception 3; both change nothing. Every other function is
// exception 1. It is silent for other addresses, for broadcasts and for frames with a bad check.
class ModbusSlave final : public WritableStation {
  public:
    ModbusSlave(int address, Framing framing, ModbusMap map, std::uint32_t answerMs = 50);

    std::vector<Answer> Receive(std::string_view bytes, const Moment& now) override;

    // Requests that touch this register are never answered; 0: every request is.
    void NeverAnswer(int reg) { silentRegister_ = reg; }

    const ModbusMap& Map() const { return map_; }
    // Requests to this slave with a good check so far.
    int Requests() const { return requests_; }

  private:
    // The next whole message, address first, without its check; it and everything before it leave the buffer.
    std::optional<std::string> NextRtu();
    std::optional<std::string> NextAscii();
    std::optional<std::string> NextTcp();  // sets transaction_
    std::optional<std::string> Next();

    bool StaysSilent(std::string_view request) const;
    // The function and what follows it, of a request and of its answer; nothing when the answer is lost.
    std::optional<Answer> Execute(std::string_view request, const Moment& now);
    std::string Read(std::string_view request, const Moment& now);

    static bool IsWrite(int function);
    std::optional<Answer> AnswerWrite(std::string_view request, const Moment& now);
    // What a request asks to change. Returns the exception that it deserves, or 0.
    int CoilChanges(std::string_view request, std::vector<Change>& changes) const;
    int RegisterChanges(std::string_view request, const Moment& now, std::vector<Change>& changes) const;
    Change CoilChange(int number, double value) const;
    Change RegisterChange(int number, const Signal* signal, double value) const;

    // The list that has a register: that of the archive behind the last one.
    SignalList& ListOf(int number) const;
    bool InArchive(int first, int count) const;
    // The signal that a register belongs to, as its first or its second one; null where there is none.
    const Signal* Owner(int number) const;
    std::string ReadCoils(int first, int count, const Moment& now);
    std::string ReadRegisters(int first, int count, const Moment& now);
    std::string RegisterBytes(int number, const Moment& now);

    int address_;
    Framing framing_;
    ModbusMap map_;
    std::uint32_t answerMs_;
    std::string buffer_;
    std::string transaction_;  // of the request in hand
    std::uint64_t lastByteAt_ = 0;
    int silentRegister_ = 0;
    int requests_ = 0;
};

// A message, address first, as a frame of its framing: with CRC; or ":" hexadecimal text, LRC, CR and LF; or behind the
// number of a transaction, two bytes, and its length.
std::string ModbusFrame(Framing framing, std::string_view message, std::string_view transaction = {"\0\0", 2});

// The frame with which a slave answers a request frame by an exception.
std::string ModbusException(std::string_view requestFrame, int code);

}  // namespace fieldsim
