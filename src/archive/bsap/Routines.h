#pragma once

#include <cstddef>

#include "archive/bsap/ArchiveRecords.h"
#include "archive/bsap/ArchiveReply.h"

// What distinguishes the downloads of the three screens from each other. Everything else they have in common.
namespace archive {

enum class Screen { frmarchive, frmCW_archive, frmparaarchive };

enum class ArchiveOrder {
    OldestFirst,  // from the oldest record until the station says that there are no more
    DateRange,    // the same, on wish from one day to another
    NewestFirst,  // four by four from the newest record down
};

// The titles of a request and its reply in log.txt; null: they are not logged.
struct FrameTitles {
    const char* request = nullptr;
    const char* reply = nullptr;
};

struct ArchiveRoutine {
    ArchiveOrder order;
    const ArchiveLayout& layout;
    const char* timeHeader;
    const char* globalHeader;
    int archivecount;                // asked for at first; 0: as many as the station gives at once
    bool startsAbove = false;        // newest first: from above the newest number
    bool takesShortRefusal = false;  // a refusal of the definitions counts when it ends behind its status
    FrameTitles information{};
    FrameTitles definition{};
    FrameTitles records{};
};

// The routine of a screen for a station, with "New First" ticked or not.
const ArchiveRoutine& ArchiveRoutineOf(Screen screen, bool isCW, bool newFirst);

struct AuditRoutine {
    bool newestFirst;
    const ArchiveLayout& layout;
    int firstPosition;
    int archivecount;
    int replydelay;          // ms; 0: as the conversation has it
    std::size_t mostEvents;  // of a download; 0: no bound
    bool endsByCount;        // at the record count of the last reply; otherwise where that reads 0
    bool numbered;           // a column "No" in front
    EventCodes codes;
};

AuditRoutine AuditRoutineOf(Screen screen, bool isCW, bool newFirst);

// The captions of the audit grid.
std::vector<std::string> AuditCaptions(bool numbered);

}  // namespace archive
