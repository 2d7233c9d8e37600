#pragma once

#include <cstdint>

#include "archive/Download.h"
#include "core/Database.h"

// What was downloaded, kept without duplicates: the three tables of the archive.
namespace archive {

// Which archive: NodeId, StreamNo and HistoryTypeId of its rows.
struct ArchiveKey {
    std::int64_t locationID = 0;
    int streamno = 1;
    int historyType = 1;  // HistoryType(streamno, kind)
};

struct SaveOutcome {
    int added = 0;   // records that are new
    int known = 0;   // records whose time stamp was there, by an earlier download or earlier in this one
    int values = 0;  // that are new, those of known records too
};

// Adds what is new of a download, in one transaction: all of it is on the disk when this returns. A time stamp is the
// identity of a record. A value that is there stays as it is, also when the station has corrected it since; a known
// record gets the values that it lacks. Throws core::DatabaseError, and then nothing was added.
SaveOutcome SaveArchive(core::Database& dbconn, const ArchiveKey& key, const ArchiveDownload& download);

}  // namespace archive
