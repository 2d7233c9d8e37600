#pragma once

#include "collection/BulkRead.h"

namespace collection {

// Puts what a stream's collection has read into the rows of its map: lastvalue rounded to 4 places, for BSAP also the
// unit and the descriptor. One transaction, on the disk when this returns. A position that was not read leaves its row
// as it is. Throws DatabaseError.
void StoreValues(core::Database& dbconn, const core::Station& station, int streamno, const ListValues& values);

}  // namespace collection
