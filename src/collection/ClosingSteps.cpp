#include "collection/ClosingSteps.h"

#include "collection/ListInfo.h"
#include "collection/Workbook.h"
#include "core/Text.h"

namespace collection {

namespace {

void InsertSchedulerRow(Workplace& place, const core::Station& station, const std::string& model) {
    const core::DateTime now = place.clock.Now();
    place.dbconn.Execute("insert into Scheduler(Sch_date,Sch_time,RTUName,RTU_Type) values(?,?,?,?)",
                         {core::DateText(now), core::TimeText(now), station.consumer, model});
}

std::string ListName(const core::Station& station, const std::string& model) {
    if (station.isCW) {
        return model;
    }
    return station.isTeleCorrector ? "TC" : "TF";
}

// The list names every value by its place in the float list, "54-" and the position; the map knows its address.
void FillSchedTemp(Workplace& place, const core::Station& station, int streamno, const std::string& model) {
    constexpr std::size_t addressColumn = 2;
    const bool modbus = !core::SameText(station.protocol, "BSAP");
    place.dbconn.Execute("delete from sched_temp");
    for (const core::Row& row :
         place.dbconn.Query("select * from sched_ParaList where RTU_Type=?", {ListName(station, model)})) {
        const std::string listed = row[addressColumn].Text();
        const int position = listed.size() > 3 ? static_cast<int>(core::Val(listed.substr(3))) : 0;
        const std::string address = modbus ? FloatAddress(station, position) : listed;
        const auto parameter = place.dbconn.First(
            std::string("select description, lastvalue, unit from configData_detail where locationID=? and "
                        "startaddress=? and StreamNo=?") +
                (modbus ? " and type = 'Float'" : ""),
            {station.locationID, address, streamno});
        if (parameter) {
            place.dbconn.Execute("insert into sched_temp(descrip,Lastvalue,unit) values(?,?,?)",
                                 {(*parameter)[0], (*parameter)[1], (*parameter)[2]});
        }
    }
}

}  // namespace

void RecordCollection(Workplace& place, const core::Station& station, int streamno, const std::string& model) {
    place.dbconn.InTransaction([&] {
        InsertSchedulerRow(place, station, model);
        FillSchedTemp(place, station, streamno, model);
    });
    place.feedback.Status("Making Excels");
    WriteSchedulerFile(place.dbconn, place.shared, place.clock, place.feedback, place.logs, station.consumer, streamno,
                       model);
}

}  // namespace collection
