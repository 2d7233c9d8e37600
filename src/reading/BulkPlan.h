#pragma once

#include <string>
#include <vector>

#include "core/Database.h"
#include "core/Logs.h"
#include "core/Station.h"

// How the parameters of a Modbus station become a few large reads.
namespace reading {

struct Block {
    int start = 0;  // first register or coil as stored in startaddress, from 1; on the wire it is one less
    int count = 0;  // registers or coils
    core::ValueKind type = core::ValueKind::Logical;

    bool operator==(const Block&) const = default;
};

// The most blocks of a station with a fixed map.
constexpr std::size_t maxBlocks = 10;

// The registers that one value of the type takes: 2 for a float, unless one register holds it; else 1.
int RegistersPerValue(core::ValueKind type, bool rtu32bit);

// The blocks of a station whose register map stands in configdata_detail: strictly contiguous addresses of one type,
// ended at 30 registers. All of them, however many: a map that is laid out by hand has gaps, and a row that no block
// reads would never have a value. A type that Modbus does not know is left out with a line in RTU_Err.log. Throws
// DatabaseError.
std::vector<Block> Collect_StartAddress(core::Database& dbconn, core::Logs& logs, const core::Station& station,
                                        int streamno);

// The blocks of a station with the fixed map of its model: coils in requests of 62, floats in requests of 124 registers
// (62 where one register holds a float, which is as much on the wire).
std::vector<Block> Collect_StartAddress1(const core::ModelCounts& counts, bool rtu32bit);

// The blocks of a station, or why nothing of it can be read.
struct BlockPlan {
    std::vector<Block> blocks;
    std::string fault;  // empty unless there are no blocks
};

// By either of them. On a fixed map no more is asked for than the map has rows for: a station may refuse a whole block
// for the registers behind its last one. A map without rows is read by the counts of its model. Throws DatabaseError.
BlockPlan PlanBlocks(core::Database& dbconn, core::Logs& logs, const core::Station& station, int streamno,
                     const core::ModelCounts& counts);

}  // namespace reading
