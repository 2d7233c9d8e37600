#pragma once

#include <string>

#include "core/Station.h"
#include "reading/Workplace.h"

namespace collection {

// The end of a good collection of a stream, behind the storing of its values: a row in Scheduler, sched_temp with the
// values that the model's list names, and the station's workbook. `model` is the station's model or, on a multistream
// station, the metering method of the stream; `begun` is when the stream's reading began. A workbook that cannot be
// written is reported and does not undo the rest. Throws DatabaseError.
void RecordCollection(reading::Workplace& place, const core::Station& station, int streamno, const std::string& model,
                      const core::DateTime& begun);

}  // namespace collection
