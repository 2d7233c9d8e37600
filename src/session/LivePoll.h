#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "protocols/line/Conversation.h"
#include "reading/BulkPlan.h"
#include "reading/BulkRead.h"
#include "reading/Workplace.h"
#include "session/ParameterSet.h"

namespace session {

// One reading of a station after the other, each into the rows of its set. What was read is in the set at once and in
// the database by Store.
class LivePoll {
  public:
    // Told how many of the values of a poll are in.
    using Progress = std::function<void(int done, int total)>;

    // The set stands while this does; after it is loaded anew, Prepare is called again.
    LivePoll(reading::Workplace& place, protocols::Conversation& talk, ParameterSet& set, Progress progress)
        : place_(place), talk_(talk), set_(set), progress_(std::move(progress)) {}

    // Finds out what is to be read of the stream. False: a Modbus station without an address. Throws DatabaseError.
    bool Prepare();

    // Reads the station once. Throws DatabaseError.
    reading::ReadOutcome Read();

    // Puts what was read since the last time into the station's map, all or nothing, and marks what a whole reading
    // did not bring. Throws DatabaseError; then it is tried again the next time.
    void Store();

  private:
    using Key = std::pair<core::ValueKind, int>;  // what a Modbus address holds, and the address

    reading::ReadOutcome ReadModbus();
    reading::ReadOutcome ReadBsap();
    reading::ReadOutcome ReadQuantumUnit();
    bool ReadList(int number, bool boolean, reading::ReadOutcome& outcome);
    reading::ReadOutcome ReadByProtocol();
    void TakeBlock(const reading::BlockReply& reply);
    void MarkMissed();
    void Take(ParameterRow& row, double value, core::Quality quality);

    reading::Workplace& place_;
    protocols::Conversation& talk_;
    ParameterSet& set_;
    Progress progress_;
    std::vector<reading::Block> blocks_;
    std::set<std::pair<core::ValueKind, int>> refused_;  // blocks, by type and start: they are not asked for again
    std::map<Key, std::vector<ParameterRow*>> byRegister_;
    std::map<std::string, std::vector<ParameterRow*>> byPosition_;  // "54-83"
    std::vector<ParameterRow*> unstored_;
    int done_ = 0;
    int total_ = 0;
};

}  // namespace session
