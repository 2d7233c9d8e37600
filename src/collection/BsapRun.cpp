#include "collection/ClosingSteps.h"
#include "collection/ProtocolRuns.h"
#include "protocols/bsap/BsapLink.h"
#include "reading/BsapList.h"
#include "reading/ListInfo.h"
#include "reading/LogParam.h"
#include "reading/RunFigures.h"
#include "reading/RunTally.h"
#include "reading/StoreValues.h"
#include "reading/StreamLists.h"

namespace collection {

namespace {

// Takes a list into the values of the stream, by position.
template <std::size_t size>
void Take(const reading::BsapList& list, const std::array<reading::ListEntry, size>& names, const std::string& readat,
          std::array<std::optional<reading::StoredValue>, size>& values, reading::RunFigures& figures) {
    for (std::size_t n = 1; n < list.signals.size() && n < size; ++n) {
        const reading::ListSignal& signal = list.signals[n];
        values[n] = reading::StoredValue{signal.value, reading::QualityOf(signal), readat, signal.unit, signal.MSD};
        if (!signal.outOfRange) {
            figures.Note(names[n].description, signal.value);
        }
    }
}

// Both lists of a stream, and what follows a good collection. False: a list could not be read, and nothing of the
// stream is stored.
bool CollectStream(reading::Workplace& place, protocols::Conversation& talk, reading::RunFigures& figures,
                   reading::RunTally& tally) {
    const core::Station& station = talk.station;
    const core::DateTime begun = place.clock.Now();
    const reading::ListInfo names = reading::ReadListInfo(place.dbconn, station, talk.streamno);
    const reading::ListNumbers numbers = reading::ListsOf(station, talk.streamno);
    reading::ValueStore store(place.dbconn, station, talk.streamno);
    reading::ListValues values;
    const reading::BsapList booleans =
        reading::getdata_BSAP(talk, numbers.boolean, core::ValueKind::Logical, names.booleans);
    Take(booleans, names.booleans, core::IsoText(place.clock.Now()), values.booleans, figures);
    const reading::BsapList floats = reading::getdata_BSAP(talk, numbers.real, core::ValueKind::Float, names.floats);
    Take(floats, names.floats, core::IsoText(place.clock.Now()), values.floats, figures);
    const bool whole = booleans.collstatus && floats.collstatus;
    place.feedback.Status(whole ? "Data logging......" : "Error in Communication!!!");
    place.dbconn.InTransaction([&] {
        store.AskLists();
        if (whole) {
            reading::StoreValues(store, station, values);
        }
    });
    tally.Add(store);
    if (!whole) {
        tally.Failure("List " + std::to_string(booleans.collstatus ? numbers.real : numbers.boolean) +
                      " could not be read");
        return false;
    }
    RecordCollection(place, station, talk.streamno,
                     station.isMultiStream ? station.ModelText(talk.streamno) : station.modelno, begun);
    return true;
}

// The rows of all streams, of a station that does not sign on.
void MarkNotReceived(reading::Workplace& place, const core::Station& station, reading::RunTally& tally) {
    place.dbconn.InTransaction([&] {
        for (int streamno = 1; streamno <= station.No_Stream; ++streamno) {
            reading::ValueStore store(place.dbconn, station, streamno);
            store.AskLists();
            tally.Add(store);
        }
    });
}

}  // namespace

void CollectBsap(reading::Workplace& place, protocols::Conversation& talk, reading::RunState& state) {
    const core::Station& station = talk.station;
    const std::string location = "[" + std::to_string(station.locationID) + "]";
    reading::RunTally tally;
    if (!protocols::SignOnInTries(talk)) {
        if (!talk.Ended()) {
            place.logs.WriteRtuErr("RTU Dead" + location);
        }
        state.runfailed = true;
        tally.Failure("The station does not sign on");
        MarkNotReceived(place, station, tally);
        tally.Conclude(talk, state);
        return;
    }
    reading::RunFigures figures;
    for (talk.streamno = 1; talk.streamno <= station.No_Stream && !talk.Ended(); ++talk.streamno) {
        const bool read = CollectStream(place, talk, figures, tally);
        const reading::DayFigures day = figures.TakeDay();
        if (talk.streamno == 1) {
            state.figures = read ? day : reading::DayFigures{};
        } else {
            state.figures.AddStream(read ? day : reading::DayFigures{});
        }
        if (!read) {
            state.runfailed = true;
            if (!talk.Ended()) {
                place.logs.WriteRtuErr("Error Occured in Communication, stream " + std::to_string(talk.streamno) + " " +
                                       location);
            }
        }
    }
    if (talk.streamno <= station.No_Stream) {
        state.figures.AddStream({});  // not all streams were asked
    }
    tally.Conclude(talk, state);
    // LogParam says of a BSAP station only that it was collected; its flows are in the gas day's record.
    reading::UpsertLogParam(place.dbconn, station.locationID, figures.StationClock().value_or(place.clock.Now()),
                            place.clock.Now(), {});
}

}  // namespace collection
