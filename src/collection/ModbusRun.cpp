#include "collection/ClosingSteps.h"
#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "reading/BulkRead.h"
#include "reading/RunTally.h"
#include "reading/StoreValues.h"

namespace collection {

namespace {

DayRow DayRowOf(const RunFigures& figures) {
    return {figures.resultline, figures.CurrentDayFlow, figures.CurrentMonthFlow, figures.currentprs};
}

}  // namespace

void CollectModbus(Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts, RunState& state) {
    const core::Station& station = talk.station;
    const core::DateTime begun = place.clock.Now();
    const BlockPlan plan = PlanBlocks(place.dbconn, place.logs, station, talk.streamno, counts);
    if (!plan.fault.empty()) {
        place.logs.WriteRtuErr(plan.fault + " [" + std::to_string(station.locationID) + "]");
        state.runfailed = true;
        state.result = Result::NotReached;
        state.reason = plan.fault;
        return;
    }
    RunFigures figures;
    RunTally tally;
    ValueStore store(place.dbconn, station, talk.streamno);
    ListValues values;
    bool whole = false;
    if (station.MB_CONFIG) {
        place.dbconn.InTransaction([&] { store.Ask(plan.blocks); });
        whole = GetDataInBunches(place, talk, plan.blocks, store, figures, tally);
    } else {
        const ListInfo names = ReadListInfo(place.dbconn, station, talk.streamno);
        whole = GetDataInBunches1(place, talk, plan.blocks, names, values, figures, tally);
    }
    place.feedback.Status(whole ? "Data logging......" : "Error in Communication!!!");
    place.dbconn.InTransaction([&] {
        if (!station.MB_CONFIG) {
            store.Ask(plan.blocks);
            StoreValues(store, station, whole ? values : ListValues{});
        }
        if (whole) {
            UpsertLogParam(place.dbconn, station.locationID, figures.StationClock().value_or(place.clock.Now()),
                           place.clock.Now(), DayRowOf(figures));
            state.figures = figures.TakeDay();
        }
    });
    tally.Add(store);
    tally.Conclude(talk, state);
    if (whole) {
        RecordCollection(place, station, talk.streamno, station.modelno, begun);
    } else {
        state.runfailed = true;
    }
}

}  // namespace collection
