#include "reports/NodeOverview.h"

#include "core/Text.h"

namespace reports {

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
        GroupVolume volume{station.Long("locationID"), station.Text("consumer"), "0", "MSCFH"};
        const auto values = dbconn.Query(
            "select lastvalue,unit,readat from configdata_detail where locationid= ? and groupno = ? and (description "
            "= 'Volume This Month' or description = 'Cumulative Standard Volume') order by StreamNo",
            {volume.locationId, groupno});
        double sum = 0;
        for (const core::Row& value : values) {
            sum += value.Number("lastvalue");
            // What an earlier version of the program read has no moment.
            volume.known = volume.known || !value.IsNull("readat") || value.Number("lastvalue") != 0;
            const bool older = volume.readat.empty() || value.Text("readat") < volume.readat;
            volume.readat = older ? value.Text("readat") : volume.readat;
        }
        if (!values.empty()) {
            volume.lastvalue = core::NumberText(core::RoundTo(sum, 4));
            volume.unit = values.front().Text("unit");
        }
        volumes.push_back(std::move(volume));
    }
    return volumes;
}

}  // namespace reports
