#pragma once

#include <functional>
#include <span>
#include <vector>

#include "collection/BulkPlan.h"
#include "collection/ListInfo.h"
#include "collection/RunFigures.h"
#include "collection/Workplace.h"
#include "protocols/ModbusTransact.h"

namespace collection {

// What a stream's collection has read, by position of its lists from 1. Positions that were not read are empty, so
// that no value is ever stored where none was received.
struct ListValue {
    bool read = false;
    double value = 0;
    std::string unit;  // BSAP only, as the station sends it
    int MSD = 0;       // BSAP only: the station's descriptor of the signal
};

struct ListValues {
    std::array<ListValue, maxFloats + 1> floats;
    std::array<ListValue, maxBooleans + 1> booleans;
};

enum class ReadOutcome {
    Whole,
    BrokenOff,  // the line is wanted for something more urgent; what was taken is good
    Failed,     // a read failed or the conversation ended; the rest was not asked for
};

// Given the values of a good reply: value k of the block is values[k].
using TakeReply = std::function<void(const Block& block, std::span<const double> values)>;

// Reads one block after the other, a commtimeout behind each.
ReadOutcome ReadBlocks(protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const protocols::TransactOptions& options, const TakeReply& take);

// Reads a station by its configured register map. Each value goes to its row's lastvalue as soon as its reply is in,
// the values of one reply in one transaction. False: a read failed; the rest was not asked for, and the station's
// sampledtoday is false. Throws DatabaseError.
bool GetDataInBunches(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                      RunFigures& figures);

// Reads a station by the fixed map of its model, floats and coils in their order into `values`. The same failure.
bool GetDataInBunches1(Workplace& place, protocols::Conversation& talk, const std::vector<Block>& blocks,
                       const ListInfo& names, ListValues& values, RunFigures& figures);

}  // namespace collection
