#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/Clock.h"
#include "core/Database.h"
#include "reading/RunState.h"

// What came of a station's runs, day by day: the tables `outcome` and `gasday`, and the flag `sampledtoday`.
namespace collection {

// Why a run was made.
enum class How {
    Schedule,  // in the minute of its contract hour, or queued in it
    Late,      // the contract hour passed while nobody could serve it
    Retry,     // an earlier run of the gas day gave nothing
    Hand,      // an operator asked for it
};

// The reason of a run that the end of the program broke off.
inline constexpr const char* programEnds = "The program ends";

// One run: all attempts that a station got in one turn. Moments are ISO texts, local time.
struct Outcome {
    std::int64_t locationID = 0;
    std::string gasday;  // "2026-03-09": the day of the contract hour that the run serves
    std::string due;     // the contract hour; empty: the station has none
    std::string begun;   // its turn began
    std::string ended;
    How how = How::Schedule;
    int attempts = 0;  // of a station behind a modem: dials, if there were any
    std::string line;  // "COM1", "COM3 5550100" behind a modem, "IP 10.0.0.1"
    int asked = 0;     // values, of the last attempt
    int received = 0;
    reading::Result result = reading::Result::NoAnswer;
    std::string reason;  // a sentence; empty for a whole collection
};

// As stored: 'schedule', 'late', 'retry', 'hand'; 'collected', 'partly', 'not reached', 'no answer', 'refused',
// 'broken off'.
std::string_view HowText(How how);
std::string_view ResultText(reading::Result result);

// 0 for all values, 1 for some, 2 for none.
int Rank(reading::Result result);

// Adds a row; it is on the disk when this returns. Throws DatabaseError.
void RecordOutcome(core::Database& dbconn, const Outcome& outcome);

// The run that speaks for a station's gas day ("2026-03-09"): the best result, of equals the latest. So a collected day
// stays collected whatever is tried afterwards. Throws DatabaseError.
std::optional<Outcome> OutcomeOf(core::Database& dbconn, std::int64_t locationID, const std::string& gasday);

// The same of everything that was begun on the day of `now`; a later gas day goes before an earlier one.
std::optional<Outcome> OutcomeOfToday(core::Database& dbconn, std::int64_t locationID, const core::DateTime& now);

// Whether the outcomes of a station go back to a day; of an earlier one they do not know. Throws DatabaseError.
bool HasOutcomes(core::Database& dbconn, std::int64_t locationID, const core::DateTime& day);

// Adds to the record of a gas day what a run received; what is not given stays as it is. Throws DatabaseError.
void RecordGasDay(core::Database& dbconn, std::int64_t locationID, const std::string& gasday,
                  const core::DateTime& readat, const reading::DayFigures& figures);

// The record of a gas day; nothing when none of its figures was ever received. Throws DatabaseError.
std::optional<reading::DayFigures> GasDayOf(core::Database& dbconn, std::int64_t locationID, const std::string& gasday);

}  // namespace collection
