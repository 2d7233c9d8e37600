#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
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
    Text,     // characters, on the stations that have such signals
};

// One named value of a station.
struct Signal {
    int position = 0;  // register, coil or list position, from 1
    std::string description{};
    std::string unit{};
    Kind kind = Kind::Float;
    double value = 0;    // what it is without a behaviour
    int typecode = -1;   // of its BSAP record; -1: the usual one of its kind
    std::string text{};  // what a text is until another is written
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
    void Fix(const Signal& signal, double value) { kept_[signal.position].fixed = value; }
    bool Fix(std::string_view description, double value);
    // From now on it has the value again that it would have if none had been fixed.
    void Release(const Signal& signal) { kept_[signal.position].fixed.reset(); }

    // A text that was written into a signal. It stands beside the value of a number; empty: none was. A text's own
    // takes the place of the one that it had.
    void FixText(const Signal& signal, std::string text) { kept_[signal.position].text = std::move(text); }
    std::string Text(const Signal& signal) const;

    // How many places the list has: the last may have lost their signals.
    int Places() const;

    // Changes of the program. What was fixed, written and served goes with its signal wherever it moves, and ends with
    // it. Those that take a name return false when there is no signal of that name. Pointers to signals end here.
    //
    // A signal at that position, from 1; those that stood there and behind it move up.
    void Insert(int position, Signal signal);
    // The signal is gone, and those behind it move down.
    bool Remove(std::string_view description);
    // The signal is gone, and its place stays without one.
    bool Vacate(std::string_view description);
    // Another signal in its place.
    bool Replace(std::string_view description, Signal signal);
    // Its `value`, which the behaviour may go by. One that was fixed is so no longer.
    bool SetValue(std::string_view description, double value);

    // The address by which a BSAP station knows the signal; 0: it has none yet.
    int Msd(const Signal& signal) const;
    void GiveMsd(const Signal& signal, int msd) { kept_[signal.position].msd = msd; }

    // From now on the signals that show the time show this clock's.
    void UseClock(std::shared_ptr<const StationClock> clock) { clock_ = std::move(clock); }

  private:
    // What has become of a signal since the start.
    struct Kept {
        std::optional<double> fixed;
        std::optional<std::string> text;
        std::deque<ServedValue> served;
        int msd = 0;
    };

    const Kept* Of(const Signal& signal) const;
    Signal* Named(std::string_view description);
    // All places from this one on move by one, up or down.
    void Move(int from, int by);

    std::vector<Signal> signals_;
    Behaviour behaviour_;
    std::shared_ptr<const StationClock> clock_;
    std::map<int, Kept> kept_;  // by position
    int places_ = 0;
};

}  // namespace fieldsim
