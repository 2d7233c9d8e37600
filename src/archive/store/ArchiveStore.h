#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

// Stores a download as it comes, reply by reply, and knows how far the store is complete. A download that is cut off,
// newest first, leaves a gap between what it stored and what was there, so that a known record alone does not tell that
// everything below it is known. What tells is the mark: number and time stamp of the newest record of the last whole
// download.
class ArchiveKeeper {
  public:
    ArchiveKeeper(core::Database& dbconn, const ArchiveKey& key);

    // One transaction. A failure of the database is kept in Failure; the download goes on.
    // True: the store had all of it.
    bool Add(const std::vector<std::string>& fields, const std::vector<ArchiveRecord>& records);
    // Whether the store is complete from this record down. Numbers are of two bytes.
    bool IsMark(int number, const core::DateTime& at) const;
    // The store has everything up to this record, which is the mark from now on. Nothing is done when something could
    // not be stored.
    void Mark(int number, const core::DateTime& at);

    const SaveOutcome& Outcome() const { return outcome_; }
    const std::string& Failure() const { return failure_; }  // the first one; empty: none

  private:
    core::Database& dbconn_;
    ArchiveKey key_;
    std::optional<std::pair<int, std::string>> mark_;
    SaveOutcome outcome_;
    std::string failure_;
};

}  // namespace archive
