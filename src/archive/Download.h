#pragma once

#include <string>
#include <vector>

#include "core/Clock.h"

// What a download brings, as the grid shows it and the tables take it.
namespace archive {

// One record of an archive file.
struct ArchiveRecord {
    // By the station's clock: a day of the calendar, and a time that need not be one (25:00:00).
    core::DateTime at;
    int globalID = 0;
    int localID = 0;
    std::vector<double> values{};  // one a field, rounded to 2 decimals
};

struct ArchiveDownload {
    std::vector<std::string> fields{};     // names as the station gives them: 17 characters, padded with blanks
    std::vector<ArchiveRecord> records{};  // in the order of the grid
};

// One event of the audit trail.
struct AuditEvent {
    core::DateTime at;  // as above; a second may be 60
    std::string description{};
    int localID = 0;
    int globalID = 0;
};

// "09/03/2026   6:0:0": how a time stamp of the archive is shown.
std::string ShownTime(const core::DateTime& at);

enum class ArchiveKind { Daily, Hourly, Minute };

// The number of an archive file of a stream from 1, which is also its HistoryTypeId in the store: three a stream.
constexpr int HistoryType(int streamno, ArchiveKind kind) {
    return (streamno - 1) * 3 + (kind == ArchiveKind::Daily ? 1 : kind == ArchiveKind::Hourly ? 2 : 3);
}

}  // namespace archive
