#include "collection/BulkRead.h"
#include "collection/ClosingSteps.h"
#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "collection/RunTally.h"
#include "collection/StoreValues.h"
#include "stations/MapBuilder.h"

namespace collection {

namespace {

DayRow DayRowOf(const RunFigures& figures) {
    return {figures.resultline, figures.CurrentDayFlow, figures.CurrentMonthFlow, figures.currentprs};
}

// What is wrong with the map before anything is asked; empty: nothing.
std::string FaultOf(Workplace& place, const core::Station& station, const std::vector<Block>& blocks) {
    if (!station.MB_CONFIG && !station.rtuBitsMode && stations::IsIntegerMap(place.dbconn, station.locationID)) {
        return "The register map is of Type Integer, which only Modbus Configurable reads";
    }
    return blocks.empty() ? "No Modbus Address Found" : "";
}

}  // namespace

void CollectModbus(Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts, RunState& state) {
    const core::Station& station = talk.station;
    const core::DateTime begun = place.clock.Now();
    const auto blocks = PlanBlocks(place.dbconn, place.logs, station, talk.streamno, counts);
    const std::string fault = FaultOf(place, station, blocks);
    if (!fault.empty()) {
        place.logs.WriteRtuErr(fault + " [" + std::to_string(station.locationID) + "]");
        state.runfailed = true;
        state.result = Result::NotReached;
        state.reason = fault;
        return;
    }
    RunFigures figures;
    RunTally tally;
    ValueStore store(place.dbconn, station, talk.streamno);
    ListValues values;
    bool whole = false;
    if (station.MB_CONFIG) {
        place.dbconn.InTransaction([&] { store.Ask(blocks); });
        whole = GetDataInBunches(place, talk, blocks, store, figures, tally);
    } else {
        const ListInfo names = ReadListInfo(place.dbconn, station, talk.streamno);
        whole = GetDataInBunches1(place, talk, blocks, names, values, figures, tally);
    }
    place.feedback.Status(whole ? "Data logging......" : "Error in Communication!!!");
    place.dbconn.InTransaction([&] {
        if (!station.MB_CONFIG) {
            store.Ask(blocks);
            StoreValues(store, station, whole ? values : ListValues{});
        }
        if (whole) {
            UpsertLogParam(place.dbconn, station.locationID, figures.StationClock().value_or(place.clock.Now()),
                           place.clock.Now(), DayRowOf(figures));
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
