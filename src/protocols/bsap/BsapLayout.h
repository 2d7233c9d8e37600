#pragma once

#include <cstddef>

// Where things stand in the replies of a BSAP station. Positions count from 1 over BsapAnswer::text; numbers of two
// bytes have the low one first. The CW models answer in the short layout, which has one byte less in front of
// everything.
namespace protocols {

struct BsapReplyLayout {
    // Poll reply, its first byte cut off.
    std::size_t pollAddress;
    std::size_t pollStatus;
    // What a station did with a request; 0: all of it.
    std::size_t status;
    // Version reply, two bytes.
    std::size_t loadVersion;
    // List reply.
    std::size_t listNext;  // two bytes
    std::size_t firstRecord;
};

inline constexpr BsapReplyLayout longReply = {
    .pollAddress = 6,
    .pollStatus = 7,
    .status = 11,
    .loadVersion = 14,
    .listNext = 14,
    .firstRecord = 16,
};

inline constexpr BsapReplyLayout shortReply = {
    .pollAddress = 5,
    .pollStatus = 6,
    .status = 10,
    .loadVersion = 13,
    .listNext = 13,
    .firstRecord = 15,
};

constexpr const BsapReplyLayout& ReplyLayout(bool isCW) {
    return isCW ? shortReply : longReply;
}

// The replies to the archive and audit requests.
struct ArchiveLayout {
    // File information: three numbers of two bytes.
    struct Information {
        std::size_t newest;
        std::size_t oldest;
        std::size_t third;
    };
    // Field definitions: the number of fields of the file (two bytes) and of those in this reply, the archive's name,
    // the definitions.
    struct Definitions {
        std::size_t fields;
        std::size_t fieldsHere;
        std::size_t archiveName;
        std::size_t firstDefinition;
    };
    // Records: 0 where no further ones follow, how many there are, the number of the record found (two bytes).
    struct Records {
        std::size_t more;
        std::size_t recordsHere;
        std::size_t recordFound;
        std::size_t firstRecord;
    };
    // Audit: how many events there are (two bytes), where to go on, how many are in this reply.
    struct Audit {
        std::size_t events;
        std::size_t cursorA;
        std::size_t cursorB;
        std::size_t eventsHere;
        std::size_t firstEvent;
    };

    std::size_t status;  // two bytes
    Information information;
    Definitions definitions;
    Records records;
    Audit audit;
};

inline constexpr ArchiveLayout longArchive = {
    .status = longReply.status,
    .information = {.newest = 22, .oldest = 24, .third = 26},
    .definitions = {.fields = 20, .fieldsHere = 22, .archiveName = 23, .firstDefinition = 44},
    .records = {.more = 18, .recordsHere = 19, .recordFound = 20, .firstRecord = 22},
    .audit = {.events = 18, .cursorA = 20, .cursorB = 21, .eventsHere = 22, .firstEvent = 23},
};

inline constexpr ArchiveLayout shortArchive = {
    .status = shortReply.status,
    .information = {.newest = 21, .oldest = 23, .third = 25},
    .definitions = {.fields = 19, .fieldsHere = 21, .archiveName = 22, .firstDefinition = 43},
    .records = {.more = 17, .recordsHere = 18, .recordFound = 19, .firstRecord = 21},
    .audit = {.events = 17, .cursorA = 19, .cursorB = 20, .eventsHere = 21, .firstEvent = 22},
};

// A definition, and the texts of that reply.
inline constexpr std::size_t definitionLength = 27;
inline constexpr std::size_t fieldNameLength = 17;
inline constexpr std::size_t archiveNameLength = 9;

// A record of an archive file. Positions from 0, here and below.
struct ArchiveRecordLayout {
    std::size_t day;
    std::size_t time;
    std::size_t localID;
    std::size_t globalID;
    std::size_t firstFloat;
};
inline constexpr ArchiveRecordLayout archiveRecord = {
    .day = 0, .time = 2, .localID = 4, .globalID = 6, .firstFloat = 8};
inline constexpr std::size_t floatLength = 4;

// An event of the audit trail: a flag byte, the signal's name with its NUL, and behind that:
struct AuditEventLayout {
    std::size_t day;
    std::size_t time;
    std::size_t fraction;
    std::size_t firstValue;
    std::size_t secondValue;
    std::size_t localID;
    std::size_t globalID;
    std::size_t length;
};
inline constexpr AuditEventLayout auditEvent = {
    .day = 0, .time = 2, .fraction = 4, .firstValue = 5, .secondValue = 9, .localID = 25, .globalID = 27, .length = 31};

// The times of both count in these units.
inline constexpr int timeUnitSeconds = 4;
inline constexpr int fractionUnitMs = 20;

// A reply of so many bytes, or fewer, holds no signal.
constexpr std::size_t LongestWithoutData(bool usepoll) {
    return usepoll ? 22 : 18;
}

// DLE ETX and the check, at the end of every reply.
inline constexpr std::size_t replyTrailer = 4;

}  // namespace protocols
