#include "collection/NodeOverview.h"

#include "core/Text.h"

namespace collection {

std::vector<Node> ReadNodes(core::Database& dbconn) {
    std::vector<Node> nodes;
    for (const core::Row& row :
         dbconn.Query("select locationId,consumer,sampledtoday,groupno,groupcnt from configData_Master "
                      "order by groupno,locationid")) {
        const auto index = (row.Long("groupno") - 1) * stationsAGroup + row.Long("groupcnt");
        nodes.push_back({row.Long("locationId"), row.Text("consumer"), row.Bool("sampledtoday"),
                         index >= 0 && index < nodeButtons ? static_cast<int>(index) : -1});
    }
    return nodes;
}

std::array<std::string, groups> GroupTotals(core::Database& dbconn) {
    std::array<std::string, groups> totals;
    totals.fill("0 SCM");
    for (const core::Row& row :
         dbconn.Query("select sum(lastvalue) as total,groupno from configdata_detail where description = 'Volume This "
                      "Month' or description = 'Cumulative Standard Volume' group by groupno")) {
        const auto groupno = row.Long("groupno");
        if (groupno >= 1 && groupno <= groups) {
            totals[static_cast<std::size_t>(groupno - 1)] =
                core::NumberText(core::RoundTo(row.Number("total"), 4)) + " SCM";
        }
    }
    return totals;
}

std::vector<GroupVolume> GroupVolumes(core::Database& dbconn, int groupno) {
    std::vector<GroupVolume> volumes;
    for (const core::Row& station :
         dbconn.Query("select * from configdata_master where groupno= ? order by locationid", {groupno})) {
        const auto value = dbconn.First(
            "select lastvalue,unit from configdata_detail where locationid= ? and groupno = ? and (description = "
            "'Volume This Month' or description = 'Cumulative Standard Volume')",
            {station.Long("locationID"), groupno});
        volumes.push_back(value ? GroupVolume{station.Text("consumer"), core::NumberText(value->Number("lastvalue")),
                                              value->Text("unit")}
                                : GroupVolume{station.Text("consumer"), "0", "MSCFH"});
    }
    return volumes;
}

}  // namespace collection
