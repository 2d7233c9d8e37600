#include "signals/lists/BsapStations.h"

#include "core/BsapModels.h"
#include "core/Database.h"

namespace signals {

std::vector<BsapStation> BsapStations(core::Database& dbconn) {
    std::vector<BsapStation> stations;
    for (const core::Row& row :
         dbconn.Query("select locationID, consumer, modelno, protocol from configdata_master order by locationID")) {
        if (core::SpeaksBsap(row[2].Text(), row[3].Text())) {
            stations.push_back({row[0].Long(), row[1].Text()});
        }
    }
    return stations;
}

}  // namespace signals
