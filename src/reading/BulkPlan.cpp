#include "reading/BulkPlan.h"

#include <algorithm>
#include <string>

#include "stations/MapBuilder.h"

namespace reading {

namespace {

constexpr int coilsPerBlock = 62;
constexpr int floatsPerBlock = 62;
constexpr int registersPerConfiguredBlock = 30;

// The addresses of one type in the order of their registers; those that are not set yet ("0", empty) are no addresses.
std::vector<int> Addresses(core::Database& dbconn, const core::Station& station, int streamno,
                           const std::string& type) {
    std::vector<int> addresses;
    for (const core::Row& row : dbconn.Query("select startaddress from configdata_detail where locationId=? and "
                                             "StreamNo=? and type=? order by cast(startaddress as integer)",
                                             {station.locationID, streamno, type})) {
        const auto address = row[0].Long();
        if (address >= 1 && address <= 65536) {
            addresses.push_back(static_cast<int>(address));
        }
    }
    return addresses;
}

std::vector<Block> Contiguous(const std::vector<int>& addresses, core::ValueKind type, int registersPerValue) {
    std::vector<Block> blocks;
    for (const int address : addresses) {
        const bool continues = !blocks.empty() && address == blocks.back().start + blocks.back().count &&
                               blocks.back().count < registersPerConfiguredBlock;
        if (continues) {
            blocks.back().count += registersPerValue;
        } else {
            blocks.push_back({address, registersPerValue, type});
        }
    }
    return blocks;
}

// 0: the map has no row of the type.
int LastAddress(core::Database& dbconn, const core::Station& station, int streamno, core::ValueKind type) {
    const auto addresses = Addresses(dbconn, station, streamno, core::TextOf(type));
    return addresses.empty() ? 0 : addresses.back();
}

core::ModelCounts MappedCounts(core::Database& dbconn, const core::Station& station, int streamno,
                               core::ModelCounts counts) {
    const int size = RegistersPerValue(core::ValueKind::Float, station.rtuBitsMode);
    const int floats = (LastAddress(dbconn, station, streamno, core::ValueKind::Float) + size - 1) / size;
    const int coils = LastAddress(dbconn, station, streamno, core::ValueKind::Logical);
    if (floats > 0 || coils > 0) {
        counts.floatcount = std::min(counts.floatcount, floats);
        counts.boolcount = std::min(counts.boolcount, coils);
    }
    return counts;
}

}  // namespace

int RegistersPerValue(core::ValueKind type, bool rtu32bit) {
    return type == core::ValueKind::Float && !rtu32bit ? 2 : 1;
}

std::vector<Block> Collect_StartAddress(core::Database& dbconn, core::Logs& logs, const core::Station& station,
                                        int streamno) {
    std::vector<Block> blocks;
    for (const core::Row& row :
         dbconn.Query("select distinct(type) from configdata_detail where StreamNo=? and locationid=? "
                      "order by type",
                      {streamno, station.locationID})) {
        const auto type = core::ValueKindOf(row[0].Text());
        if (!type) {
            logs.WriteRtuErr("DATA TYPE MISMATCH");
            continue;
        }
        const auto ofType = Contiguous(Addresses(dbconn, station, streamno, row[0].Text()), *type,
                                       RegistersPerValue(*type, station.rtuBitsMode));
        blocks.insert(blocks.end(), ofType.begin(), ofType.end());
    }
    return blocks;
}

std::vector<Block> Collect_StartAddress1(const core::ModelCounts& counts, bool rtu32bit) {
    std::vector<Block> blocks;
    const auto divide = [&](int values, int valuesPerBlock, core::ValueKind type) {
        const int size = RegistersPerValue(type, rtu32bit);
        for (int done = 0; done < values && blocks.size() < maxBlocks; done += valuesPerBlock) {
            blocks.push_back({done * size + 1, std::min(valuesPerBlock, values - done) * size, type});
        }
    };
    divide(counts.boolcount, coilsPerBlock, core::ValueKind::Logical);
    divide(counts.floatcount, floatsPerBlock, core::ValueKind::Float);
    return blocks;
}

BlockPlan PlanBlocks(core::Database& dbconn, core::Logs& logs, const core::Station& station, int streamno,
                     const core::ModelCounts& counts) {
    BlockPlan plan;
    if (station.MB_CONFIG) {
        plan.blocks = Collect_StartAddress(dbconn, logs, station, streamno);
    } else if (!station.rtuBitsMode && stations::IsIntegerMap(dbconn, station.locationID)) {
        return {{}, "The register map is of Type Integer, which only Modbus Configurable reads"};
    } else {
        plan.blocks = Collect_StartAddress1(MappedCounts(dbconn, station, streamno, counts), station.rtuBitsMode);
    }
    plan.fault = plan.blocks.empty() ? "No Modbus Address Found" : "";
    return plan;
}

}  // namespace reading
