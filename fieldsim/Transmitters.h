#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "fieldsim/Signals.h"
#include "fieldsim/WritableStation.h"

namespace fieldsim {

enum class Transmitter { DP, SP, Temp };

inline constexpr std::size_t kTransmitters = 3;
inline constexpr int kTransmitterList = 20;  // the list that holds their signals

// The names of a transmitter's signals. Differential and static pressure are one instrument with one status.
struct TransmitterNames {
    std::string_view live;       // number
    std::string_view spanValue;  // number that a master writes
    std::string_view status;     // number: see CalibrationStatus
    std::string_view zero;       // logicals that are commands when they are written on
    std::string_view span;
    std::string_view restore;
    std::string_view unit;
};

inline constexpr std::array<TransmitterNames, kTransmitters> kTransmitterNames = {{
    {"DP.LIVE.", "DP.APPLIED.", "PRESS.CALSTAT.", "#CAL.DPZERO.", "#CAL.DPSPAN.", "#CAL.DPREST.", "INH2O"},
    {"SP.LIVE.", "SP.APPLIED.", "PRESS.CALSTAT.", "#CAL.SPZERO.", "#CAL.SPSPAN.", "#CAL.SPREST.", "KG/CM2"},
    {"TEMP.LIVE.", "TEMP.APPLIED.", "TEMP.CALSTAT.", "#CAL.TMPZERO.", "#CAL.TMPSPAN.", "#CAL.TMPREST.", "DEG.C"},
}};

// What a status signal says.
struct CalibrationStatus {
    static constexpr int done = 0;
    static constexpr int busy = 1;
    static constexpr int refused = 2;
    static constexpr int impossible = 3;  // no gain makes the live value the span value
};

// How a transmitter measures and takes its commands. All of it may be changed at any time.
struct TransmitterManner {
    double process = 0;         // what there is to measure
    bool vented = false;        // there is nothing to measure: the process value is 0
    bool refuses = false;       // a command changes nothing and its status is a failure
    double driftPerMinute = 0;  // what the live value gains; it counts from the first look after it was set
};

// The three transmitters of a station. Each shows (process + offset) * gain + drift. Zero makes that 0 and span makes
// it the span value, both for the process value at the command; restore brings the factory's offset 0 and gain 1. From
// a command on its status is busy; three seconds of the station's time later it is done, or failed, and what the
// command changed holds. A command that meets a busy status is lost. The signals of commands go back to 0 at once.
class Transmitters {
  public:
    // With a process value that is within 5 percent of 100, 20 and 25.
    Transmitters();

    const std::shared_ptr<SignalList>& List() const { return list_; }
    // A write into the list that was taken, after it was made.
    void Taken(const Write& write);

    TransmitterManner& Manner(Transmitter transmitter);

  private:
    struct Instruments;
    enum class Command { Zero, Span, Restore };

    void Begin(std::size_t transmitter, Command command, std::int64_t seconds);

    std::shared_ptr<Instruments> instruments_;
    std::shared_ptr<SignalList> list_;
};

}  // namespace fieldsim
