#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fieldsim/Device.h"
#include "fieldsim/StationClock.h"

namespace fieldsim {

enum class Kind {
    Float,    // single precision
    Integer,  // 16 bits with a sign
    Logical,  // 0 or 1
    Decimal,  // a number that goes over the line as decimal text
};

// One named value of a station.
struct Signal {
    int position = 0;  // register, coil or list position, from 1
    std::string description;
    std::string unit;
    Kind kind = Kind::Float;
    double value = 0;   // what it is without a behaviour
    int typecode = -1;  // of its BSAP record; -1: the usual one of its kind
};

// How values move: the value of a signal at a local time. The same signal and time give the same value.
using Behaviour = std::function<double(const Signal& signal, const core::DateTime& at)>;

// A value that a station gave out.
struct ServedValue {
    double value = 0;
    Moment at;
};

// The values of one list of a station, or of its registers or coils, and what was served of them.
class SignalList {
  public:
    // Without a behaviour every signal keeps its `value`.
    explicit SignalList(std::vector<Signal> signals = {}, Behaviour behaviour = {});

    // In order of their positions.
    const std::vector<Signal>& Signals() const { return signals_; }
    // The signal at a position; null where there is none.
    const Signal* At(int position) const;
    // The first signal of that name; null when there is none.
    const Signal* Find(std::string_view description) const;

    // The value as the station gives it out, in the precision of its kind.
    double ValueAt(const Signal& signal, const core::DateTime& at) const;
    // The same, and it is noted as served.
    double Serve(const Signal& signal, const Moment& now);

    // The last values served of the signals of that name, at most 64 of each, the latest of each at the end.
    std::vector<ServedValue> Served(std::string_view description) const;
    // A value like this was among them, to 4 places or in single precision.
    bool WasServed(std::string_view description, double value) const;

    // From now on the signal keeps this value. False: no signal of that name.
    void Fix(const Signal& signal, double value) { fixed_[signal.position] = value; }
    bool Fix(std::string_view description, double value);

    // A text that was written into a signal. It stands beside its value; empty: none was.
    void FixText(const Signal& signal, std::string text) { texts_[signal.position] = std::move(text); }
    std::string Text(const Signal& signal) const;

    // From now on the signals that show the time show this clock's.
    void UseClock(std::shared_ptr<const StationClock> clock) { clock_ = std::move(clock); }

  private:
    std::vector<Signal> signals_;
    Behaviour behaviour_;
    std::shared_ptr<const StationClock> clock_;
    std::map<int, double> fixed_;
    std::map<int, std::string> texts_;
    std::map<int, std::deque<ServedValue>> served_;
};

}  // namespace fieldsim
