#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "protocols/line/Conversation.h"
#include "signals/calibration/CalibrationSignals.h"
#include "signals/lists/SignalAccess.h"

namespace core {
class Database;
}

// The transmitters of a station, calibrated from the desk: their signals are read in a cycle, and a command is put
// between two reads.
namespace signals {

enum class CalibrationCommand { Zero, Span, Restore };

enum class CalibrationState {
    NotStarted,
    Starting,  // the station is asked for each of the signals
    Reading,
    Busy,  // with a command
    Stopped,
};

// What is known of a transmitter.
struct TransmitterReading {
    std::optional<double> live;  // nothing before the first read
    std::string unit;
    core::DateTime at;  // when the live value was read
    bool old = false;   // the last read of it failed, or nothing is read any more
    std::optional<double> spanValue;
    std::optional<double> status;  // 0: the last command is done
    std::string result;            // of the last command: "Success", "Failure", "Unknown" or nothing
};

// How a calibration reaches its screen.
class CalibrationView {
  public:
    virtual ~CalibrationView() = default;

    // The state, the readings or the results are others.
    virtual void Changed() = 0;
    virtual void Message(const std::string& text) = 0;
    virtual void Progress(int done, int total) = 0;
};

// Run does the work within one conversation; the other commands come in from the event loop in its waits.
class Calibration {
  public:
    Calibration(core::Database& dbconn, const CalibrationSignals& names, CalibrationView& view)
        : dbconn_(dbconn), names_(names), view_(view) {}

    // Asks a station that is signed on for each signal, then reads them until Stop, the end of the conversation, or
    // four reads in a row that fail. Returns when the state is Stopped; the last message says why.
    void Run(protocols::Conversation& talk);

    // Asks for a command. Ignored unless the signals are being read. Empty: it goes out between two reads, or was
    // ignored; else why it does not, for the operator. `applied`: what stands at the transmitter's input, as it was
    // entered, for a span; a number that single precision holds. Throws DatabaseError, then nothing was asked for.
    //
    // A span goes out only if a live value that is read just before lies within 5 % of the applied value. Each command
    // leaves a line in the audit trail at its end.
    std::string Ask(Transmitter transmitter, CalibrationCommand command, const std::string& applied = {});

    // Ends all of it behind the exchange in hand. A command on its way is not taken back.
    void Stop();

    CalibrationState GetState() const { return state_; }
    // The transmitter whose command runs.
    std::optional<Transmitter> BusyWith() const;
    const TransmitterReading& Of(Transmitter transmitter) const {
        return readings_[static_cast<std::size_t>(transmitter)];
    }
    const std::string& LastMessage() const { return message_; }

  private:
    struct Request {
        Transmitter transmitter = Transmitter::DP;
        CalibrationCommand command = CalibrationCommand::Zero;
        double applied = 0;
    };
    // How a command ended.
    struct End {
        std::string result;       // as in the reading
        std::string message;      // for the operator
        std::string answer = {};  // for the audit trail, where it says more
    };

    bool Going() const { return !stopped_ && !talk_->Ended(); }
    void Turn(CalibrationState state);
    void Say(const std::string& text);
    // Why nothing goes on: the line is gone, the stop, or that the station does not answer.
    std::string WhyNot() const;

    bool CheckSignals();
    bool check_signal_found(NamedSignal& signal, bool isSystemSignal);
    bool IsOfAnother(const NamedSignal& signal, int address) const;
    ReadAnswer ReadOnce(std::span<const NamedSignal> named);
    ReadAnswer ReadOne(const NamedSignal& signal);
    void ReadingCycle();
    bool ReadNext();
    void Take(std::size_t row, const Signal& signal);
    void MarkOld();

    void Serve();
    End CarryOut(const Request& request);
    std::optional<End> WriteSpanValue(const Request& request);
    void LetLateAnswerPass();
    End GiveCommand(const Request& request);
    End ReadStatus(const Request& request);
    std::string Audited(const Request& request, const End& end) const;
    void LeaveAudit(const Request& request, const End& end);

    const NamedSignal& Named(Transmitter transmitter, CalibrationPart part) const;
    TransmitterReading& ReadingOf(Transmitter transmitter) { return readings_[static_cast<std::size_t>(transmitter)]; }

    core::Database& dbconn_;
    const CalibrationSignals names_;
    CalibrationView& view_;
    protocols::Conversation* talk_ = nullptr;
    CalibrationState state_ = CalibrationState::NotStarted;
    bool stopped_ = false;
    std::string message_;
    std::vector<NamedSignal> signals_;  // with their addresses, once they are found
    std::vector<NamedSignal> systemSignals_;
    bool lateMayCome_ = false;  // the answer to a read is still missing
    std::size_t next_ = 0;      // of signals_, to be read
    std::array<TransmitterReading, 3> readings_;
    std::optional<Request> request_;
};

// From where to where the live value may lie for a span: 5 % of the applied value around it, both ends included. A
// negative applied value has its lower end above the upper: the devices' users expect that every live value then fails.
struct SpanLimit {
    double low = 0;
    double high = 0;
};
SpanLimit LimitOf(double applied);
bool WithinSpanLimit(double applied, double live);

}  // namespace signals
