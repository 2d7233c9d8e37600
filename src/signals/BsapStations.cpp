#include "signals/BsapStations.h"

#include "core/Database.h"

namespace signals {

std::vector<BsapStation> BsapStations(core::Database& dbconn) {
    std::vector<BsapStation> stations;
    // A CW_Micro is spoken to by BSAP whatever its row says.
    for (const core::Row& row : dbconn.Query("select locationID, consumer from configdata_master where protocol = "
                                             "'BSAP' or modelno = 'CW_Micro' order by locationID")) {
        stations.push_back({row[0].Long(), row[1].Text()});
    }
    return stations;
}

}  // namespace signals
