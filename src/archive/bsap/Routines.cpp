#include "archive/bsap/Routines.h"

namespace archive {

namespace {

using protocols::longArchive;
using protocols::shortArchive;

constexpr int blockOfRecords = 4;
constexpr const char* globla = "Globla ID       ";  // as its screens have always spelled it
constexpr FrameTitles frames = {"Archive Request:", "Archive Response:"};

constexpr const char* longHeader = "Time ::                         ";
constexpr const char* shortHeader = "Time ::                               ";
constexpr const char* rangeHeader = "Time ::                                                     ";

const ArchiveRoutine archivePlain = {
    .order = ArchiveOrder::OldestFirst,
    .layout = longArchive,
    .timeHeader = "Time ::         ",
    .globalHeader = "Global ID       ",
    .archivecount = 0,
    .takesShortRefusal = true,
};

const ArchiveRoutine cwLong = {
    .order = ArchiveOrder::OldestFirst,
    .layout = longArchive,
    .timeHeader = longHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
    .takesShortRefusal = true,
};

const ArchiveRoutine cwShort = {
    .order = ArchiveOrder::OldestFirst,
    .layout = shortArchive,
    .timeHeader = shortHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
};

const ArchiveRoutine cwShortNewest = {
    .order = ArchiveOrder::NewestFirst,
    .layout = shortArchive,
    .timeHeader = shortHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
    .information = {"GET Archive Num of Record", "Receive Archive"},
    .definition = {"Archive Defination", "Receive Archive Defination"},
    .records = {"Get Archive data", "Receive Archive"},
};

const ArchiveRoutine paraLong = {
    .order = ArchiveOrder::DateRange,
    .layout = longArchive,
    .timeHeader = longHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
};

const ArchiveRoutine paraLongNewest = {
    .order = ArchiveOrder::NewestFirst,
    .layout = longArchive,
    .timeHeader = longHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
    .startsAbove = true,
    .takesShortRefusal = true,
};

const ArchiveRoutine paraShort = {
    .order = ArchiveOrder::DateRange,
    .layout = shortArchive,
    .timeHeader = rangeHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
    .information = frames,
    .definition = frames,
    .records = frames,
};

const ArchiveRoutine paraShortNewest = {
    .order = ArchiveOrder::NewestFirst,
    .layout = shortArchive,
    .timeHeader = shortHeader,
    .globalHeader = globla,
    .archivecount = blockOfRecords,
    .information = frames,
    .definition = frames,
    .records = frames,
};

}  // namespace

const ArchiveRoutine& ArchiveRoutineOf(Screen screen, bool isCW, bool newFirst) {
    switch (screen) {
        case Screen::frmarchive:
            return archivePlain;
        case Screen::frmCW_archive:
            return !isCW ? cwLong : newFirst ? cwShortNewest : cwShort;
        case Screen::frmparaarchive:
            break;
    }
    if (isCW) {
        return newFirst ? paraShortNewest : paraShort;
    }
    return newFirst ? paraLongNewest : paraLong;
}

AuditRoutine AuditRoutineOf(Screen screen, bool isCW, bool newFirst) {
    if (screen == Screen::frmarchive) {
        return {.newestFirst = false,
                .layout = longArchive,
                .firstPosition = 0,
                .archivecount = 0,
                .replydelay = 1000,
                .mostEvents = 1000,
                .endsByCount = true,
                .numbered = false,
                .codes = EventCodes::LowestBit};
    }
    return {.newestFirst = newFirst,
            .layout = isCW ? shortArchive : longArchive,
            .firstPosition = 1,
            .archivecount = 4,
            .replydelay = 0,
            .mostEvents = 0,
            .endsByCount = false,
            .numbered = true,
            .codes = EventCodes::All};
}

std::vector<std::string> AuditCaptions(bool numbered) {
    std::vector<std::string> captions = {
        "Date/Time                        ",
        "                            Description                                        "
        "                                               ",
        " LocalID     ", " GlobalID    "};
    if (numbered) {
        captions.insert(captions.begin(), "No");
    }
    return captions;
}

}  // namespace archive
