#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/RunView.h"
#include "archive/bsap/ArchiveRun.h"
#include "archive/bsap/Routines.h"

namespace core {
class Database;
}

// What the command Collect of the archive screens does with a station that is on the line.
namespace archive {

struct Wish {
    Screen screen = Screen::frmarchive;
    bool audit = false;
    ArchiveKind kind = ArchiveKind::Hourly;
    int file = 0;                     // of frmCW_archive: the number of the archive file
    bool newFirst = false;            // "New First" is ticked
    std::optional<DayRange> range{};  // "Start Date" is ticked
};

struct Collected {
    RunEnd end = RunEnd::Failed;
    std::string message;      // for the operator: what was collected, and what came in between
    std::size_t records = 0;  // in the grid
};

// Downloads what is wished for, fills the report table of it, adds what is new to the store, and writes the transaction
// line. What the database refuses is told in the message; the grid has the rows all the same.
Collected Collect(core::Database& dbconn, protocols::Conversation& talk, const Wish& wish, RunView& view);

// The stations to choose from, "locationID-consumer" each, by location: all that are read by BSAP, or the one of a
// screen that was opened for it. Throws DatabaseError.
std::vector<std::string> ArchiveNodes(core::Database& dbconn, std::optional<std::int64_t> locationID);

struct Node {
    std::int64_t locationID = 0;
    std::string consumer;
};

// What such a text says. Nothing when there is no number in front of a "-".
std::optional<Node> SplitNode(const std::string& text);

}  // namespace archive
