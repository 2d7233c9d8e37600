#include "archive/bsap/Routines.h"

namespace archive {

namespace {

constexpr const char* globla = "Globla ID       ";  // as its screens have always spelled it
constexpr FrameTitles frames = {"Archive Request:", "Archive Response:"};

constexpr const char* longHeader = "Time ::                         ";
constexpr const char* shortHeader = "Time ::                               ";
constexpr const char* rangeHeader = "Time ::                                                     ";

const ArchiveRoutine archivePlain = {ArchiveOrder::OldestFirst, longArchive,        21, 0,     10,
                                     "Time ::         ",        "Global ID       ", 0,  false, true};

const ArchiveRoutine cwLong = {ArchiveOrder::OldestFirst, longArchive, 21, 0, 22, longHeader, globla, 4, false, true};
const ArchiveRoutine cwShort = {
    ArchiveOrder::OldestFirst, shortArchive, 25, 20, 20, shortHeader, globla, 4, false, true};
const ArchiveRoutine cwShortNewest = {ArchiveOrder::NewestFirst,
                                      shortArchive,
                                      25,
                                      20,
                                      20,
                                      shortHeader,
                                      globla,
                                      4,
                                      false,
                                      false,
                                      {"GET Archive Num of Record", "Receive Archive"},
                                      {"Archive Defination", "Receive Archive Defination"},
                                      {"Get Archive data", "Receive Archive"}};

const ArchiveRoutine paraLong = {ArchiveOrder::DateRange, longArchive, 26, 23, 22, longHeader, globla, 4, false, true};
const ArchiveRoutine paraLongNewest = {
    ArchiveOrder::NewestFirst, longArchive, 26, 0, 10, longHeader, globla, 4, true, false};
const ArchiveRoutine paraShort = {
    ArchiveOrder::DateRange, shortArchive, 25, 22, 20, rangeHeader, globla, 4, false, true, frames, frames, frames};
const ArchiveRoutine paraShortNewest = {
    ArchiveOrder::NewestFirst, shortArchive, 25, 22, 20, shortHeader, globla, 4, false, false, frames, frames, frames};

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
                .over = 10,
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
            .over = 22,
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
