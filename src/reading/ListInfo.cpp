#include "reading/ListInfo.h"

#include <unordered_map>

#include "core/Text.h"

namespace reading {

namespace {

bool IsBsap(const core::Station& station) {
    return station.protocol == core::Protocol::Bsap;
}

}  // namespace

std::string FloatAddress(const core::Station& station, int position) {
    if (IsBsap(station)) {
        return "54-" + std::to_string(position);
    }
    return std::to_string(station.rtuBitsMode ? position : 2 * position - 1);
}

std::string BooleanAddress(const core::Station& station, int position) {
    return (IsBsap(station) ? "55-" : "") + std::to_string(position);
}

ListInfo ReadListInfo(core::Database& dbconn, const core::Station& station, int streamno) {
    std::unordered_map<std::string, ListEntry> floats;
    std::unordered_map<std::string, ListEntry> booleans;
    for (const core::Row& row : dbconn.Query(
             "select startaddress, type, description, unit from configdata_detail where locationID=? and StreamNo=?",
             {station.locationID, streamno})) {
        auto& entries = core::SameText(row.Text("type"), "Float") ? floats : booleans;
        entries[row.Text("startaddress")] = {core::Trim(row.Text("description")), core::Trim(row.Text("unit"))};
    }
    ListInfo info;
    for (int n = 1; n <= maxFloats; ++n) {
        info.floats[static_cast<std::size_t>(n)] = floats[FloatAddress(station, n)];
    }
    for (int n = 1; n <= maxBooleans; ++n) {
        info.booleans[static_cast<std::size_t>(n)] = booleans[BooleanAddress(station, n)];
    }
    return info;
}

}  // namespace reading
