#include "stations/SampledMark.h"

namespace stations {

void MarkSampled(core::Database& dbconn, const core::DateTime& now, std::int64_t locationID, bool sampled) {
    dbconn.Execute("update configdata_master set sampledtoday=?, sampleddate=? where locationID=?",
                   {sampled, now.day, locationID});
}

}  // namespace stations
