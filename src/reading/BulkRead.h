#pragma once

#include <array>
#include <bitset>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "protocols/modbus/ModbusTransact.h"
#include "reading/BulkPlan.h"
#include "reading/ListInfo.h"
#include "reading/RunFigures.h"
#include "reading/RunTally.h"
#include "reading/ValueStore.h"
#include "reading/Workplace.h"

namespace reading {

// What a stream's collection has read, by position of its lists from 1. Positions that were not read are empty, so
// that no value is ever stored where none was received.
struct ListValues {
    std::array<std::optional<StoredValue>, maxFloats + 1> floats;
    std::array<std::optional<StoredValue>, maxBooleans + 1> booleans;
};

enum class ReadOutcome {
    Whole,
    BrokenOff,  // the line is wanted for something more urgent; what was taken is good
    Failed,     // a read failed or the conversation ended; the rest was not asked for
};

// The answer to one block.
struct BlockReply {
    const Block& block;
    std::span<const double> values;  // value k of the block is values[k]
    std::bitset<126> outOfRange{};   // by k
    int exception = 0;               // the code of a refusal: then the values are zeros behind it

    core::Quality QualityOf(std::size_t k) const;
};

using TakeReply = std::function<void(const BlockReply& reply)>;

// Reads one block after the other, a commtimeout behind each; one that the station refuses ends nothing. `why` is given
// the reason of a failure.
ReadOutcome ReadBlocks(protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const protocols::TransactOptions& options, const TakeReply& take, std::string* why = nullptr);

// Reads a station by its configured register map. Each value goes to its row as soon as its reply is in, the values of
// one reply in one transaction. False: a read failed; the rest was not asked for, and the station's sampledtoday is
// false. Refusals and the failure are in the tally. Throws DatabaseError.
bool GetDataInBunches(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                      ValueStore& store, RunFigures& figures, RunTally& tally);

// Reads a station by the fixed map of its model, floats and coils in their order into `values`. The same failure.
bool GetDataInBunches1(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const ListInfo& names, ListValues& values, RunFigures& figures, RunTally& tally);

}  // namespace reading
