#pragma once

#include <string_view>

#include "core/Station.h"
#include "fieldsim/ArchiveFile.h"
#include "fieldsim/Signals.h"

// The history of a gas station: files and events in which its values stand as its lists had them at those times.
namespace fieldsim {

// Adds a stream's three files, each up to the time when it is first asked for, and going on from there: with the number
// 3 * (streamno - 1) + 1 a daily one with 40 records made at the contract hour, then an hourly one of 30 days and one
// of the last 200 minutes. Their fields are those of the station's model and the stream's method; a field has the unit
// of the signal in `analogs` that it records. The behaviour is the one of the stream.
void AddGasArchives(StationHistory& history, const core::Station& station, int streamno, const SignalList& analogs,
                    const Behaviour& behaviour, int contractHour);

// The 40 events up to a time, the last a few minutes before it: changes of values, alarms and returns, of each code in
// turn.
std::vector<AuditEvent> GasEvents(const Behaviour& behaviour, const core::DateTime& now);

// Makes it a history of another kind: "none" (no files, no events), "empty" (no records, no events), "one" (a record
// in each file, one event), "wrapped" (files that are full and have lost their first 5000 records) or "long" (10,000
// records). False: there is no such kind, and nothing is changed. For a history as it was made, not asked for yet.
bool MakeHistory(StationHistory& history, std::string_view kind);

}  // namespace fieldsim
