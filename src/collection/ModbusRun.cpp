#include "collection/BulkRead.h"
#include "collection/ClosingSteps.h"
#include "collection/LogParam.h"
#include "collection/ProtocolRuns.h"
#include "collection/StoreValues.h"

namespace collection {

namespace {

DayRow DayRowOf(const RunFigures& figures) {
    return {figures.resultline, figures.CurrentDayFlow, figures.CurrentMonthFlow, figures.currentprs};
}

}  // namespace

void CollectModbus(Workplace& place, protocols::Conversation& talk, const core::ModelCounts& counts, RunState& state) {
    const core::Station& station = talk.station;
    const auto blocks = station.MB_CONFIG ? Collect_StartAddress(place.dbconn, place.logs, station, talk.streamno)
                                          : Collect_StartAddress1(counts, station.rtuBitsMode);
    if (blocks.empty()) {
        place.logs.WriteRtuErr("No Modbus Address Found [" + std::to_string(station.locationID) + "]");
        state.runfailed = true;
        return;
    }
    RunFigures figures;
    ListValues values;
    const bool read = station.MB_CONFIG
                          ? GetDataInBunches(place, talk, blocks, figures)
                          : GetDataInBunches1(place, talk, blocks, ReadListInfo(place.dbconn, station, talk.streamno),
                                              values, figures);
    if (!read) {
        state.runfailed = true;
        place.feedback.Status("Error in Communication!!!");
        return;
    }
    place.feedback.Status("Data logging......");
    place.dbconn.InTransaction([&] {
        // On a configured map nothing stands in `values`: its rows have their values already.
        StoreValues(place.dbconn, station, talk.streamno, values);
        UpsertLogParam(place.dbconn, station.locationID, figures.StationClock().value_or(place.clock.Now()),
                       place.clock.Now(), DayRowOf(figures));
    });
    RecordCollection(place, station, talk.streamno, station.modelno);
}

}  // namespace collection
