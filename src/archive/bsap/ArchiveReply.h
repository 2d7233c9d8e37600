#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "archive/bsap/Archive.h"
#include "protocols/bsap/BsapLayout.h"

// The replies to the archive and audit requests. They are taken apart here only; what their records hold is a matter of
// ArchiveRecords.
namespace archive {

using protocols::ArchiveLayout;

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
    bool endsBehindStatus = false;   // the reply is a refusal and no more

    bool Refused() const { return status1 != 0 || status2 != 0; }
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
    return protocols::archiveRecord.firstFloat + fields * protocols::floatLength;
}

// Each takes a reply with its doubled bytes undone. Nothing comes back when the reply ends before what it announces: it
// was cut, and what is missing must not be taken for zeros. So a reply is longer than any of its screens requires. Only
// a refusal of the definitions may end behind its status.
std::optional<FileInformation> ParseFileInformation(const std::string& reply, const ArchiveLayout& layout);
std::optional<FieldDefinitions> ParseFieldDefinitions(const std::string& reply, const ArchiveLayout& layout);
std::optional<RecordReply> ParseRecordReply(const std::string& reply, const ArchiveLayout& layout, std::size_t fields);
std::optional<AuditReply> ParseAuditReply(const std::string& reply, const ArchiveLayout& layout);

// What a pair of status bytes of a definition reply means: "Invalid File Number", "Invalid Field Number", or empty.
std::string StatusText(const FieldDefinitions& definitions);

}  // namespace archive
