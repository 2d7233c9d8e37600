#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Clock.h"
#include "core/Feedback.h"
#include "core/Station.h"
#include "reading/BulkRead.h"
#include "reading/Workplace.h"
#include "session/AlarmLimits.h"
#include "session/ParameterSet.h"
#include "session/PollFeedback.h"
#include "session/WriteAnswer.h"
#include "session/WriteRequest.h"

namespace collection {
class Scheduler;
}

namespace session {

class LivePoll;

enum class State {
    Idle,
    Connecting,
    Connected,  // the line is up, nothing is read yet
    Polling,
    Disconnecting,
};

// How a session reaches its screen. Its status texts, boxes and lamps come by the same way.
class SessionView : public core::Feedback {
  public:
    virtual void StateChanged() = 0;
    // The line about the operator's request, lblreq; empty: nothing is pending.
    virtual void Request(const std::string& text) = 0;
    virtual void Progress(int done, int total) = 0;
    // The values of a poll go into the database, or have gone.
    virtual void Storing(bool storing) = 0;
    // Other rows stand in the set.
    virtual void Drawn() = 0;
    // The rows of the set have new values or marks.
    virtual void Refreshed() = 0;
    // The session is over, or its line was taken away. `reason` is empty when the operator ended it; `polled`: values
    // were read in it.
    virtual void Ended(const std::string& reason, bool polled) = 0;
    // The session was told to end while nothing of it was running: Finish is to be called from the event loop.
    virtual void FinishLater() = 0;
};

// What of a station's record only its screen needs.
struct StationLook {
    bool aga3_7 = false;
    bool aga8_fpv = true;
    bool Gross_Detail = false;
    int drs = 0;
};

// An operator's session with one station: the line comes up, values are read in a loop, what the operator asks for is
// put between two reads, and the line goes down. A scheduled run may take the line at any moment; the session is then
// over, and nothing that it still had to say reaches another station.
//
// Connect and GetData return when the line is up or the session is over; the event loop turns in their waits, so the
// other commands come in meanwhile.
class Session {
  public:
    // Throws DatabaseError; std::runtime_error when the register has no such station, std::length_error when its map
    // does not fit the groups.
    Session(const reading::Workplace& place, const collection::Scheduler& scheduler, SessionView& view,
            std::int64_t locationID);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void Connect();
    void GetData();
    void Disconnect();
    // Hangs up and gives the line back, if nothing of the session is running. See FinishLater.
    void Finish();

    // Takes the rows of another stream, from 1 to No_Stream: at once, or when the loop has its turn.
    void ChooseStream(int streamno);

    // Asks for a value to be written. Empty: it is in the station's map and pending; else why not, for the operator.
    // What comes of it is told by the view's Request, and by a box unless the station has the value.
    std::string AskWrite(const RowPlace& place, const std::string& text);
    // Judges a value for a row without asking for it.
    std::string Check(const RowPlace& place, const std::string& text) const;
    // Asks for several values to be written together, by BSAP in one message; over Modbus one after the other, up to
    // the first that the station does not take. Empty, or why not; then none is asked for.
    struct Entry {
        RowPlace place;
        std::string text;
    };
    std::string AskMultipleWrite(const std::vector<Entry>& entries);
    // Asks for the station's clock to be set to the time of this computer.
    void AskTime();

    // Another screen's work with the station that this session has on the line.
    using GuestWork = std::function<void(protocols::Conversation* talk)>;
    // Does `work` at once, or between two reads of the loop. It is called once, with a conversation whose texts and
    // boxes go to `feedback`, or with null when the session ended before its turn; the loop waits until it returns.
    // False: there is no line, or another guest has it, and `work` is not called.
    bool Lend(core::Feedback& feedback, GuestWork work);
    // A line is up that could be lent.
    bool HasLine() const { return state_ == State::Connected || state_ == State::Polling; }

