#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/Station.h"
#include "reading/RunState.h"
#include "reading/Workplace.h"

namespace collection {

// A call that may be left up behind a station, for the next one behind its number.
class Call {
  public:
    void Keep(std::shared_ptr<protocols::LineLease> line, const core::Station& station);

    // The number is on the line.
    bool Up() const;
    // And this station is behind it.
    bool Reaches(const core::Station& station) const;
    const std::shared_ptr<protocols::LineLease>& Line() const { return line_; }

    // Hangs up and closes the port, if there is a call.
    void End(reading::Workplace& place);

  private:
    std::shared_ptr<protocols::LineLease> line_;
    std::string phoneno_;
    std::string settings_;
};

// One attempt to fetch today's values from one station, from its record to the hang-up. A failed transaction, a port
// that does not open and an error of the database set `runfailed`; a modem that does not answer or does not reach the
// station leaves it clear, as the operators' reports expect, with its line in RTU_Err.log. Never throws: what goes
// wrong is in RTU_Err.log. The line is taken over from whoever holds it, and is hung up and closed at the end.
//
// `call` is the call that an earlier station left up, and is used if it reaches this one. It is left up again behind a
// good attempt if `another` says that the next station is behind the same number.
void collectiong_Data(reading::Workplace& place, std::int64_t locationID, reading::RunState& state, Call& call,
                      const std::function<bool()>& another);
void collectiong_Data(reading::Workplace& place, std::int64_t locationID, reading::RunState& state);

}  // namespace collection
