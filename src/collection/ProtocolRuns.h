#pragma once

#include "collection/CollectionRun.h"
#include "core/Station.h"
#include "reading/Workplace.h"

// The collection of each protocol on a line that is up. Each sets `runfailed` when the station could not be read;
// all throw DatabaseError.
namespace collection {

void CollectModbus(reading::Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts,
                   reading::RunState& state);

void CollectBsap(reading::Workplace& place, protocols::Conversation& talk, reading::RunState& state);

void CollectQuantum(reading::Workplace& place, protocols::Conversation& talk, reading::RunState& state);

}  // namespace collection