    State GetState() const { return state_; }
    bool PollingActive() const { return state_ == State::Polling; }
    // A write that was asked for has no answer yet.
    bool WritePending() const { return !pending_.empty() || writing_ || !sent_.empty(); }
    // What came of the last write, for the operator.
    const std::string& LastAnswer() const { return lastAnswer_; }
    bool TimePending() const { return timeRequest_ || timeSent_; }
    const core::Station& GetStation() const { return station_; }
    const StationLook& Look() const { return look_; }
    int StreamNo() const { return streamno_; }
    // The metering method of the stream is that of an orifice meter.
    bool IsAga3() const;
    const ParameterSet& Parameters() const { return set_; }
    const std::vector<AlarmWatch::Live>& Alarms() const { return alarms_; }
    protocols::RequestCounts Requests() const { return talk_ ? talk_->requests : requests_; }
    // When the values on the screen were read; nothing before the first poll.
    std::optional<core::DateTime> ValuesAt() const { return valuesAt_; }

  private:
    // A value that is out and was not yet seen at the station.
    struct SentWrite {
        WriteRequest request;
        std::string reason;  // why it is in doubt
        core::DateTime at;
        int polls = 0;  // that did not show it
    };

    void Run(void (Session::*command)());
    bool TakeLine();
    void LineUp();
    void Loop();
    void ServeRequests();
    void ServeWrites();
    void ServeModbusWrites();
    void ServeTime();
    void ServeStream();
    void ServeGuest();
    void Refresh(bool received);
    bool Survives(reading::ReadOutcome outcome);
    void ShowBoxes(std::vector<std::string> boxes, bool blip);
    // What the poll that began then shows of what was sent.
    void Judge(reading::ReadOutcome outcome, const core::DateTime& begun);
    bool IsLate(const core::DateTime& sentAt) const;
    bool JudgeWrite(SentWrite& sent, bool counts);
    void JudgeTime(bool counts, const core::DateTime& begun);
    void Answer(const WriteRequest& request, const WriteAnswer& answer);
    void AnswerTime(const std::string& user, WriteResult result, const std::string& reason);
    void TellAnswers(bool inBox);
    std::vector<ParameterRow*> ClockRows();
    void Store();

    WriteContext Context() const;
    std::string Enter(const std::vector<WriteRequest>& requests);
    void TakeStream(int streamno);
    void TurnTo(State state);
    void LineEnded();
    void DropRequests(const std::string& reason);
    void MarkSampled(bool sampled);
    void Fail(const std::string& reason);

    SessionView& view_;
    PollFeedback feedback_;
    reading::Workplace place_;
    const collection::Scheduler& scheduler_;
    core::Station station_;
    StationLook look_;
    ParameterSet set_;
    AlarmWatch watch_;
    std::vector<AlarmWatch::Live> alarms_;
    State state_ = State::Idle;
    int streamno_ = 1;

    std::unique_ptr<protocols::Conversation> talk_;
    std::unique_ptr<LivePoll> poll_;
    protocols::RequestCounts requests_;
    std::optional<core::DateTime> valuesAt_;
    std::string endReason_;
    bool collstatus_ = false;         // the link is up
    bool running_ = false;            // a command of the session is on the stack
    bool polled_ = false;             // the loop ran in this session
    bool marked_ = false;             // and the station's day is marked with it
    bool disconnectPressed_ = false;  // the operator ends it
    bool called_ = false;             // there is a call to hang up

    std::vector<WriteRequest> pending_;
    bool writing_ = false;  // they are on the line
    std::vector<SentWrite> sent_;
    std::vector<AnsweredWrite> answered_;  // not told yet
    std::string lastAnswer_;
    bool boxed_ = false;                      // a box has told of one of them
    std::optional<std::string> timeRequest_;  // by whom
    struct SentTime {
        std::string user;
        core::DateTime time;
        int polls = 0;
    };
    std::optional<SentTime> timeSent_;
    int failedPolls_ = 0;  // in a row
    int survived_ = 0;     // as many of them
    std::optional<int> pendingStream_;

    struct Guest {
        core::Feedback& feedback;
        GuestWork work;
    };
    std::optional<Guest> guest_;
    core::Feedback* lentTo_ = nullptr;  // the guest at work
};

}  // namespace session
