#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "archive/bsap/Archive.h"

// The replies to the archive and audit requests. They are taken apart here only; what their records hold is a matter of
// ArchiveRecords.
namespace archive {

// Where things stand in the text of an answer (protocols::BsapAnswer). Positions count from 1; numbers of two bytes
// have the low one first.
struct ArchiveLayout {
    // File information: three numbers.
    std::size_t newest;
    std::size_t oldest;
    std::size_t third;
    // Field definitions: two status bytes, the number of fields of the file (two bytes) and of those in this reply, the
    // archive's name and the definitions.
    std::size_t status;
    std::size_t fields;
    std::size_t fieldsHere;
    std::size_t archiveName;
    std::size_t firstDefinition;
    // Records: 0 where no further ones follow, how many there are, the number of the record found (two bytes).
    std::size_t more;
    std::size_t recordsHere;
    std::size_t recordFound;
    std::size_t firstRecord;
    // Audit: how many events there are (two bytes), where to go on, how many are in this reply.
    std::size_t events;
    std::size_t cursorA;
    std::size_t cursorB;
    std::size_t eventsHere;
    std::size_t firstEvent;
};

inline constexpr ArchiveLayout longArchive = {22, 24, 26, 11, 20, 22, 23, 44, 18, 19, 20, 22, 18, 20, 21, 22, 23};
// The CW models: one byte less in front of everything.
inline constexpr ArchiveLayout shortArchive = {21, 23, 25, 10, 19, 21, 22, 43, 17, 18, 19, 21, 17, 19, 20, 21, 22};

struct FileInformation {
    int arcnewest = 0;
    int arcoldest = 0;
    int arcthird = 0;  // nobody knows what it is for
};

struct FieldDefinitions {
    int status1 = 0;
    int status2 = 0;
    int fields = 0;  // of the file
    std::string archiveName;
    std::vector<std::string> names;  // of this reply, 17 characters each
};

struct RecordReply {
    bool more = false;
    int found = 0;
    std::vector<std::string> records;  // their bytes
};

struct AuditReply {
    int events = 0;
    AuditCursors cursors;
    std::vector<std::string> records;  // their bytes
};

// A record of an archive file, in bytes.
constexpr std::size_t ArchiveRecordLength(std::size_t fields) {
    return 8 + 4 * fields;
}

// Each takes a reply with its doubled bytes undone. Nothing comes back when the reply ends before what it announces: it
// was cut, and what it lacks must not be taken for zeros.
std::optional<FileInformation> ParseFileInformation(const std::string& reply, const ArchiveLayout& layout);
std::optional<FieldDefinitions> ParseFieldDefinitions(const std::string& reply, const ArchiveLayout& layout);
std::optional<RecordReply> ParseRecordReply(const std::string& reply, const ArchiveLayout& layout, std::size_t fields);
std::optional<AuditReply> ParseAuditReply(const std::string& reply, const ArchiveLayout& layout);

// What a pair of status bytes of a definition reply means: "Invalid File Number", "Invalid Field Number", or empty.
std::string StatusText(const FieldDefinitions& definitions);

}  // namespace archive
