#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fieldsim/Device.h"
#include "fieldsim/Signals.h"
#include "fieldsim/StationClock.h"

namespace fieldsim {

// What becomes of one request that writes. Reads are not touched.
enum class WriteFault {
    None,
    Refuse,      // a Modbus exception; a BSAP station answers as ever; nothing is changed
    Late,        // taken, and answered when the master has given up
    LostBefore,  // never taken and never answered
    LostAfter,   // taken, and never answered
    Ignore,      // answered as if it were taken; nothing is changed
    Limit,       // numbers are taken up to the highest that the device allows, and answered as asked
    Slow,        // answered at once, and taken later
};

// The name of a fault, such as "LostBefore", as that fault; nothing for any other text.
std::optional<WriteFault> WriteFaultByName(std::string_view name);

struct WriteManners {
    std::deque<WriteFault> script{};          // what meets the coming writes, one each
    WriteFault otherwise = WriteFault::None;  // and all that come after them
    std::uint32_t lateMs = 8000;
    int exceptionCode = 4;  // of a refusal
    bool lineDown = false;  // with a lost write the line is dead until the master closes its port
    int diesAt = 0;         // the station dies of the n-th request that writes from now on, without taking it; 0: never
    bool dead = false;      // nothing is answered
    double highest = 1;     // of a limited number
    std::uint32_t slowMs = 20000;  // until a slow write is taken
};

// One signal that a master asked to change, or a place where it thought that there was one.
struct Write {
    enum class To { Register, Coil, List };

    To to = To::Register;
    int list = 0;                     // for To::List, such as 54
    int position = 0;                 // register, coil or place in the list, from 1
    std::string description;          // empty: there is no signal; in a write by name the name all the same
    double value = 0;                 // of the whole signal
    std::optional<std::string> text;  // instead of the value
    bool accepted = false;
    Moment at;
};

// "register 3 Flowing Pressure = 12.5", "coil 7 Door = 1 refused", "54-3 Name = \"KOLMAR\"".
std::string Describe(const Write& write);

// A station that takes writes: it keeps what was written and when, has a clock that can be set, and may be told to
// behave badly.
class WritableStation : public Device {
  public:
    WritableStation() : clock_(std::make_shared<StationClock>()) {}

    // What masters asked to change so far, taken or not, in its order.
    const std::vector<Write>& Writes() const { return writes_; }
    // The same, each as Describe tells it.
    std::vector<std::string> WritesText() const;
    void ForgetWrites() { writes_.clear(); }
    // Is told of each write that was taken, after it was made.
    void WhenTaken(std::function<void(const Write&)> told) { told_ = std::move(told); }

    WriteManners& Manners() { return manners_; }
    // What the station's clock says at a local time of the field.
    core::DateTime ClockSays(const core::DateTime& local) const { return clock_->Says(local); }
    void ClockGoesAhead(std::int64_t seconds) { clock_->GoAhead(seconds); }

    void LineClosed() override { lineIsDown_ = false; }

  protected:
    struct Change {
        Write wanted;
        SignalList* list = nullptr;
        const Signal* signal = nullptr;             // null: no such signal
        const SignalList* clockElements = nullptr;  // where the elements are that this signal makes the time
    };

    // The clock signals of this list follow the station's clock.
    void RunClockOf(SignalList& list) { list.UseClock(clock_); }
    bool LineIsDown() const { return lineIsDown_ || manners_.dead; }
    // Makes the slow changes whose time has come.
    void MakeDue(const Moment& now);
    // All changes of one request. They are made when the request is `sound` and its fault lets them; and they are
    // noted. Returns the fault that the request met.
    WriteFault Take(const std::vector<Change>& changes, bool sound, const Moment& now);
    // The answer to it on its way; nothing when it is lost.
    std::optional<Answer> Answered(std::string bytes, std::uint32_t delayMs, WriteFault fault) const;

  private:
    WriteFault NextFault();
    void Make(const Change& change, const Moment& now);

    std::shared_ptr<StationClock> clock_;
    WriteManners manners_;
    std::vector<Write> writes_;
    std::vector<std::pair<std::uint64_t, Change>> slow_;  // when, and what
    std::function<void(const Write&)> told_;
    bool lineIsDown_ = false;
};

}  // namespace fieldsim
