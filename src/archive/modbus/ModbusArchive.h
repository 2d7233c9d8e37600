#pragma once

#include <string>
#include <vector>

#include "archive/RunView.h"
#include "archive/modbus/ModbusRecords.h"
#include "core/Database.h"
#include "protocols/line/Conversation.h"

// The archive of a station that speaks Modbus. It has no message of its own: the station shows a window of registers.
// One register tells the number of the newest record, one takes the number of the record that is wanted, and from a
// third on the window holds that record and up to three older ones, in the station's order.
namespace archive {

struct ModbusArchiveOutcome {
    int records = 0;  // that came
    int stored = 0;   // of them, in the report table
    int newest = 0;   // the number of the station's newest record, which is how many there are
    bool stopped = false;
    std::string failure{};  // why it ended early, for the operator
};

// "Record (8/40 )".
std::string RecordText(int records, int newest);

// What the operator is told at the end: "Archive Collected" of a whole one; else why it ended and what is on hand.
std::string ArchiveCollected(const ModbusArchiveOutcome& outcome);

// Reads the daily or hourly records of the station in hand and the conversation's stream, all of them, in blocks of
// four from the newest down; within a block they come as the station has them, oldest first. The kind's report table is
// emptied at the start, and the records of each block are put into it together.
//
// A reply that is not the one to its request ends the run, told in a box as by every online transaction; nothing is
// tried again. The write of a number counts as a request: without its acknowledgement the window may still show other
// records. What had come stays in the grid and in the table. A failure of the database ends the run too; it does not
// throw.
ModbusArchiveOutcome CollectModbusArchive(protocols::Conversation& talk, core::Database& dbconn, ArchiveKind kind,
                                          RunView& view);

}  // namespace archive
