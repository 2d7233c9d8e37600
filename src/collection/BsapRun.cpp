#include "collection/BsapList.h"
#include "collection/ClosingSteps.h"
#include "collection/ListInfo.h"
#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "collection/RunFigures.h"
#include "collection/StoreValues.h"
#include "collection/StreamLists.h"
#include "protocols/BsapLink.h"

namespace collection {

namespace {

// Takes a list into the values of the stream, by position.
template <std::size_t size>
void Take(const BsapList& list, const std::array<ListEntry, size>& names, std::array<ListValue, size>& values,
          RunFigures& figures) {
    for (std::size_t n = 1; n < list.signals.size() && n < size; ++n) {
        const ListSignal& signal = list.signals[n];
        values[n] = {true, signal.value, signal.unit, signal.MSD};
        figures.Note(names[n].description, signal.value);
    }
}

// Both lists of a stream, and what follows a good collection. False: a list could not be read, and nothing of the
// stream is stored.
bool CollectStream(Workplace& place, protocols::Conversation& talk, RunFigures& figures) {
    const core::Station& station = talk.station;
    const ListInfo names = ReadListInfo(place.dbconn, station, talk.streamno);
    const ListNumbers numbers = ListsOf(station, talk.streamno);
    const BsapList booleans = getdata_BSAP(talk, numbers.boolean, ListKind::Boolean, names.booleans);
    const BsapList floats = getdata_BSAP(talk, numbers.real, ListKind::Float, names.floats);
    if (!booleans.collstatus || !floats.collstatus) {
        place.feedback.Status("Error in Communication!!!");
        return false;
    }
    place.feedback.Status("Data logging......");
    ListValues values;
    Take(booleans, names.booleans, values.booleans, figures);
    Take(floats, names.floats, values.floats, figures);
    StoreValues(place.dbconn, station, talk.streamno, values);
    RecordCollection(place, station, talk.streamno,
                     station.isMultiStream ? station.ModelText(talk.streamno) : station.modelno);
    return true;
}

}  // namespace

void CollectBsap(Workplace& place, protocols::Conversation& talk, RunState& state) {
    const core::Station& station = talk.station;
    const std::string location = "[" + std::to_string(station.locationID) + "]";
    if (!protocols::SignOnInTries(talk)) {
        if (!talk.Ended()) {
            place.logs.WriteRtuErr("RTU Dead" + location);
        }
        state.runfailed = true;
        return;
    }
    RunFigures figures;
    for (talk.streamno = 1; talk.streamno <= station.No_Stream && !talk.Ended(); ++talk.streamno) {
        if (!CollectStream(place, talk, figures)) {
            state.runfailed = true;
            if (!talk.Ended()) {
                place.logs.WriteRtuErr("Error Occured in Communication, stream " + std::to_string(talk.streamno) + " " +
                                       location);
            }
        }
    }
    // The day's row of a BSAP station says that it was collected; its flows and their text are not kept there.
    UpsertLogParam(place.dbconn, station.locationID, figures.StationClock().value_or(place.clock.Now()),
                   place.clock.Now(), {});
}

}  // namespace collection
