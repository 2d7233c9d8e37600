#include "collection/ClosingSteps.h"

#include <optional>
#include <vector>

#include "collection/Workbook.h"
#include "core/Text.h"
#include "reading/Claim.h"
#include "reading/ListInfo.h"

namespace collection {

namespace {

void InsertSchedulerRow(reading::Workplace& place, const core::Station& station, const std::string& model) {
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

// The row of a place of the float list in the station's map. A map that was laid out by hand has it at any register: it
// is known by the name that the templates have for the place.
std::optional<core::Row> RowAt(reading::Workplace& place, const core::Station& station, int streamno,
                               const std::string& listed) {
    const std::string columns =
        "select d.description, d.lastvalue, d.unit, d.quality, d.readat from configData_detail d";
    const std::string ofStream = " where d.locationID=? and d.StreamNo=? and ";
    if (station.protocol == core::Protocol::Bsap) {
        return place.dbconn.First(columns + ofStream + "d.startaddress=?", {station.locationID, streamno, listed});
    }
    if (station.MB_CONFIG) {
        return place.dbconn.First(columns + " join parameter p on d.description = p.Description and d.aga = p.aga" +
                                      ofStream + "p.protocol = 'Modbus' and p.address=? order by d.srno",
                                  {station.locationID, streamno, listed});
    }
    const int position = listed.size() > 3 ? static_cast<int>(core::Val(listed.substr(3))) : 0;
    return place.dbconn.First(columns + ofStream + "d.startaddress=? and d.type = 'Float'",
                              {station.locationID, streamno, reading::FloatAddress(station, position)});
}

// The list names every value by its place in the float list, "54-" and the position. What may be claimed of each value
// that was found comes back in their order.
std::vector<reading::Claim> FillSchedTemp(reading::Workplace& place, const core::Station& station, int streamno,
                                          const std::string& model, const core::DateTime& begun) {
    constexpr std::size_t addressColumn = 2;
    std::vector<reading::Claim> claims;
    place.dbconn.Execute("delete from sched_temp");
    for (const core::Row& row :
         place.dbconn.Query("select * from sched_ParaList where RTU_Type=?", {ListName(station, model)})) {
        if (const auto parameter = RowAt(place, station, streamno, row[addressColumn].Text())) {
            place.dbconn.Execute("insert into sched_temp(descrip,Lastvalue,unit) values(?,?,?)",
                                 {(*parameter)[0], (*parameter)[1], (*parameter)[2]});
            claims.push_back(reading::ClaimOf(*parameter, begun));
        }
    }
    return claims;
}

}  // namespace

void RecordCollection(reading::Workplace& place, const core::Station& station, int streamno, const std::string& model,
                      const core::DateTime& begun) {
    std::vector<reading::Claim> claims;
    place.dbconn.InTransaction([&] {
        InsertSchedulerRow(place, station, model);
        claims = FillSchedTemp(place, station, streamno, model, begun);
    });
    place.feedback.Status("Making Excels");
    WriteSchedulerFile(place.dbconn, place.shared, place.clock, place.feedback, place.logs, station.consumer, streamno,
                       model, claims);
}

}  // namespace collection
