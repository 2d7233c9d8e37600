#pragma once

#include "collection/CollectionRun.h"
#include "core/Station.h"
#include "reading/Workplace.h"

// The collection of each protocol on a line that is up. Each sets `runfailed` when the station could not be read;
// all throw DatabaseError.
namespace collection {

void CollectModbus(Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts, RunState& state);

void CollectBsap(Workplace& place, protocols::Conversation& talk, RunState& state);

void CollectQuantum(Workplace& place, protocols::Conversation& talk, RunState& state);

}  // namespace collection
