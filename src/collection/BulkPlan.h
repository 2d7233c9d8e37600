#pragma once

#include <vector>

#include "core/Database.h"
#include "core/Logs.h"
#include "core/Station.h"

// How the parameters of a Modbus station become a few large reads.
namespace collection {

enum class BlockType { Coil = 0, Integer = 1, Float = 2 };

struct Block {
    int start = 0;  // first register or coil as stored in startaddress, from 1; on the wire it is one less
    int count = 0;  // registers or coils
    BlockType type = BlockType::Coil;

    bool operator==(const Block&) const = default;
};

// The most blocks of one run, and the most rows of one type in them.
constexpr std::size_t maxBlocks = 10;
constexpr int maxRowsOfType = 100;

// The registers that one value of the type takes: 2 for a float, unless one register holds it; else 1.
int RegistersPerValue(BlockType type, bool rtu32bit);

// The blocks of a station whose register map stands in configdata_detail: strictly contiguous addresses of one type,
// ended at 30 registers. What exceeds the table of blocks is left out with a line in RTU_Err.log, as is a type that
// Modbus does not know. Throws DatabaseError.
std::vector<Block> Collect_StartAddress(core::Database& dbconn, core::Logs& logs, const core::Station& station,
                                        int streamno);

// The blocks of a station with the fixed map of its model: coils in requests of 62, floats in requests of 124 registers
// (62 where one register holds a float, which is as much on the wire).
std::vector<Block> Collect_StartAddress1(const core::ModelCounts& counts, bool rtu32bit);

}  // namespace collection
