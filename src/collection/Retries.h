#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "collection/Outcome.h"
#include "collection/RunQueue.h"
#include "core/Clock.h"
#include "core/Database.h"

namespace collection {

// The stations that are to be tried again: those whose run of the schedule gave nothing, for as many rounds and after
// as many minutes as the settings say. A program that was restarted goes on with the round that is next.
class Retries {
  public:
    explicit Retries(core::Database& dbconn) : dbconn_(dbconn) {}

    // What a turn came to. `again`: the station is to be tried again, if there is a round left. Throws DatabaseError.
    void Note(const Turn& turn, const Outcome& outcome, bool again);

    // The turns whose time has come, in the order of their stations. What was collected meanwhile, has a newer gas day
    // or is gone is dropped. Throws DatabaseError.
    std::vector<Turn> Due(const core::DateTime& now);

  private:
    struct Waiting {
        std::string gasday;
        int round = 1;
        std::int64_t minutes = 0;
        std::int64_t at = 0;  // seconds of the local time
    };

    void Load(const core::DateTime& now);
    void Add(std::int64_t locationID, const std::string& gasday, int round, std::int64_t ended);

    core::Database& dbconn_;
    std::map<std::int64_t, Waiting> waiting_;  // by station
    bool loaded_ = false;
};

}  // namespace collection
