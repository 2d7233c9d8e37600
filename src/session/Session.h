#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "session/LiveCall.h"
#include "session/LiveState.h"

namespace session {

// An operator's session with one station: the line comes up, values are read in a loop, what the operator asks for is
// put between two reads, and the line goes down. A scheduled run may take the line at any moment; the session is then
// over, and nothing that it still had to say reaches another station.
//
// Its commands return at once; the call on the line is a conversation of its own. It ends with the session, which may
// be deleted at any time: a call that stands is hung up, and the screen is told nothing more.
class Session {
  public:
    // Throws DatabaseError; std::runtime_error when the register has no such station, std::length_error when its map
    // does not fit the groups.
    Session(const reading::Workplace& place, SessionView& view, std::int64_t locationID);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void Connect();
    void GetData();
    void Disconnect();

    // Takes the rows of another stream, from 1 to No_Stream: at once, or when the loop has its turn.
    void ChooseStream(int streamno);

    // Asks for a value to be written. Empty: it is in the station's map and pending; else why not, for the operator.
    // What comes of it is told by the view's Request, and by a box unless the station has the value.
    std::string AskWrite(const RowPlace& place, const std::string& text);
    // Judges a value for a row without asking for it.
    std::string Check(const RowPlace& place, const std::string& text) const;
    // Asks for several values to be written together, by BSAP in one message; over Modbus one after the other, up to
    // the first that the station does not take. Empty, or why not; then none is asked for.
    using Entry = WriteEntry;
    std::string AskMultipleWrite(const std::vector<Entry>& entries);
    // Asks for the station's clock to be set to the time of this computer.
    void AskTime();

    // Has another screen work with the station, at once or between two reads of the loop. `work` is called once, with a
    // conversation whose texts and boxes go to `feedback`, or with null when the session ended before its turn; the
    // loop waits until it returns. False: there is no line, or another guest has it, and `work` is not called.
    bool Lend(core::Feedback& feedback, GuestWork work);
    // A line is up that could be lent.
    bool HasLine() const { return shown_->state == State::Connected || shown_->state == State::Polling; }
    // Nothing is on a line of this session: it never had one, is over, or the line was taken away.
    bool IsOffLine() const;

    State GetState() const { return shown_->state; }
    bool PollingActive() const { return shown_->state == State::Polling; }
    // A write that was asked for has no answer yet.
    bool WritePending() const;
    // What came of the last write, for the operator.
    const std::string& LastAnswer() const { return shown_->lastAnswer; }
    bool TimePending() const;
    const core::Station& GetStation() const { return shown_->station; }
    const StationLook& Look() const { return shown_->look; }
    int StreamNo() const { return shown_->streamno; }
    // The metering method of the stream is that of an orifice meter.
    bool IsAga3() const;
    const ParameterSet& Parameters() const { return shown_->set; }
    const std::vector<AlarmWatch::Live>& Alarms() const { return shown_->alarms; }
    protocols::RequestCounts Requests() const;
    // When the values on the screen were read; nothing before the first poll.
    std::optional<core::DateTime> ValuesAt() const { return shown_->valuesAt; }

  private:
    std::shared_ptr<LiveState> shown_;
    std::weak_ptr<LiveCall> call_;  // owned by its conversation
};

}  // namespace session
