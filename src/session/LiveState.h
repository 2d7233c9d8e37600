#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Station.h"
#include "protocols/line/Conversation.h"
#include "reading/Workplace.h"
#include "session/AlarmLimits.h"
#include "session/ParameterSet.h"
#include "session/SessionView.h"
#include "session/WriteRequest.h"

namespace session {

enum class State {
    Idle,
    Connecting,
    Connected,  // the line is up, nothing is read yet
    Polling,
    Disconnecting,
};

// What of a station's record only its screen needs.
struct StationLook {
    bool aga3_7 = false;
    bool aga8_fpv = true;
    bool Gross_Detail = false;
    int drs = 0;
};

// What a session shows. The screen's session and the call on the line share it, so a call can end without a screen.
struct LiveState {
    // Throws as Session does.
    LiveState(const reading::Workplace& desk, SessionView& screen, std::int64_t locationID);
    LiveState(const LiveState&) = delete;
    LiveState& operator=(const LiveState&) = delete;

    // The station's record as it is now. Throws as Session does.
    core::Station ReadRecord() const;
    // Takes the rows of a stream, from 1. Throws as Session does.
    void TakeStream(int stream);
    void TurnTo(State turned);
    // A poll has ended; `received`: it brought values.
    void Refresh(bool received);
    WriteContext Context() const;

    ViewRelay view;
    reading::Workplace place;  // its feedback is the view
    core::Station station;
    StationLook look;
    ParameterSet set;
    std::vector<AlarmWatch::Live> alarms;
    State state = State::Idle;
    int streamno = 1;
    std::optional<core::DateTime> valuesAt;
    protocols::RequestCounts requests;  // of the last call
    std::string lastAnswer;             // what came of the last write

  private:
    AlarmWatch watch_;
};

}  // namespace session
