#pragma once

#include "reading/BulkRead.h"
#include "reading/ValueStore.h"

namespace reading {

// Puts what a stream's collection has read into the rows of its map, by their positions. A position that was not read
// leaves its row as it is. Throws DatabaseError.
void StoreValues(ValueStore& store, const core::Station& station, const ListValues& values);

}  // namespace reading
