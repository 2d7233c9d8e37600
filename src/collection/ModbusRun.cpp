#include "collection/ClosingSteps.h"
#include "collection/ProtocolRuns.h"
#include "reading/BulkRead.h"
#include "reading/LogParam.h"
#include "reading/RunTally.h"
#include "reading/StoreValues.h"

namespace collection {

namespace {

reading::DayRow DayRowOf(const reading::RunFigures& figures) {
    return {figures.resultline, figures.CurrentDayFlow, figures.CurrentMonthFlow, figures.currentprs};
}

}  // namespace

void CollectModbus(reading::Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts,
                   reading::RunState& state) {
    const core::Station& station = talk.station;
    const core::DateTime begun = place.clock.Now();
    const reading::BlockPlan plan = reading::PlanBlocks(place.dbconn, place.logs, station, talk.streamno, counts);
    if (!plan.fault.empty()) {
        place.logs.WriteRtuErr(plan.fault + " [" + std::to_string(station.locationID) + "]");
        state.runfailed = true;
        state.result = reading::Result::NotReached;
        state.reason = plan.fault;
        return;
    }
    reading::RunFigures figures;
    reading::RunTally tally;
    reading::ValueStore store(place.dbconn, station, talk.streamno);
    reading::ListValues values;
    bool whole = false;
    if (station.MB_CONFIG) {
        place.dbconn.InTransaction([&] { store.Ask(plan.blocks); });
        whole = reading::GetDataInBunches(place, talk, plan.blocks, store, figures, tally);
    } else {
        const reading::ListInfo names = reading::ReadListInfo(place.dbconn, station, talk.streamno);
        whole = reading::GetDataInBunches1(place, talk, plan.blocks, names, values, figures, tally);
    }
    place.feedback.Status(whole ? "Data logging......" : "Error in Communication!!!");
    place.dbconn.InTransaction([&] {
        if (!station.MB_CONFIG) {
            store.Ask(plan.blocks);
            reading::StoreValues(store, station, whole ? values : reading::ListValues{});
        }
        if (whole) {
            reading::UpsertLogParam(place.dbconn, station.locationID,
                                    figures.StationClock().value_or(place.clock.Now()), place.clock.Now(),
                                    DayRowOf(figures));
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
