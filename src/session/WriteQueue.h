#pragma once

#include <optional>
#include <string>
#include <vector>

#include "protocols/line/Conversation.h"
#include "reading/BulkRead.h"
#include "session/LiveState.h"
#include "session/WriteAnswer.h"
#include "session/WriteRequest.h"

namespace session {

// A text that was entered for a row.
struct WriteEntry {
    RowPlace place;
    std::string text;
};

// What the operator of a session has asked to be written: on the line, at the next polls, and in the end its answer.
class WriteQueue {
  public:
    explicit WriteQueue(LiveState& shown) : shown_(shown) {}

    // Asks for values to be written together, when nothing else is pending. Empty: all are in the station's map and
    // pending; else why none is. Throws DatabaseError, then none is.
    std::string Ask(const std::vector<WriteEntry>& entries);
    // Asks for the station's clock to be set to the time of this computer.
    void AskTime();

    // Something is to go out, and may.
    bool WantsLine() const { return !writing_ && (!pending_.empty() || timeRequest_); }
    // Something is on the line.
    bool IsWriting() const { return writing_; }
    // Something is out and has no answer yet, which comes under the names of its stream.
    bool Unanswered() const { return !sent_.empty() || timeSent_; }
    bool WritePending() const { return !pending_.empty() || writing_ || !sent_.empty(); }
    bool TimePending() const { return timeRequest_ || timeSent_; }

    // Puts on the line what was asked for.
    void Serve(protocols::Conversation& talk);
    // What the poll that began then shows of what was sent.
    void Judge(reading::ReadOutcome outcome, const core::DateTime& begun);
    // What was asked for and never went out is not sent any more, and to no other station: the map and the trail say
    // so. Of what was cut off on its way nobody knows whether the station has it.
    void Drop(const std::string& reason);

  private:
    // A value that is out and was not yet seen at the station.
    struct SentWrite {
        WriteRequest request;
        std::string reason;  // why it is in doubt
        core::DateTime at;
        int polls = 0;  // that did not show it
    };
    struct SentTime {
        std::string user;
        core::DateTime time;
        int polls = 0;
    };

    std::string Enter(const std::vector<WriteRequest>& requests);
    void ServeWrites(protocols::Conversation& talk);
    void ServeModbusWrites(protocols::Conversation& talk);
    void ServeTime(protocols::Conversation& talk);
    bool IsLate(const core::DateTime& sentAt) const;
    bool JudgeWrite(SentWrite& sent, bool counts);
    void JudgeTime(bool counts, const core::DateTime& begun);
    void Answer(const WriteRequest& request, const WriteAnswer& answer);
    void AnswerTime(const std::string& user, WriteResult result, const std::string& reason, bool inBox = true);
    void TellAnswers(bool inBox);
    std::vector<ParameterRow*> ClockRows();

    LiveState& shown_;
    std::vector<WriteRequest> pending_;
    bool writing_ = false;  // they are on the line
    std::vector<SentWrite> sent_;
    std::vector<AnsweredWrite> answered_;     // not told yet
    bool boxed_ = false;                      // a box has told of one of them
    std::optional<std::string> timeRequest_;  // by whom
    std::optional<SentTime> timeSent_;
};

}  // namespace session
