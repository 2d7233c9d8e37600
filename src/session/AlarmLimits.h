#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "session/ParameterSet.h"

namespace session {

enum class AlarmState { Normal = 0, LoLo = 1, Lo = 2, Hi = 3, HiHi = 4 };

// A live value and its limits, in the order of their rows.
struct AlarmBlock {
    double value = 0;
    double lo = 0;
    double loDeadband = 0;
    double loLo = 0;
    double hi = 0;
    double hiDeadband = 0;
    double hiHi = 0;
};

// What was exceeded at the last poll, for the deadbands.
struct AlarmLatches {
    bool Hi = false;
    bool HiHi = false;
    bool Lo = false;
    bool LoLo = false;
};

// Judges a value against its limits. A high state is held until the value is below its limit by more than the deadband.
// A low one is not: its band is computed as limit minus deadband as well, so it follows the limit alone. Operators know
// the colours by that.
AlarmState check_alarm(const AlarmBlock& block, AlarmLatches& latches);

// The colour of a live value's cell, 0xRRGGBB: white, yellow, green, red and a stronger red.
unsigned AlarmColour(AlarmState state);
// "Lo-Lo", "Hi"; empty for normal.
const char* AlarmWord(AlarmState state);

// The states of a station's live values from poll to poll. Every block has latches of its own.
class AlarmWatch {
  public:
    struct Live {
        RowPlace place;
        AlarmState state = AlarmState::Normal;
    };

    // Judges all blocks of a set: seven rows of the alarm group that end with one of the known Hi-Hi limits.
    std::vector<Live> Judge(const ParameterSet& set);

    void Forget() { latches_.clear(); }

  private:
    std::map<std::size_t, AlarmLatches> latches_;  // by the row of the live value
};

}  // namespace session
